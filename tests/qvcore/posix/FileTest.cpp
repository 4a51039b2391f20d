#include "qvcore/File.h"

#include "tests/qvcore/Results.h"
#include "tests/support/TestFolder.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace support;

namespace {

constexpr std::uint32_t writeNew = QV_FILE_WRITE | QV_FILE_CREATE;

std::uint64_t open(const std::u16string& path, std::uint32_t access, std::uint32_t permissions) {
    std::uint64_t handle = QV_FILE_NONE;
    EXPECT_EQ(QVFileOpen(path.c_str(), access, permissions, &handle), 0);
    return handle;
}

/// Both ends of a pipe or of a pair of sockets.
struct Ends {
    std::array<int, 2> descriptors = {-1, -1};

    std::uint64_t reading() const { return static_cast<std::uint64_t>(descriptors[0]); }
    std::uint64_t writing() const { return static_cast<std::uint64_t>(descriptors[1]); }
    ~Ends() {
        closeReading();
        close(descriptors[1]);
    }
    void closeReading() {
        if (descriptors[0] != -1) {
            close(descriptors[0]);
            descriptors[0] = -1;
        }
    }
};

struct Pipe : Ends {
    explicit Pipe(int flags = 0) { EXPECT_EQ(pipe2(descriptors.data(), flags | O_CLOEXEC), 0); }
};

struct Sockets : Ends {
    Sockets() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, descriptors.data()), 0); }
};

bool isPipeSignalPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

TEST(PosixFileTest, HasItsPermissionsCutByTheMask) {
    const TestFolder folder;
    const mode_t mask = umask(027);
    EXPECT_EQ(QVFileClose(open(folder.file(u"file"), writeNew, 0777)), 0);
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(stat((folder.path() / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0750u);
}

TEST(PosixFileTest, IsClosedInChildPrograms) {
    const TestFolder folder;
    const std::uint64_t file = open(folder.file(u"file"), writeNew, 0700);
    EXPECT_EQ(fcntl(static_cast<int>(file), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(QVFileClose(file), 0);
    EXPECT_EQ(QVFileClose(file), invalidHandle);
}

TEST(PosixFileTest, RefusesAPathThatTheSystemCannotSpell) {
    const TestFolder folder;
    for (const char16_t* name : {u"a\xD800", u"\xDC00z", u"\xDC00\xD800"}) {
        std::uint64_t handle = 77;
        EXPECT_EQ(QVFileOpen(folder.file(name).c_str(), writeNew, 0700, &handle), invalidName);
        EXPECT_EQ(handle, 77u);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(PosixFileTest, FailsWithTheResultsOfEverySystem) {
    const TestFolder folder;
    std::uint64_t handle = 77;
    EXPECT_EQ(QVFileClose(open(folder.file(u"file"), writeNew, 0700)), 0);
    EXPECT_EQ(QVFileOpen(folder.file(u"file\\x").c_str(), QV_FILE_READ, 0, &handle),
              bits(0x80070003u));
    EXPECT_EQ(QVFileOpen(folder.file(u"none\\x").c_str(), writeNew, 0700, &handle), fileNotFound);
    const std::u16string longName(300, u'x');
    EXPECT_EQ(QVFileOpen(folder.file(longName).c_str(), writeNew, 0700, &handle),
              bits(0x800700CEu));
    EXPECT_EQ(handle, 77u);
}

TEST(PosixFileTest, FlushesWhatHasNoDisk) {
    const Pipe pipe;
    EXPECT_EQ(QVFileFlush(pipe.writing()), 0);
    const Sockets sockets;
    EXPECT_EQ(QVFileFlush(sockets.writing()), 0);
    const std::uint64_t null = open(u"\\dev\\null", QV_FILE_WRITE, 0);
    EXPECT_EQ(QVFileFlush(null), 0);
    EXPECT_EQ(QVFileClose(null), 0);
}

TEST(PosixFileTest, HasNoPlaceToSeekInAPipe) {
    const Pipe pipe;
    std::int64_t position = 77;
    EXPECT_EQ(QVFileSeek64(pipe.reading(), 0, 1, &position), bits(0x80070084u));
    EXPECT_EQ(position, 77);
}

TEST(PosixFileTest, OpensAtTheEndWhatHasNone) {
    const std::uint64_t null = open(u"/dev/null", QV_FILE_WRITE | QV_FILE_ATEND, 0);
    EXPECT_EQ(QVFileClose(null), 0);
}

TEST(PosixStreamTest, HasAPositionOnADiskOnly) {
    std::FILE* const stream = std::fopen("/dev/null", "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(QVStreamTell64(stream), -1);
    std::fclose(stream);
}

TEST(PosixPipeTest, RaisesNoSignalWhenItIsBroken) {
    // With its default handling the signal would end the test program.
    ASSERT_NE(std::signal(SIGPIPE, SIG_DFL), SIG_ERR);
    Pipe pipe;
    Sockets sockets;
    for (Ends* ends : {static_cast<Ends*>(&pipe), static_cast<Ends*>(&sockets)}) {
        ends->closeReading();
        EXPECT_EQ(QVFileWrite(ends->writing(), "x", 1), brokenPipe);
        EXPECT_FALSE(isPipeSignalPending());
    }
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

TEST(PosixPipeTest, KeepsASignalThatSomebodyElseRaised) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, &set, &mask);
    raise(SIGPIPE);
    Pipe pipe;
    pipe.closeReading();
    EXPECT_EQ(QVFileWrite(pipe.writing(), "x", 1), brokenPipe);
    EXPECT_TRUE(isPipeSignalPending());
    int signal = 0;
    EXPECT_EQ(sigwait(&set, &signal), 0);
    EXPECT_EQ(signal, SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

TEST(PosixPipeTest, IsAtItsEndWhenItsWritersAreGone) {
    Pipe pipe;
    EXPECT_EQ(QVFileWrite(pipe.writing(), "x", 1), 0);
    close(pipe.descriptors[1]);
    char byte = 0;
    std::uint32_t count = 7;
    EXPECT_EQ(QVFileRead(pipe.reading(), &byte, 1, &count), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(QVFileRead(pipe.reading(), &byte, 1, &count), 0);
    EXPECT_EQ(count, 0u);
    pipe.descriptors[1] = -1;
}

TEST(PosixPipeThreadsTest, HidesPartialWritesAlsoWhereThePipeDoesNotBlock) {
    for (const int flags : {0, O_NONBLOCK}) {
        const Pipe pipe(flags);
        const std::string bytes(1'000'000, 'x');
        std::string received;
        std::thread reader([&] {
            std::array<char, 10000> buffer;
            std::uint32_t count = 0;
            while (received.size() < bytes.size()) {
                EXPECT_EQ(QVFileRead(pipe.reading(), buffer.data(), 10000, &count), 0);
                ASSERT_NE(count, 0u);
                received.append(buffer.data(), count);
            }
        });
        EXPECT_EQ(QVFileWrite(pipe.writing(), bytes.data(), 1'000'000), 0);
        reader.join();
        EXPECT_EQ(received, bytes);
    }
}

TEST(PosixPipeThreadsTest, HidesInterruptedCalls) {
    struct sigaction action = {};
    struct sigaction previous = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &previous);
    const Pipe pipe;
    std::atomic<bool> isDone = false;
    std::uint32_t count = 0;
    std::thread reader([&] {
        char byte = 0;
        EXPECT_EQ(QVFileRead(pipe.reading(), &byte, 1, &count), 0);
        isDone = true;
    });
    for (int round = 0; round < 200; ++round) {
        pthread_kill(reader.native_handle(), SIGUSR1);
        std::this_thread::yield();
    }
    EXPECT_FALSE(isDone);
    EXPECT_EQ(QVFileWrite(pipe.writing(), "x", 1), 0);
    reader.join();
    EXPECT_EQ(count, 1u);
    sigaction(SIGUSR1, &previous, nullptr);
}

TEST(PosixStreamTest, TellsWhyItsBytesCannotBeBroughtOut) {
    std::FILE* const full = std::fopen("/dev/full", "wb");
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(QVStreamPut(full, 'x'), 0);
    EXPECT_EQ(QVStreamFlush(full), bits(0x80070070u));
    std::setvbuf(full, nullptr, _IONBF, 0);
    EXPECT_EQ(QVStreamPut(full, 'x'), bits(0x80070070u));
    EXPECT_EQ(QVStreamClose(full), 0);
    Pipe pipe;
    pipe.closeReading();
    std::FILE* const broken = fdopen(dup(pipe.descriptors[1]), "wb");
    ASSERT_NE(broken, nullptr);
    EXPECT_EQ(QVStreamPut(broken, 'x'), 0);
    EXPECT_EQ(QVStreamClose(broken), brokenPipe);
}
