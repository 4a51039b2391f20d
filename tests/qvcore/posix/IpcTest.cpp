#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"
#include "tests/support/Allocations.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace support;

namespace {

/// How often the system's call for the memory of a file is still to be interrupted.
int interruptions = 0;

constexpr std::int32_t outOfMemory = bits(0x8007000Eu);

std::string uniqueName() { return "qvcore-posix-test-" + std::to_string(getpid()); }

template <typename Work>
int inFork(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The files of shared memory that this process has mapped.
std::set<std::string> mappedFiles() {
    std::set<std::string> names;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t path = line.find("/dev/shm/");
        if (path != std::string::npos) {
            names.insert(line.substr(path));
        }
    }
    return names;
}

/// Takes all descriptors of the process but one, and gives them back.
class OneDescriptorLeft {
public:
    OneDescriptorLeft() {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few = {256, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = open("/dev/null", O_RDONLY); taken != -1;
             taken = open("/dev/null", O_RDONLY)) {
            taken_.push_back(taken);
        }
        giveOne();
    }
    ~OneDescriptorLeft() {
        while (!taken_.empty()) {
            giveOne();
        }
        setrlimit(RLIMIT_NOFILE, &before_);
    }
    OneDescriptorLeft(const OneDescriptorLeft&) = delete;
    OneDescriptorLeft& operator=(const OneDescriptorLeft&) = delete;

private:
    void giveOne() {
        close(taken_.back());
        taken_.pop_back();
    }

    rlimit before_ = {};
    std::vector<int> taken_;
};

/// Opens and uses a lock: a sanitizer looks at a class once, and needs descriptors for it.
void useALock() {
    const std::string name = uniqueName() + "-first-" + std::to_string(getpid());
    std::uint64_t lock = 0;
    EXPECT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

/// Opens the lock with the last descriptor, so that the process cannot learn its own start, and
/// holds it until told to end.
const support::ChildRole poorHolder("semaphore-without-descriptors",
                                    [](const std::vector<std::string>& arguments) {
                                        std::uint64_t lock = 0;
                                        std::int32_t result = 0;
                                        useALock();
                                        {
                                            const OneDescriptorLeft poor;
                                            result =
                                                QVNamedSemOpen(arguments.at(0).c_str(), 1, &lock);
                                        }
                                        support::tell(result == 0 ? "open" : "not open");
                                        result = QVSemaphoreWait(lock);
                                        support::tell(result == 0 ? "held" : "not held");
                                        support::hear();
                                        return QVNamedSemClose(lock);
                                    });

} // namespace

/// Stands in front of the C library's.
extern "C" int posix_fallocate(int descriptor, off_t offset, off_t size) {
    if (interruptions > 0) {
        --interruptions;
        return EINTR;
    }
    return fallocate(descriptor, 0, offset, size) == 0 ? 0 : errno;
}

TEST(PosixIpcTest, KeepsTheLockOfAProcessThatCouldNotLearnItsOwnStart) {
    const std::string name = uniqueName() + "-poor";
    std::uint64_t lock = 0;
    support::TestProcess holder("semaphore-without-descriptors", {name});
    ASSERT_EQ(holder.readLine(), "open");
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    EXPECT_EQ(holder.readLine(), "held");
    EXPECT_EQ(QVSemaphoreTryWait(lock), timedOut);
    holder.kill();
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0) << "its end is known all the same";
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

TEST(PosixIpcTest, KeepsTheCountsOfAProcessThatLearnedItsStartLater) {
    const std::string name = uniqueName() + "-later";
    std::uint64_t first = 0;
    useALock();
    {
        const OneDescriptorLeft poor;
        ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &first), 0);
    }
    std::uint64_t second = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &second), 0);
    EXPECT_EQ(QVSemaphoreWait(first), 0);
    EXPECT_EQ(QVSemaphorePost(second), 0);
    EXPECT_EQ(QVNamedSemClose(first), 0);
    std::int32_t value = 0;
    EXPECT_EQ(QVSemaphoreGetValue(second, &value), 0);
    EXPECT_EQ(value, 1) << "what the other handle gave back is not owed any more";
    EXPECT_EQ(QVNamedSemClose(second), 0);
}

/// Opens something shared with its first, second and so on allocation failing.
template <typename Open, typename Close>
void openWithFailures(Open open, Close close) {
    std::uint64_t handle = 0;
    ASSERT_EQ(open(&handle), 0);
    ASSERT_EQ(mappedFiles().size(), 1u);
    const std::string file = *mappedFiles().begin();
    ASSERT_EQ(close(handle), 0);
    int failures = 0;
    for (std::size_t failing = 1; failing <= 30; ++failing) {
        std::int32_t result = 0;
        {
            const support::Allocations allocations(failing);
            result = open(&handle);
        }
        EXPECT_EQ(std::filesystem::exists(file), result == 0) << failing;
        if (result == 0) {
            EXPECT_EQ(close(handle), 0);
        } else {
            EXPECT_EQ(result, outOfMemory);
            ++failures;
        }
    }
    EXPECT_GT(failures, 2);
}

TEST(PosixIpcTest, LeavesNoFileBehindWhereMemoryRunsOut) {
    const std::string name = uniqueName() + "-a-name-that-no-string-holds-within-itself";
    openWithFailures([&](std::uint64_t* handle) { return QVNamedSemOpen(name.c_str(), 1, handle); },
                     [](std::uint64_t handle) { return QVNamedSemClose(handle); });
    openWithFailures(
        [&](std::uint64_t* handle) { return QVSharedMemOpen(name.c_str(), 0, 0, 10, handle); },
        [](std::uint64_t handle) { return QVSharedMemClose(handle); });
}

TEST(PosixIpcTest, ClosesOnBothSidesOfAForkAtOnceWithoutHarmToOthers) {
    const std::string name = uniqueName() + "-fork";
    // Another process opens the name twice again and again: it must be one semaphore each time.
    const pid_t watcher = fork();
    if (watcher == 0) {
        for (;;) {
            std::uint64_t first = 0;
            std::uint64_t second = 0;
            std::int32_t value = 0;
            const bool isOne = QVNamedSemOpen(name.c_str(), 5, &first) == 0 &&
                               QVSemaphorePost(first) == 0 &&
                               QVNamedSemOpen(name.c_str(), 2, &second) == 0 &&
                               QVSemaphoreGetValue(second, &value) == 0 && value > 5;
            if (!isOne || QVNamedSemClose(first) != 0 || QVNamedSemClose(second) != 0) {
                _exit(1);
            }
        }
    }
    for (int round = 0; round < 500; ++round) {
        std::uint64_t semaphore = 0;
        ASSERT_EQ(QVNamedSemOpen(name.c_str(), 5, &semaphore), 0);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            std::int32_t value = 0;
            QVSemaphoreGetValue(semaphore, &value);
            char go = 0;
            const bool isTold = write(ends[1], &go, 1) == 1;
            _exit(isTold && QVNamedSemClose(semaphore) == 0 ? 0 : 1);
        }
        char ready = 0;
        EXPECT_EQ(read(ends[0], &ready, 1), 1);
        EXPECT_EQ(QVNamedSemClose(semaphore), 0);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        close(ends[0]);
        close(ends[1]);
    }
    EXPECT_EQ(kill(watcher, SIGKILL), 0);
    int status = 0;
    waitpid(watcher, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it came upon two semaphores of one name";
}

TEST(PosixIpcTest, GetsItsMemoryThoughSignalsInterruptIt) {
    std::uint64_t block = 0;
    interruptions = 3;
    EXPECT_EQ(QVSharedMemOpen((uniqueName() + "-interrupted").c_str(), 0, 0, 10, &block), 0);
    EXPECT_EQ(interruptions, 0);
    interruptions = 0;
    EXPECT_EQ(QVSharedMemClose(block), 0);
}

TEST(PosixIpcTest, LeavesNoFileBehind) {
    const std::string name = uniqueName();
    std::uint64_t semaphore = 0;
    std::uint64_t memory = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &semaphore), 0);
    ASSERT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 10, &memory), 0);
    const std::set<std::string> files = mappedFiles();
    EXPECT_EQ(files.size(), 2u);
    for (const std::string& file : files) {
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_EQ(QVNamedSemClose(semaphore), 0);
    EXPECT_EQ(QVSharedMemClose(memory), 0);
    for (const std::string& file : files) {
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST(PosixIpcTest, ClearsAwayTheFilesOfKilledProcesses) {
    // The child's file is known to the parent by its name alone.
    const std::string name = uniqueName() + "-child";
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        std::uint64_t handle = 0;
        QVNamedSemOpen(name.c_str(), 1, &handle);
        const std::string file = *mappedFiles().begin();
        _exit(write(ends[1], file.data(), file.size()) > 0 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::string file(200, ' ');
    file.resize(static_cast<std::size_t>(read(ends[0], file.data(), file.size())));
    close(ends[0]);
    close(ends[1]);
    EXPECT_NE(file.find("/dev/shm/"), std::string::npos);
    std::uint64_t other = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &other), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(QVNamedSemClose(other), 0);
}

TEST(PosixIpcTest, TellsAForkedChildFromItsParent) {
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    ASSERT_EQ(QVSemaphoreWait(lock), 0);
    EXPECT_EQ(inFork([lock] { return QVSemaphoreTryWait(lock) == timedOut ? 0 : 1; }), 0)
        << "what the parent holds is the parent's";
    EXPECT_EQ(QVSemaphorePost(lock), 0);
    EXPECT_EQ(inFork([lock] { return QVSemaphoreWait(lock) == 0 ? 0 : 1; }), 0);
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0) << "what the child held came back with its end";
    EXPECT_EQ(QVSemaphorePost(lock), 0);
    std::int32_t value = 0;
    EXPECT_EQ(QVSemaphoreGetValue(lock, &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

TEST(PosixIpcTest, KeepsTheParentsHandlesWhenAForkedChildClosesIts) {
    const std::string name = uniqueName();
    std::uint64_t semaphore = 0;
    std::uint64_t memory = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 3, &semaphore), 0);
    ASSERT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 10, &memory), 0);
    EXPECT_EQ(inFork([=] {
                  return QVNamedSemClose(semaphore) == 0 && QVSharedMemClose(memory) == 0 ? 0 : 1;
              }),
              0);
    std::uint64_t again = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 7, &again), 0);
    std::int32_t value = 0;
    EXPECT_EQ(QVSemaphoreGetValue(again, &value), 0);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(QVNamedSemClose(again), 0);
    EXPECT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 11, &again), invalidArgument);
    EXPECT_EQ(QVNamedSemClose(semaphore), 0);
    EXPECT_EQ(QVSharedMemClose(memory), 0);
}

TEST(PosixIpcTest, FreesWhatAZombieHolds) {
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    const pid_t child = fork();
    if (child == 0) {
        _exit(QVSemaphoreWait(lock));
    }
    siginfo_t information = {};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0) << "it has ended, though nobody has taken notice";
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}
