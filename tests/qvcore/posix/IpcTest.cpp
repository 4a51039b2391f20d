#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace support;

namespace {

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

} // namespace

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
