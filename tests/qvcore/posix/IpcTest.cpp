#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace coretest;

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

std::set<std::string> sharedFiles() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

/// The files that came since `before`.
std::vector<std::string> newFiles(const std::set<std::string>& before) {
    std::vector<std::string> names;
    for (const std::string& name : sharedFiles()) {
        if (!before.contains(name)) {
            names.push_back(name);
        }
    }
    return names;
}

} // namespace

TEST(PosixIpcTest, LeavesNoFileBehind) {
    const std::set<std::string> before = sharedFiles();
    const std::string name = uniqueName();
    std::uint64_t semaphore = 0;
    std::uint64_t memory = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &semaphore), 0);
    ASSERT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 10, &memory), 0);
    EXPECT_EQ(newFiles(before).size(), 2u);
    EXPECT_EQ(QVNamedSemClose(semaphore), 0);
    EXPECT_EQ(QVSharedMemClose(memory), 0);
    EXPECT_EQ(newFiles(before), std::vector<std::string>());
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
