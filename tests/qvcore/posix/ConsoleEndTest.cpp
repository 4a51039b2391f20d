// The console of a process that ends or forks while a key is awaited.

#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"
#include "tests/support/posix/Forks.h"
#include "tests/support/posix/TerminalRole.h"
#include "tests/support/posix/TerminalSession.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/mman.h>
#include <sys/stat.h>

using support::TerminalSession;

namespace {

constexpr int exitCode = 7;

void readKey() {
    std::int32_t key = 0;
    QVConsoleReadKey(&key);
}

/// Ends the process while another thread waits for a key, and tells before that it waits.
int endBesideReader(void (*end)(int)) {
    support::tell("ready");
    std::thread(readKey).detach();
    support::awaitRawTerminal();
    support::tell("raw");
    end(exitCode);
    return 0;
}

const support::ChildRole endRole("end-beside-key-reader", [](const std::vector<std::string>&) {
    return endBesideReader([](int code) { std::exit(code); });
});

const support::ChildRole
    quickRole("end-quickly-beside-key-reader", [](const std::vector<std::string>&) {
        return endBesideReader([](int code) { std::quick_exit(code); });
    });

/// Ends the process at once when another thread begins to wait for a key.
const support::ChildRole nearEndRole("end-when-a-key-is-awaited",
                                     [](const std::vector<std::string>&) {
                                         support::tell("ready");
                                         static std::atomic<bool> isNear = false;
                                         std::thread([] {
                                             isNear = true;
                                             readKey();
                                         }).detach();
                                         while (!isNear) {
                                         }
                                         std::exit(exitCode);
                                         return 0;
                                     });

/// Awaits at its end the thread that waits for a key and tells it, and then tells one itself.
const support::ChildRole joinRole("await-key-reader-at-exit", [](const std::vector<std::string>&) {
    static std::thread reader;
    std::atexit([] {
        reader.join();
        support::tellKey();
    });
    support::tell("ready");
    reader = std::thread(support::tellKey);
    support::awaitRawTerminal();
    return 0;
});

/// Tells a key. While it is awaited, forks a child that exits and one that a signal ends, and tells
/// how they have left the terminal.
const support::ChildRole forkRole("fork-beside-key-reader", [](const std::vector<std::string>&) {
    support::tell("ready");
    std::thread reader(support::tellKey);
    support::awaitRawTerminal();
    const pid_t leaver = fork();
    if (leaver == 0) {
        std::exit(exitCode);
    }
    const pid_t victim = fork();
    if (victim == 0) {
        pause();
        _exit(0);
    }
    kill(victim, SIGTERM);
    int statuses[2] = {};
    waitpid(leaver, &statuses[0], 0);
    waitpid(victim, &statuses[1], 0);
    support::tell(std::to_string(WEXITSTATUS(statuses[0])) + " " +
                  std::to_string(WTERMSIG(statuses[1])) +
                  (support::isTerminalRaw() ? " still raw" : " not raw"));
    reader.join();
    return 0;
});

void tellKeys(const char* teller) {
    QVConsoleReadKeys(
        [](void* context, std::int32_t key) {
            support::tell(static_cast<const char*>(context) + std::to_string(key));
            return key == '.' ? 0 : 1;
        },
        const_cast<char*>(teller));
}

/// Tells keys up to a full stop by two processes at once, the second of which was forked while the
/// first awaited one.
const support::ChildRole shareRole("share-keys-with-child", [](const std::vector<std::string>&) {
    support::tell("ready");
    std::thread reader([] { tellKeys("parent "); });
    support::awaitRawTerminal();
    const pid_t child = fork();
    if (child == 0) {
        tellKeys("child ");
        _exit(0);
    }
    reader.join();
    waitpid(child, nullptr, 0);
    return 0;
});

/// Forks beside a thread that holds what the program takes at a fork and that a signal comes to,
/// and tells when that is done.
const support::ChildRole heldForkRole("fork-beside-held-lock", [](const std::vector<std::string>&) {
    static std::mutex held;
    static std::atomic<bool> isHandled = false;
    pthread_atfork([] { held.lock(); }, [] { held.unlock(); }, [] { held.unlock(); });
    std::signal(SIGUSR1, [](int) { isHandled = true; });
    support::tell("ready");
    std::thread reader(support::tellKey);
    support::awaitRawTerminal();
    held.lock();
    const pthread_t holder = pthread_self();
    std::thread forker([] {
        const pid_t child = fork();
        if (child == 0) {
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    });
    usleep(20'000); // the fork waits for the lock by now
    pthread_kill(holder, SIGUSR1);
    held.unlock();
    forker.join();
    support::tell(isHandled ? "handled" : "lost");
    reader.join();
    return 0;
});

/// Closes all descriptors behind a key, as a program does that tidies up, and opens files. Tells at
/// the exit whether they are as they were.
const support::ChildRole tidyRole("tidy-up-behind-a-key", [](const std::vector<std::string>&) {
    static std::array<int, 10> files;
    std::atexit([] {
        const bool areEmpty = std::all_of(files.begin(), files.end(), [](int file) {
            struct stat status = {};
            return fstat(file, &status) == 0 && status.st_size == 0;
        });
        support::tell(areEmpty ? "empty" : "written to");
    });
    support::tell("ready");
    const int free = dup(STDIN_FILENO);
    close(free);
    support::tellKey();
    support::tellKey();
    support::tell(dup(STDIN_FILENO) == free ? "none left" : "one left");
    for (int descriptor = STDERR_FILENO + 1; descriptor < 100; ++descriptor) {
        close(descriptor);
    }
    std::generate(files.begin(), files.end(), [] { return memfd_create("file", 0); });
    return 0;
});

/// Types until the child has had a key too.
void typeUntilTheChildReads(TerminalSession& session) {
    std::string line;
    while (line != "child 97") {
        session.type("a");
        line = session.readLine();
        ASSERT_TRUE(line == "parent 97" || line == "child 97") << line;
    }
}

} // namespace

TEST(PosixConsoleThreadsTest, RestoresTheTerminalWhenAnotherThreadEndsTheProcess) {
    for (const char* const role : {"end-beside-key-reader", "end-quickly-beside-key-reader"}) {
        TerminalSession session(role);
        EXPECT_EQ(session.readLine(), "raw");
        EXPECT_EQ(WEXITSTATUS(session.await()), exitCode);
        EXPECT_TRUE(session.isRestored()) << role;
    }
}

TEST(PosixConsoleEndTest, RestoresTheTerminalWhenTheProcessEndsAsTheReadingBegins) {
    for (int round = 0; round < 50; ++round) {
        TerminalSession session("end-when-a-key-is-awaited");
        EXPECT_EQ(WEXITSTATUS(session.await()), exitCode);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleEndTest, OnlyTheThreadThatEndsTheProcessReadsOn) {
    TerminalSession session("await-key-reader-at-exit");
    EXPECT_EQ(session.readLine(), "failed") << "of the thread that waited";
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleEndTest, LeavesTheTerminalRawWhereForkedChildrenEnd) {
    TerminalSession session("fork-beside-key-reader");
    EXPECT_EQ(session.readLine(), "7 15 still raw") << "a signal ends a child as ever";
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleEndTest, SharesItsKeysWithAForkedChildThatReadsToo) {
    TerminalSession session("share-keys-with-child");
    session.awaitRaw(true);
    typeUntilTheChildReads(session);
    session.signal(SIGUSR1);
    EXPECT_EQ(WTERMSIG(session.await()), SIGUSR1) << "the byte that the child took is not awaited";
}

TEST(PosixConsoleEndTest, RestoresTheTerminalBehindAForkedChildThatReadsToo) {
    TerminalSession session("share-keys-with-child");
    session.awaitRaw(true);
    typeUntilTheChildReads(session);
    session.type(".");
    EXPECT_TRUE(session.readLine().ends_with(" 46"));
    session.awaitRaw(false);
    session.type(".\n"); // the other still reads, from a terminal with lines by now
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleEndTest, AForkThatWaitsHoldsUpNoSignal) {
    TerminalSession session("fork-beside-held-lock");
    EXPECT_EQ(session.readLine(), "handled");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleEndTest, UsesNoDescriptorBehindTheRead) {
    TerminalSession session("tidy-up-behind-a-key");
    session.expectKey();
    session.awaitRaw(true);
    session.type("b");
    EXPECT_EQ(session.readLine(), "98");
    EXPECT_EQ(session.readLine(), "none left");
    EXPECT_EQ(session.readLine(), "empty");
    EXPECT_EQ(session.await(), 0);
}
