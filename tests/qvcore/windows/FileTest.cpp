#include "qvcore/File.h"

#include "tests/qvcore/Results.h"
#include "tests/support/TestFolder.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <string>
#include <thread>
#include <windows.h>

using namespace support;

namespace {

HANDLE native(std::uint64_t handle) {
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handle));
}

std::uint64_t handleOf(HANDLE handle) { return reinterpret_cast<std::uintptr_t>(handle); }

const wchar_t* wide(const std::u16string& text) {
    return reinterpret_cast<const wchar_t*>(text.c_str());
}

} // namespace

TEST(WindowsFileTest, HasAPathOfAnyLength) {
    const TestFolder folder;
    std::u16string path = u"\\\\?\\" + folder.path().u16string();
    std::vector<std::u16string> folders;
    for (int level = 0; level < 3; ++level) {
        path += u"\\" + std::u16string(120, u'd');
        ASSERT_TRUE(CreateDirectoryW(wide(path), nullptr));
        folders.push_back(path);
    }
    const std::u16string plain = path.substr(4) + u"/file";
    std::uint64_t file = QV_FILE_NONE;
    ASSERT_EQ(QVFileOpen(plain.c_str(), QV_FILE_WRITE | QV_FILE_CREATE, 0700, &file), 0);
    EXPECT_EQ(QVFileWrite(file, "x", 1), 0);
    EXPECT_EQ(QVFileClose(file), 0);
    ASSERT_EQ(QVFileOpen((path + u"\\file").c_str(), QV_FILE_READ, 0, &file), 0);
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_TRUE(DeleteFileW(wide(path + u"\\file")));
    for (auto each = folders.rbegin(); each != folders.rend(); ++each) {
        EXPECT_TRUE(RemoveDirectoryW(wide(*each)));
    }
}

TEST(WindowsFileTest, IsNotInherited) {
    const TestFolder folder;
    std::uint64_t file = QV_FILE_NONE;
    ASSERT_EQ(QVFileOpen(folder.file(u"file").c_str(), QV_FILE_WRITE | QV_FILE_CREATE, 0700, &file),
              0);
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(native(file), &flags));
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0u);
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST(WindowsFileTest, AHiddenFileIsEmptiedAndStaysHidden) {
    const TestFolder folder;
    const std::u16string path = folder.file(u"file");
    constexpr std::uint32_t anew = QV_FILE_WRITE | QV_FILE_CREATE | QV_FILE_TRUNCATE;
    std::uint64_t file = QV_FILE_NONE;
    ASSERT_EQ(QVFileOpen(path.c_str(), anew, 0700, &file), 0);
    EXPECT_EQ(QVFileWrite(file, "old", 3), 0);
    EXPECT_EQ(QVFileClose(file), 0);
    ASSERT_TRUE(SetFileAttributesW(wide(path), FILE_ATTRIBUTE_HIDDEN));
    ASSERT_EQ(QVFileOpen(path.c_str(), anew, 0700, &file), 0);
    std::int64_t size = -1;
    EXPECT_EQ(QVFileGetSize(file, &size), 0);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_NE(GetFileAttributesW(wide(path)) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST(WindowsFileTest, AWriteOfNothingIsNoEndOfAPipe) {
    HANDLE out = nullptr;
    HANDLE in = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 0));
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(out, "", 0, &written, nullptr));
    EXPECT_EQ(QVFileWrite(handleOf(out), "", 0), 0);
    EXPECT_EQ(QVFileWrite(handleOf(out), "x", 1), 0);
    char taken = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(QVFileRead(handleOf(in), &taken, 1, &count), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(taken, 'x');
    EXPECT_EQ(QVFileClose(handleOf(out)), 0);
    EXPECT_EQ(QVFileRead(handleOf(in), &taken, 1, &count), 0);
    EXPECT_EQ(count, 0u) << "the end";
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsFileTest, AReadOfNothingDoesNotWaitForAPipe) {
    HANDLE in = nullptr;
    HANDLE out = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 0));
    std::uint32_t count = 7;
    EXPECT_EQ(QVFileRead(handleOf(in), nullptr, 0, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(QVFileClose(handleOf(out)), 0);
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsPipeThreadsTest, IsWaitedForWhereItIsFullAndDoesNotBlock) {
    HANDLE in = nullptr;
    HANDLE out = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 1000));
    DWORD mode = PIPE_NOWAIT;
    ASSERT_TRUE(SetNamedPipeHandleState(out, &mode, nullptr, nullptr));
    const std::string bytes(100'000, 'x');
    std::string received;
    std::thread reader([&] {
        std::array<char, 500> buffer;
        std::uint32_t count = 0;
        while (received.size() < bytes.size()) {
            ASSERT_EQ(QVFileRead(handleOf(in), buffer.data(), 500, &count), 0);
            ASSERT_NE(count, 0u);
            received.append(buffer.data(), count);
        }
    });
    EXPECT_EQ(QVFileWrite(handleOf(out), bytes.data(), 100'000), 0);
    reader.join();
    EXPECT_EQ(received, bytes);
    EXPECT_EQ(QVFileClose(handleOf(out)), 0);
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsPipeThreadsTest, IsWaitedForWhereItIsEmptyAndDoesNotBlock) {
    HANDLE in = nullptr;
    HANDLE out = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 0));
    DWORD mode = PIPE_NOWAIT;
    ASSERT_TRUE(SetNamedPipeHandleState(in, &mode, nullptr, nullptr));
    std::thread writer([&] {
        Sleep(50); // the reader is most likely there first
        EXPECT_EQ(QVFileWrite(handleOf(out), "x", 1), 0);
        Sleep(50);
        EXPECT_EQ(QVFileClose(handleOf(out)), 0);
    });
    char taken = 0;
    std::uint32_t count = 7;
    EXPECT_EQ(QVFileRead(handleOf(in), &taken, 1, &count), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(taken, 'x');
    EXPECT_EQ(QVFileRead(handleOf(in), &taken, 1, &count), 0);
    EXPECT_EQ(count, 0u) << "the end";
    writer.join();
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsFileTest, AMessageMayBeReadInPieces) {
    const std::wstring name =
        L"\\\\.\\pipe\\qv-file-test-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE in =
        CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND,
                         PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE, 1, 1000, 1000, 0, nullptr);
    ASSERT_NE(in, INVALID_HANDLE_VALUE);
    const HANDLE out =
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(out, INVALID_HANDLE_VALUE);
    EXPECT_EQ(QVFileWrite(handleOf(out), "hello", 5), 0);
    for (const std::string piece : {"hel", "lo"}) {
        std::string taken(3, '#');
        std::uint32_t count = 7;
        EXPECT_EQ(QVFileRead(handleOf(in), taken.data(), 3, &count), 0);
        EXPECT_EQ(taken.substr(0, count), piece);
    }
    EXPECT_EQ(QVFileClose(handleOf(out)), 0);
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsStreamTest, HasAPositionOnADiskOnly) {
    HANDLE in = nullptr;
    HANDLE out = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 0));
    std::FILE* const stream =
        _fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(in), 0), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(QVStreamTell64(stream), -1);
    std::fclose(stream);
    EXPECT_EQ(QVFileClose(handleOf(out)), 0);
}

TEST(WindowsStreamTest, AWriteThatAFullPipeCutsIsAFailure) {
    HANDLE in = nullptr;
    HANDLE out = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 1000));
    DWORD mode = PIPE_NOWAIT;
    ASSERT_TRUE(SetNamedPipeHandleState(out, &mode, nullptr, nullptr));
    std::FILE* const stream =
        _fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(out), 0), "wb");
    ASSERT_NE(stream, nullptr);
    const std::string bytes(1'000'000, 'x');
    EXPECT_LT(QVStreamWriteDirect(stream, bytes.data(), 1'000'000), 0);
    std::fclose(stream);
    EXPECT_EQ(QVFileClose(handleOf(in)), 0);
}

TEST(WindowsStreamTest, ADeniedWriteIsNoInvalidHandle) {
    const TestFolder folder;
    const std::string path = (folder.path() / "file").string();
    std::fclose(std::fopen(path.c_str(), "wb"));
    std::FILE* const stream = std::fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(QVStreamWriteDirect(stream, "x", 1), accessDenied);
    std::fclose(stream);
}

TEST(WindowsFileTest, RefusesAPathThatTheSystemCannotSpell) {
    const TestFolder folder;
    std::uint64_t file = 77;
    EXPECT_EQ(
        QVFileOpen(folder.file(u"a<b>|").c_str(), QV_FILE_WRITE | QV_FILE_CREATE, 0700, &file),
        invalidName);
    EXPECT_EQ(file, 77u);
}

TEST(WindowsFileTest, FlushesAPipeThatNobodyReads) {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    ASSERT_TRUE(CreatePipe(&reading, &writing, nullptr, 0));
    EXPECT_EQ(QVFileWrite(handleOf(writing), "x", 1), 0);
    EXPECT_EQ(QVFileFlush(handleOf(writing)), 0);
    EXPECT_EQ(QVFileClose(handleOf(writing)), 0);
    char bytes[2];
    std::uint32_t count = 7;
    EXPECT_EQ(QVFileRead(handleOf(reading), bytes, 2, &count), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(QVFileRead(handleOf(reading), bytes, 2, &count), 0);
    EXPECT_EQ(count, 0u) << "the writers are gone";
    EXPECT_EQ(QVFileClose(handleOf(reading)), 0);
}

TEST(WindowsFileTest, SaysThatAPipeIsBroken) {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    ASSERT_TRUE(CreatePipe(&reading, &writing, nullptr, 0));
    EXPECT_EQ(QVFileClose(handleOf(reading)), 0);
    EXPECT_EQ(QVFileWrite(handleOf(writing), "x", 1), brokenPipe);
    EXPECT_EQ(QVFileClose(handleOf(writing)), 0);
}
