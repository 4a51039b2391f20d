#include "qvcore/File.h"

#include "tests/qvcore/Results.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestProcess.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace support;

namespace {

constexpr std::uint32_t readWrite = QV_FILE_READ | QV_FILE_WRITE;
constexpr std::uint32_t writeNew = QV_FILE_WRITE | QV_FILE_CREATE;

std::uint64_t open(const std::u16string& path, std::uint32_t access) {
    std::uint64_t handle = QV_FILE_NONE;
    EXPECT_EQ(QVFileOpen(path.c_str(), access, 0700, &handle), 0);
    return handle;
}

std::int32_t openFailing(const std::u16string& path, std::uint32_t access) {
    std::uint64_t handle = 77;
    const std::int32_t result = QVFileOpen(path.c_str(), access, 0700, &handle);
    EXPECT_EQ(handle, 77u);
    return result;
}

void write(std::uint64_t handle, const std::string& bytes) {
    EXPECT_EQ(QVFileWrite(handle, bytes.data(), static_cast<std::uint32_t>(bytes.size())), 0);
}

std::string read(std::uint64_t handle, std::uint32_t length) {
    std::string bytes(length, '#');
    std::uint32_t count = 0;
    EXPECT_EQ(QVFileRead(handle, bytes.data(), length, &count), 0);
    bytes.resize(count);
    return bytes;
}

std::int64_t seek(std::uint64_t handle, std::int64_t offset, std::int32_t origin) {
    std::int64_t position = -1;
    EXPECT_EQ(QVFileSeek64(handle, offset, origin, &position), 0);
    return position;
}

std::int64_t sizeOf(std::uint64_t handle) {
    std::int64_t size = -1;
    EXPECT_EQ(QVFileGetSize(handle, &size), 0);
    return size;
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

class FileTest : public testing::Test {
protected:
    std::filesystem::path systemPath(const char* name = "file") const {
        return folder.path() / name;
    }
    void make(const std::string& bytes) { std::ofstream(systemPath(), std::ios::binary) << bytes; }

    TestFolder folder;
    std::u16string path = folder.file(u"file");
};

/// Copies standard input to standard output through the handles.
int copyStandard(const std::vector<std::string>&) {
    const std::uint64_t input = QVFileGetStandard(0);
    const std::uint64_t output = QVFileGetStandard(1);
    char buffer[5];
    std::uint32_t count = 0;
    do {
        if (QVFileRead(input, buffer, sizeof buffer, &count) != 0 ||
            QVFileWrite(output, buffer, count) != 0) {
            return 1;
        }
    } while (count != 0);
    return QVFileFlush(output) == 0 ? 0 : 2;
}

/// Writes until standard output breaks, and says by its exit code how.
int writeToBrokenPipe(const std::vector<std::string>&) {
    const std::string bytes(100000, 'x');
    hear();
    for (int round = 0; round < 100; ++round) {
        const std::int32_t result = QVFileWrite(QVFileGetStandard(1), bytes.data(), 100000);
        if (result != 0) {
            return result == brokenPipe ? 42 : 1;
        }
    }
    return 2;
}

int writeDirect(const std::vector<std::string>&) {
    std::setvbuf(stdout, nullptr, _IOFBF, 1000);
    std::fputs("buffered ", stdout);
    if (QVStreamWriteDirect(stdout, "direct ", 7) != 0) {
        return 1;
    }
    std::fputs("end\n", stdout);
    return 0;
}

const support::ChildRole copyRole("copy-standard", copyStandard);
const support::ChildRole brokenRole("write-to-broken-pipe", writeToBrokenPipe);
const support::ChildRole directRole("write-direct", writeDirect);

} // namespace

TEST_F(FileTest, IsMadeOnlyIfItIsAskedFor) {
    EXPECT_EQ(openFailing(path, QV_FILE_WRITE), fileNotFound);
    EXPECT_EQ(openFailing(path, QV_FILE_READ), fileNotFound);
    EXPECT_FALSE(std::filesystem::exists(systemPath()));
    EXPECT_EQ(QVFileClose(open(path, writeNew)), 0);
    EXPECT_TRUE(std::filesystem::exists(systemPath()));
}

TEST_F(FileTest, KeepsItsBytesWhenItIsOpenedForWriting) {
    make("hello");
    const std::uint64_t file = open(path, writeNew);
    EXPECT_EQ(sizeOf(file), 5);
    write(file, "J");
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(contents(systemPath()), "Jello");
}

TEST_F(FileTest, IsEmptiedIfItIsAskedFor) {
    make("hello");
    const std::uint64_t file = open(path, writeNew | QV_FILE_TRUNCATE);
    EXPECT_EQ(sizeOf(file), 0);
    write(file, "J");
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(contents(systemPath()), "J");
    EXPECT_EQ(QVFileClose(open(path, QV_FILE_WRITE | QV_FILE_TRUNCATE)), 0);
    EXPECT_EQ(contents(systemPath()), "");
    EXPECT_EQ(openFailing(folder.file(u"none"), QV_FILE_WRITE | QV_FILE_TRUNCATE), fileNotFound);
}

TEST_F(FileTest, IsPositionedAtItsEndOnceIfItIsAskedFor) {
    make("hello");
    const std::uint64_t file = open(path, writeNew | QV_FILE_ATEND);
    EXPECT_EQ(seek(file, 0, 1), 5);
    write(file, "!");
    EXPECT_EQ(seek(file, 0, 0), 0);
    write(file, "J");
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(contents(systemPath()), "Jello!");
}

TEST_F(FileTest, IsReadUpToItsEnd) {
    make("hello");
    const std::uint64_t file = open(path, QV_FILE_READ);
    EXPECT_EQ(read(file, 3), "hel");
    EXPECT_EQ(read(file, 10), "lo");
    EXPECT_EQ(read(file, 10), "");
    EXPECT_EQ(read(file, 10), "");
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST_F(FileTest, ReadsAndWritesNothingForALengthOfZero) {
    make("hello");
    const std::uint64_t file = open(path, readWrite);
    std::uint32_t count = 7;
    EXPECT_EQ(QVFileRead(file, nullptr, 0, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(QVFileWrite(file, nullptr, 0), 0);
    EXPECT_EQ(seek(file, 0, 1), 0);
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST_F(FileTest, IsClosedWhenItIsAbandoned) {
    const std::uint64_t file = open(path, writeNew);
    write(file, "hello");
    QVFileAbandon(file);
    EXPECT_EQ(QVFileClose(file), invalidHandle);
    EXPECT_EQ(contents(systemPath()), "hello");
    QVFileAbandon(QV_FILE_NONE);
}

TEST_F(FileTest, SeeksFromThreeOrigins) {
    make("0123456789");
    const std::uint64_t file = open(path, QV_FILE_READ);
    EXPECT_EQ(seek(file, 4, 0), 4);
    EXPECT_EQ(read(file, 1), "4");
    EXPECT_EQ(seek(file, 2, 1), 7);
    EXPECT_EQ(read(file, 1), "7");
    EXPECT_EQ(seek(file, -1, 2), 9);
    EXPECT_EQ(read(file, 1), "9");
    EXPECT_EQ(seek(file, 100, 2), 110);
    EXPECT_EQ(read(file, 1), "");
    std::int64_t position = 77;
    EXPECT_EQ(QVFileSeek64(file, -1, 0, &position), invalidArgument);
    EXPECT_EQ(QVFileSeek64(file, 0, 3, &position), invalidArgument);
    EXPECT_EQ(QVFileSeek64(file, 0, -1, &position), invalidArgument);
    EXPECT_EQ(position, 77);
    EXPECT_EQ(QVFileSeek64(file, 0, 0, nullptr), nullOutput);
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST_F(FileTest, HasOffsetsOf64Bits) {
    constexpr std::int64_t far = 5'000'000'000;
    const std::uint64_t file = open(path, readWrite | QV_FILE_CREATE);
    EXPECT_EQ(seek(file, far, 0), far);
    write(file, "end");
    EXPECT_EQ(sizeOf(file), far + 3);
    EXPECT_EQ(seek(file, -3, 2), far);
    EXPECT_EQ(read(file, 10), "end");
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST_F(FileTest, TakesBothSeparatorsAndNamesOutsideAscii) {
    std::filesystem::create_directory(systemPath("sub"));
    const std::u16string name = u"äЖ中\xD83D\xDE00";
    const std::uint64_t file = open(folder.file(u"sub/" + name), writeNew);
    write(file, "x");
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(contents(systemPath("sub") / std::filesystem::path(name)), "x");
    EXPECT_EQ(QVFileClose(open(folder.file(u"sub\\" + name), QV_FILE_READ)), 0);
}

TEST_F(FileTest, IsNoDirectory) {
    EXPECT_EQ(openFailing(folder.path().u16string(), QV_FILE_READ), accessDenied);
    EXPECT_EQ(openFailing(folder.path().u16string(), writeNew), accessDenied);
}

TEST_F(FileTest, IsSharedWithOthers) {
    const std::uint64_t first = open(path, readWrite | QV_FILE_CREATE);
    const std::uint64_t second = open(path, readWrite);
    write(first, "hello");
    EXPECT_EQ(read(second, 10), "hello");
    std::filesystem::rename(systemPath(), systemPath("moved"));
    EXPECT_TRUE(std::filesystem::remove(systemPath("moved")));
    write(second, "!");
    EXPECT_EQ(seek(first, 0, 0), 0);
    EXPECT_EQ(read(first, 10), "hello!");
    EXPECT_EQ(QVFileClose(first), 0);
    EXPECT_EQ(QVFileClose(second), 0);
}

TEST_F(FileTest, IsFlushedAlsoWhenItWasNotWritten) {
    make("hello");
    const std::uint64_t reading = open(path, QV_FILE_READ);
    EXPECT_EQ(QVFileFlush(reading), 0);
    EXPECT_EQ(QVFileClose(reading), 0);
    const std::uint64_t writing = open(path, QV_FILE_WRITE);
    write(writing, "x");
    EXPECT_EQ(QVFileFlush(writing), 0);
    EXPECT_EQ(QVFileClose(writing), 0);
}

TEST_F(FileTest, RefusesWhatItsAccessDoesNotAllow) {
    make("hello");
    char byte = 0;
    std::uint32_t count = 7;
    const std::uint64_t writing = open(path, QV_FILE_WRITE);
    EXPECT_LT(QVFileRead(writing, &byte, 1, &count), 0);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(QVFileClose(writing), 0);
    const std::uint64_t reading = open(path, QV_FILE_READ);
    EXPECT_LT(QVFileWrite(reading, "x", 1), 0);
    EXPECT_EQ(QVFileClose(reading), 0);
    EXPECT_EQ(contents(systemPath()), "hello");
}

TEST_F(FileTest, RefusesAccessThatMeansNothing) {
    make("hello");
    for (const std::uint32_t access :
         {0u, QV_FILE_CREATE, QV_FILE_READ | QV_FILE_TRUNCATE, QV_FILE_READ | 1u}) {
        EXPECT_EQ(openFailing(path, access), invalidArgument) << access;
    }
    EXPECT_EQ(contents(systemPath()), "hello");
}

TEST_F(FileTest, RefusesNullArguments) {
    std::uint64_t handle = 77;
    EXPECT_EQ(QVFileOpen(nullptr, QV_FILE_READ, 0, &handle), invalidArgument);
    EXPECT_EQ(QVFileOpen(path.c_str(), writeNew, 0, nullptr), nullOutput);
    EXPECT_EQ(openFailing(u"", QV_FILE_READ), fileNotFound);
    const std::uint64_t file = open(path, readWrite | QV_FILE_CREATE);
    char byte = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(QVFileGetSize(file, nullptr), nullOutput);
    EXPECT_EQ(QVFileRead(file, &byte, 1, nullptr), nullOutput);
    EXPECT_EQ(QVFileRead(file, nullptr, 1, &count), nullOutput);
    EXPECT_EQ(QVFileWrite(file, nullptr, 1), nullOutput);
    EXPECT_EQ(QVFileClose(file), 0);
}

TEST_F(FileTest, IsNoneBehindTheNoneHandle) {
    char byte = 0;
    std::uint32_t count = 7;
    std::int64_t number = 7;
    EXPECT_EQ(QVFileRead(QV_FILE_NONE, &byte, 1, &count), invalidHandle);
    EXPECT_EQ(QVFileWrite(QV_FILE_NONE, &byte, 1), invalidHandle);
    EXPECT_EQ(QVFileFlush(QV_FILE_NONE), invalidHandle);
    EXPECT_EQ(QVFileGetSize(QV_FILE_NONE, &number), invalidHandle);
    EXPECT_EQ(QVFileSeek64(QV_FILE_NONE, 0, 0, &number), invalidHandle);
    EXPECT_EQ(QVFileClose(QV_FILE_NONE), invalidHandle);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(number, 7);
}

TEST_F(FileTest, WritesManyBytesAtOnce) {
    std::string bytes(3'000'000, ' ');
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        bytes[at] = static_cast<char>(at * 31);
    }
    const std::uint64_t file = open(path, writeNew);
    write(file, bytes);
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(contents(systemPath()), bytes);
}

TEST(StandardFileTest, TakesThreeOnly) {
    EXPECT_EQ(QVFileGetStandard(-1), QV_FILE_NONE);
    EXPECT_EQ(QVFileGetStandard(3), QV_FILE_NONE);
    EXPECT_NE(QVFileGetStandard(1), QV_FILE_NONE);
}

TEST(StandardFileTest, ReadsAndWritesPipes) {
    TestProcess child("copy-standard", {});
    ASSERT_TRUE(child.isStarted());
    child.write("one line\n");
    EXPECT_EQ(child.readLine(), "one line");
    child.write("another\n");
    EXPECT_EQ(child.readLine(), "another");
    child.closeInput();
    EXPECT_EQ(child.wait(), 0);
}

TEST(StandardFileTest, SaysThatAPipeIsBroken) {
    TestProcess child("write-to-broken-pipe", {});
    ASSERT_TRUE(child.isStarted());
    child.closeOutput();
    child.write("go\n");
    EXPECT_EQ(child.wait(), 42);
}

TEST(StreamTest, IsWrittenPastItsBuffer) {
    TestProcess child("write-direct", {});
    ASSERT_TRUE(child.isStarted());
    EXPECT_EQ(child.readLine(), "direct buffered end");
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(FileTest, IsSoughtThroughARuntimeStream) {
    make("0123456789");
    std::FILE* const stream = std::fopen(systemPath().string().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(QVStreamSeek64(stream, 4, 0), 0);
    EXPECT_EQ(QVStreamTell64(stream), 4);
    EXPECT_EQ(QVStreamSeek64(stream, 2, 1), 0);
    EXPECT_EQ(std::fgetc(stream), '6');
    EXPECT_EQ(QVStreamSeek64(stream, -1, 2), 0);
    EXPECT_EQ(QVStreamTell64(stream), 9);
    EXPECT_EQ(QVStreamSeek64(stream, 5'000'000'000, 0), 0);
    EXPECT_EQ(QVStreamTell64(stream), 5'000'000'000);
    EXPECT_EQ(QVStreamSeek64(stream, -1, 0), invalidArgument);
    EXPECT_EQ(QVStreamSeek64(stream, 0, 3), invalidArgument);
    EXPECT_EQ(QVStreamSeek64(stream, 0, -1), invalidArgument);
    EXPECT_EQ(QVStreamTell64(stream), 5'000'000'000);
    std::fclose(stream);
}

TEST_F(FileTest, IsWrittenThroughTheBufferOfItsRuntimeStream) {
    std::FILE* const stream = std::fopen(systemPath().string().c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(QVStreamPut(stream, 'a'), 0);
    EXPECT_EQ(contents(systemPath()), "");
    EXPECT_EQ(QVStreamFlush(stream), 0);
    EXPECT_EQ(contents(systemPath()), "a");
    EXPECT_EQ(QVStreamPut(stream, 0xFF), 0);
    EXPECT_EQ(QVStreamClose(stream), 0);
    EXPECT_EQ(contents(systemPath()), "a\xFF") << "no failure, though it looks like one";
}

TEST_F(FileTest, IsNotWrittenThroughARuntimeStreamForReading) {
    make("hello");
    std::FILE* const stream = std::fopen(systemPath().string().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_LT(QVStreamWriteDirect(stream, "x", 1), 0);
    EXPECT_LT(QVStreamPut(stream, 'x'), 0);
    std::fclose(stream);
    EXPECT_EQ(contents(systemPath()), "hello");
}

TEST(StreamTest, RefusesNullArguments) {
    EXPECT_EQ(QVStreamTell64(nullptr), -1);
    EXPECT_EQ(QVStreamSeek64(nullptr, 0, 0), invalidHandle);
    EXPECT_EQ(QVStreamPut(nullptr, 'x'), invalidHandle);
    EXPECT_EQ(QVStreamFlush(nullptr), invalidHandle);
    EXPECT_EQ(QVStreamClose(nullptr), invalidHandle);
    EXPECT_EQ(QVStreamWriteDirect(nullptr, "x", 1), invalidHandle);
    EXPECT_EQ(QVStreamWriteDirect(stdout, nullptr, 1), nullOutput);
}
