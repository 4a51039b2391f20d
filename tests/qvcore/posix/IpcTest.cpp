#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"
#include "qvcore/common/ProcessTable.h"

#include "tests/qvcore/Results.h"
#include "tests/support/Allocations.h"
#include "tests/support/ChildRole.h"
#include "tests/support/StartedThread.h"
#include "tests/support/TestProcess.h"
#include "tests/support/posix/Forks.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <pthread.h>
#include <sstream>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace support;

namespace {

/// How often the system's call for the memory of a file is still to be interrupted.
int interruptions = 0;

constexpr std::int32_t outOfMemory = bits(0x8007000Eu);

std::string uniqueName() { return "qvcore-posix-test-" + std::to_string(getpid()); }

/// The files of shared memory that this process has mapped, and where each lies first.
std::map<std::string, qv::core::SharedHead*> mappedFiles() {
    std::map<std::string, qv::core::SharedHead*> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t path = line.find("/dev/shm/");
        if (path != std::string::npos) {
            std::uintptr_t address = 0;
            std::istringstream(line) >> std::hex >> address;
            files.try_emplace(line.substr(path), reinterpret_cast<qv::core::SharedHead*>(address));
        }
    }
    return files;
}

/// What the system lets be done with the memory at the address, in the letters by which it tells.
std::string protectionOf(const void* address) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t start = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::string letters;
        std::istringstream(line) >> std::hex >> start >> dash >> end >> letters;
        if (start <= wanted && wanted < end) {
            return letters;
        }
    }
    return "not mapped";
}

/// Takes every free place of the only block that this process has mapped, in the name of a process
/// that has ended.
void fillWithAnEndedProcess() {
    const pid_t ended = fork();
    if (ended == 0) {
        _exit(0);
    }
    waitpid(ended, nullptr, 0);
    // No process has that start: should the number come again, it is another's.
    const qv::core::ProcessIdentity identity = {static_cast<std::uint32_t>(ended), 1};
    const auto files = mappedFiles();
    ASSERT_EQ(files.size(), 1u);
    std::size_t taken = 0;
    for (qv::core::ProcessEntry& entry : files.begin()->second->processes) {
        if (entry.isFree()) {
            entry.take(identity);
            entry.handles.store(1);
            ++taken;
        }
    }
    ASSERT_EQ(taken, qv::core::ProcessTable::capacity - 1) << "this process has its own";
}

/// The file of the lock of that name, which nobody has open.
std::string fileOfLock(const std::string& name) {
    std::uint64_t lock = 0;
    EXPECT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    const std::string file = mappedFiles().begin()->first;
    EXPECT_EQ(QVNamedSemClose(lock), 0);
    return file;
}

/// Takes all descriptors of the process but some, and gives them back.
class DescriptorsLeft {
public:
    explicit DescriptorsLeft(std::size_t left) {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few = {256, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = open("/dev/null", O_RDONLY); taken != -1;
             taken = open("/dev/null", O_RDONLY)) {
            taken_.push_back(taken);
        }
        giveBackTo(taken_.size() - left);
    }
    ~DescriptorsLeft() {
        giveBackTo(0);
        setrlimit(RLIMIT_NOFILE, &before_);
    }
    DescriptorsLeft(const DescriptorsLeft&) = delete;
    DescriptorsLeft& operator=(const DescriptorsLeft&) = delete;

private:
    void giveBackTo(std::size_t count) {
        for (; taken_.size() > count; taken_.pop_back()) {
            close(taken_.back());
        }
    }

    rlimit before_ = {};
    std::vector<int> taken_;
};

/// Opens and uses a lock: a sanitizer looks at a class once, and needs
/// descriptors for it.
void useALock() {
    const std::string name = uniqueName() + "-first-" + std::to_string(getpid());
    std::uint64_t lock = 0;
    EXPECT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    EXPECT_EQ(QVSemaphoreWait(lock), 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

/// The letter by which the system tells how this process is.
char ownState() {
    std::ifstream file("/proc/" + std::to_string(getpid()) + "/stat");
    std::string text;
    std::getline(file, text);
    return text.at(text.rfind(')') + 2);
}

/// Holds the lock while its main thread has left and another lives on.
const support::ChildRole headless("semaphore-without-main-thread",
                                  [](const std::vector<std::string>& arguments) -> int {
                                      std::uint64_t lock = 0;
                                      QVNamedSemOpen(arguments.at(0).c_str(), 1, &lock);
                                      const std::int32_t result = QVSemaphoreWait(lock);
                                      std::thread([result] {
                                          while (ownState() != 'Z') {
                                              std::this_thread::yield();
                                          }
                                          support::tell(result == 0 ? "held" : "not held");
                                          support::hear();
                                          std::_Exit(0);
                                      }).detach();
                                      pthread_exit(nullptr);
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
    std::uint64_t lock = 0;
    useALock();
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    StayingFork holder([lock] {
        const DescriptorsLeft poor(0);
        return QVSemaphoreWait(lock);
    });
    EXPECT_EQ(holder.result(), 0);
    EXPECT_EQ(QVSemaphoreTryWait(lock), timedOut);
    holder.kill();
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0) << "its end is known all the same";
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

TEST(PosixIpcTest, KeepsTheCountsOfAProcessThatCouldHaveLearnedItsStartLater) {
    const std::string name = uniqueName() + "-later";
    std::uint64_t first = 0;
    useALock();
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &first), 0);
    EXPECT_EQ(inFork([&] {
                  bool isRight = false;
                  {
                      const DescriptorsLeft poor(0);
                      isRight = QVSemaphoreWait(first) == 0;
                  }
                  std::uint64_t second = 0;
                  isRight = isRight && QVNamedSemOpen(name.c_str(), 1, &second) == 0;
                  isRight = isRight && QVSemaphorePost(second) == 0 && QVNamedSemClose(first) == 0;
                  std::int32_t value = 0;
                  isRight = isRight && QVSemaphoreGetValue(second, &value) == 0 && value == 1;
                  return isRight ? 0 : 1;
              }),
              0)
        << "what the other handle gave back is not owed any more";
    EXPECT_EQ(QVNamedSemClose(first), 0);
}

TEST(PosixIpcTest, LearnsItsStartThoughItHasOneDescriptorLeft) {
    useALock();
    EXPECT_EQ(inFork([] {
                  std::uint64_t lock = 0;
                  std::int32_t result = 0;
                  {
                      const DescriptorsLeft poor(1);
                      result = QVNamedSemOpen(uniqueName().c_str(), 1, &lock);
                  }
                  if (result != 0) {
                      return 1;
                  }
                  qv::core::ProcessTable& processes = mappedFiles().begin()->second->processes;
                  return processes.begin()->identity().start != 0 ? 0 : 2;
              }),
              0);
}

TEST(PosixIpcTest, TakesBackWhatAnEarlierProcessOfItsNumberHeld) {
    struct Case {
        std::uint32_t earlierStart;
        std::size_t descriptors; // with none of them a process cannot learn its own start
    };
    useALock();
    for (const Case& row : {Case{1, 0}, Case{0, 10}, Case{1, 10}}) {
        std::uint64_t lock = 0;
        ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
        ASSERT_EQ(QVSemaphoreWait(lock), 0);
        const auto [file, block] = *mappedFiles().begin();
        qv::core::ProcessTable& processes = block->processes;
        StayingFork child([&] {
            // What the parent owes is the debt of a process whose number came again.
            const auto number = static_cast<std::uint32_t>(getpid());
            processes.begin()->held.store(0);
            processes.findOrTake({number, row.earlierStart})->held.store(1);
            const DescriptorsLeft poor(row.descriptors);
            std::int32_t value = 0;
            return QVSemaphoreGetValue(lock, &value) == 0 ? value : -1;
        });
        EXPECT_EQ(child.result(), 1) << row.earlierStart << ' ' << row.descriptors;
        EXPECT_EQ(QVNamedSemClose(lock), 0);
        EXPECT_TRUE(std::filesystem::exists(file)) << "the child has it open";
        child.kill();
        useALock();
        EXPECT_FALSE(std::filesystem::exists(file)) << "nobody has it open";
    }
}

/// Opens something shared with its first, second and so on allocation failing.
template <typename Open, typename Close>
void openWithFailures(Open open, Close close) {
    std::uint64_t handle = 0;
    ASSERT_EQ(open(&handle), 0);
    ASSERT_EQ(mappedFiles().size(), 1u);
    const std::string file = mappedFiles().begin()->first;
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
    const auto files = mappedFiles();
    EXPECT_EQ(files.size(), 2u);
    for (const auto& [file, block] : files) {
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_EQ(QVNamedSemClose(semaphore), 0);
    EXPECT_EQ(QVSharedMemClose(memory), 0);
    for (const auto& [file, block] : files) {
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
        const std::string file = mappedFiles().begin()->first;
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

TEST(PosixIpcTest, ClearsAwayTheFileOfAProcessThatWasKilledBeforeItFilledIt) {
    const std::string file = fileOfLock(uniqueName());
    const std::string left = file + "-left";
    const std::string begun = file + "-begun";
    EXPECT_TRUE(std::ofstream(left).is_open());
    const int maker = open(begun.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(maker, LOCK_EX), 0);
    useALock();
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::exists(begun)) << "its maker is at work";
    close(maker);
    useALock();
    EXPECT_FALSE(std::filesystem::exists(begun));
}

TEST(PosixIpcThreadsTest, BeginsAnewWhereItsFileLostItsNameBeforeItWasLocked) {
    const std::string name = uniqueName();
    const std::string file = fileOfLock(name);
    const int other = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    std::uint64_t lock = 0;
    std::thread opener =
        startedThread([&] { EXPECT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0); });
    EXPECT_TRUE(std::filesystem::remove(file));
    close(other);
    opener.join();
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(QVNamedSemClose(lock), 0);
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

TEST(PosixIpcTest, MapsABlockForNoMoreThanItsAccessSays) {
    constexpr std::uint32_t readAccess = 0x80000000u;
    constexpr std::uint32_t writeAccess = 0x40000000u;
    std::uint64_t block = 0;
    ASSERT_EQ(QVSharedMemOpen(uniqueName().c_str(), 0, 0, 10, &block), 0);
    for (const auto& [access, protection] : {std::pair{readAccess, "r--s"},
                                             {writeAccess, "rw-s"},
                                             {readAccess | writeAccess, "rw-s"}}) {
        void* address = nullptr;
        ASSERT_EQ(QVSharedMemAttach(block, access, &address), 0);
        EXPECT_EQ(protectionOf(address), protection) << access;
        EXPECT_EQ(QVSharedMemDetach(address), 0);
    }
    EXPECT_EQ(QVSharedMemClose(block), 0);
}

TEST(PosixIpcTest, HasRoomForAWaiterWhereOnlyAnEndedProcessFillsTheTable) {
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    ASSERT_NO_FATAL_FAILURE(fillWithAnEndedProcess());
    EXPECT_EQ(inFork([lock] { return QVSemaphoreWait(lock) == 0 ? 0 : 1; }), 0);
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0) << "what it held came back with its end";
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

TEST(PosixIpcTest, HasRoomForAnOpenerWhereOnlyAnEndedProcessFillsTheTable) {
    const std::string name = uniqueName();
    std::uint64_t block = 0;
    ASSERT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 10, &block), 0);
    ASSERT_NO_FATAL_FAILURE(fillWithAnEndedProcess());
    EXPECT_EQ(inFork([&name] {
                  std::uint64_t own = 0;
                  return QVSharedMemOpen(name.c_str(), 0, 0, 10, &own) == 0 ? 0 : 1;
              }),
              0);
    EXPECT_EQ(QVSharedMemClose(block), 0);
}

TEST(PosixIpcTest, CountsThePlacesOfAnEndedProcessThoughOthersAreFree) {
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    ASSERT_EQ(QVSemaphorePost(lock), 0);
    EXPECT_EQ(inFork([lock] { return QVSemaphoreWait(lock) == 0 ? 0 : 1; }), 0);
    std::int32_t value = 0;
    EXPECT_EQ(QVSemaphoreGetValue(lock, &value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

/// Goes on as another program while it holds the lock of that name.
const support::ChildRole goingOn("go-on-with-lock", [](const std::vector<std::string>& arguments) {
    std::uint64_t lock = 0;
    if (QVNamedSemOpen(arguments[0].c_str(), 1, &lock) == 0 && QVSemaphoreWait(lock) == 0) {
        execl(support::programPath().c_str(), support::programPath().c_str(), "--child",
              arguments[1].c_str(), arguments[0].c_str(), nullptr);
    }
    return 1;
});

const support::ChildRole another("be-another-program", [](const std::vector<std::string>&) {
    support::tell("going on");
    support::hear();
    return 0;
});

const support::ChildRole again("take-lock-again", [](const std::vector<std::string>& arguments) {
    std::uint64_t lock = 0;
    const bool isOpen = QVNamedSemOpen(arguments[0].c_str(), 1, &lock) == 0;
    support::tell(isOpen && QVSemaphoreTryWait(lock) == 0 ? "taken" : "held");
    return QVNamedSemClose(lock);
});

TEST(PosixIpcTest, TakesBackWhatAProcessHeldThatGoesOnAsAnotherProgram) {
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, &lock), 0);
    support::TestProcess process("go-on-with-lock", {uniqueName(), "be-another-program"});
    EXPECT_EQ(process.readLine(), "going on");
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}

TEST(PosixIpcTest, AProgramDoesNotHoldWhatTheOneBeforeItHeld) {
    support::TestProcess process("go-on-with-lock", {uniqueName(), "take-lock-again"});
    EXPECT_EQ(process.readLine(), "taken");
    EXPECT_EQ(process.wait(), 0);
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

TEST(PosixIpcThreadsTest, KeepsTheLockOfAProcessWhoseMainThreadHasLeft) {
    const std::string name = uniqueName();
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    support::TestProcess holder("semaphore-without-main-thread", {name});
    ASSERT_EQ(holder.readLine(), "held");
    EXPECT_EQ(QVSemaphoreTryWait(lock), timedOut) << "its other thread lives";
    holder.kill();
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}
