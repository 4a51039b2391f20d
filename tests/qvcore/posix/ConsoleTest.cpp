#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"
#include "tests/support/posix/TerminalSession.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

using support::TerminalSession;

namespace {

/// Tells a line from within a signal handler.
void tellInHandler(std::string_view line) noexcept {
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
    errno = error;
}

/// Tells every key up to Ctrl-Z and whether it was handed over by a raw terminal.
int tellKeysInOneGo(const std::vector<std::string>&) {
    support::tell("ready");
    return QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            termios now = {};
            tcgetattr(STDIN_FILENO, &now);
            const bool isRaw = (now.c_lflag & (ICANON | ECHO | ISIG)) == 0;
            support::tell(std::to_string(key) + (isRaw ? " raw" : " not raw"));
            return key == 26 ? 0 : 1;
        },
        nullptr);
}

/// Tells a key, and whether the program's own signal handler ran meanwhile.
int tellKeyAndSignal(const std::vector<std::string>&) {
    static volatile std::sig_atomic_t hasArrived;
    std::signal(SIGUSR1, [](int) {
        hasArrived = 1;
        tellInHandler("signal\n");
    });
    support::tell("ready");
    std::int32_t key = 0;
    const std::int32_t result = QVConsoleReadKey(&key);
    support::tell(std::to_string(result) + " " + std::to_string(key) + " " +
                  std::to_string(hasArrived));
    return 0;
}

/// The signals that are a program's own business once it handles them.
const int ownSignals[] = {SIGWINCH, SIGCHLD, SIGURG, SIGPIPE, SIGIO, SIGPROF, SIGXCPU, SIGRTMIN};

/// Tells every key up to Ctrl-Z, and whether the terminal still has the stop key that the program's
/// handler for its own signals gave it meanwhile. The handler tells how it found the terminal.
int tellKeysAndMark(const std::vector<std::string>&) {
    static constexpr cc_t mark = 1;
    for (const int number : ownSignals) {
        std::signal(number, [](int) {
            termios marked = {};
            tcgetattr(STDIN_FILENO, &marked);
            marked.c_cc[VSTOP] = mark;
            tcsetattr(STDIN_FILENO, TCSANOW, &marked);
            tellInHandler((marked.c_lflag & ICANON) == 0 ? "raw\n" : "not raw\n");
        });
    }
    support::tell("ready");
    return QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            termios now = {};
            tcgetattr(STDIN_FILENO, &now);
            support::tell(std::to_string(key) +
                          (now.c_cc[VSTOP] == mark ? " marked" : " unmarked"));
            return key == 26 ? 0 : 1;
        },
        nullptr);
}

/// Tells a key that another thread reads, and then what its own call gave, which the signals of the
/// meantime meet first.
int tellKeyAndCall(const std::vector<std::string>&) {
    std::signal(SIGUSR1, [](int) { tellInHandler("signal\n"); });
    int ends[2] = {};
    if (pipe(ends) != 0) {
        return 1;
    }
    support::tell("ready");
    std::thread reader([&] {
        std::int32_t key = 0;
        QVConsoleReadKey(&key);
        support::tell(std::to_string(key));
        [[maybe_unused]] const ssize_t written = write(ends[1], "x", 1);
    });
    char byte = 0;
    const ssize_t count = read(ends[0], &byte, 1);
    reader.join();
    support::tell(std::to_string(count));
    return 0;
}

/// Ends the process while another thread waits for a key, and tells before that it waits.
int endBesideKeyReader(const std::vector<std::string>&) {
    support::tell("ready");
    std::thread([] {
        std::int32_t key = 0;
        QVConsoleReadKey(&key);
    }).detach();
    for (termios now = {}; tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & ICANON) != 0;) {
        std::this_thread::yield();
    }
    support::tell("raw");
    std::exit(7);
}

/// Tells a key. While it is awaited, forks a child that exits and one that a signal ends, and tells
/// how they have left the terminal.
int forkBesideKeyReader(const std::vector<std::string>&) {
    support::tell("ready");
    std::thread reader([] {
        std::int32_t key = 0;
        QVConsoleReadKey(&key);
        support::tell(std::to_string(key));
    });
    for (termios now = {}; tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & ICANON) != 0;) {
        std::this_thread::yield();
    }
    const pid_t leaver = fork();
    if (leaver == 0) {
        std::exit(7);
    }
    const pid_t victim = fork();
    if (victim == 0) {
        pause();
        _exit(8);
    }
    kill(victim, SIGTERM);
    int statuses[2] = {};
    waitpid(leaver, &statuses[0], 0);
    waitpid(victim, &statuses[1], 0);
    termios now = {};
    tcgetattr(STDIN_FILENO, &now);
    support::tell(std::to_string(WEXITSTATUS(statuses[0])) + " " +
                  std::to_string(WTERMSIG(statuses[1])) +
                  ((now.c_lflag & (ICANON | ECHO)) == 0 ? " still raw" : " not raw"));
    reader.join();
    return 0;
}

/// Reads keys up to a full stop in each of two threads, and tells what each has got.
int tellKeysOfTwoThreads(const std::vector<std::string>&) {
    support::tell("ready");
    const auto tellLine = [] {
        std::string line;
        QVConsoleReadKeys(
            [](void* context, std::int32_t key) {
                static_cast<std::string*>(context)->push_back(static_cast<char>(key));
                return key == '.' ? 0 : 1;
            },
            &line);
        support::tell(line);
    };
    std::thread other(tellLine);
    tellLine();
    other.join();
    return 0;
}

/// Ends the process at once when another thread begins to wait for a key.
int endWhenAKeyIsAwaited(const std::vector<std::string>&) {
    support::tell("ready");
    static std::atomic<bool> isNear = false;
    std::thread([] {
        isNear = true;
        std::int32_t key = 0;
        QVConsoleReadKey(&key);
    }).detach();
    while (!isNear) {
    }
    std::exit(7);
}

const support::ChildRole threadsRole("tell-keys-of-two-threads", tellKeysOfTwoThreads);
const support::ChildRole nearEndRole("end-when-a-key-is-awaited", endWhenAKeyIsAwaited);
const support::ChildRole oneGoRole("tell-keys-in-one-go", tellKeysInOneGo);
const support::ChildRole forkRole("fork-beside-key-reader", forkBesideKeyReader);
const support::ChildRole signalRole("tell-key-and-signal", tellKeyAndSignal);
const support::ChildRole markRole("tell-keys-and-mark", tellKeysAndMark);
const support::ChildRole callRole("tell-key-and-call", tellKeyAndCall);
const support::ChildRole endRole("end-beside-key-reader", endBesideKeyReader);

} // namespace

TEST(PosixConsoleTest, ReadsKeysWithoutEchoAndLines) {
    TerminalSession session("tell-keys");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97") << "an echo would stand in front";
    session.awaitRaw(true);
    session.type("\r");
    EXPECT_EQ(session.readLine(), "13");
}

TEST(PosixConsoleTest, ReadsControlKeysAsKeys) {
    TerminalSession session("tell-keys");
    const std::pair<const char*, const char*> keys[] = {{"\x03", "3"},  {"\n", "10"},
                                                        {"\x1C", "28"}, {"\x11", "17"},
                                                        {"\x13", "19"}, {"\xC3", "195"}};
    for (const auto& [typed, key] : keys) {
        session.awaitRaw(true);
        session.type(typed);
        EXPECT_EQ(session.readLine(), key);
    }
}

TEST(PosixConsoleTest, StaysRawFromTheFirstKeyToTheLast) {
    TerminalSession session("tell-keys-in-one-go");
    session.awaitRaw(true);
    session.type("ab");
    EXPECT_EQ(session.readLine(), "97 raw");
    EXPECT_EQ(session.readLine(), "98 raw");
    session.type("\x03");
    EXPECT_EQ(session.readLine(), "3 raw");
    session.type("\x1A");
    EXPECT_EQ(session.readLine(), "26 raw");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleTest, ASignalBetweenTwoKeysRestoresTheTerminal) {
    TerminalSession session("tell-keys-in-one-go");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97 raw");
    session.signal(SIGTERM);
    EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleTest, KnowsTheTerminalsKeysForErasingAndForTheEnd) {
    TerminalSession session("tell-keys");
    session.awaitRaw(true);
    session.type("\x7F");
    EXPECT_EQ(session.readLine(), "8");
    session.awaitRaw(true);
    session.type("\x04");
    EXPECT_EQ(session.readLine(), "26");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleTest, RestoresTheTerminalWhenASignalEndsTheProcess) {
    for (const int number :
         {SIGTERM, SIGINT, SIGHUP, SIGUSR2, SIGQUIT, SIGALRM, SIGPIPE, SIGXCPU, SIGXFSZ, SIGPROF,
          SIGVTALRM, SIGIO, SIGPWR, SIGSTKFLT, SIGRTMIN, SIGRTMAX}) {
        TerminalSession session("tell-keys");
        session.awaitRaw(true);
        session.signal(number);
        const int status = session.await();
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleTest, LetsTheProgramsOwnHandlerRunAndReadsOn) {
    TerminalSession session("tell-key-and-signal");
    session.awaitRaw(true);
    session.signal(SIGUSR1);
    EXPECT_EQ(session.readLine(), "signal");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "0 97 1");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleTest, LeavesTheTerminalAsItIsForSignalsOfTheProgram) {
    TerminalSession session("tell-keys-and-mark");
    session.awaitRaw(true);
    for (const int number : ownSignals) {
        session.signal(number);
        EXPECT_EQ(session.readLine(), "raw");
        session.type("a");
        EXPECT_EQ(session.readLine(), "97 marked");
    }
}

// Not among the suites of the thread sanitizer: it runs handlers later than they were called, when
// the thread that they are to wake waits again.
TEST(PosixConsoleTest, LetsTheCallsBesideItGoOn) {
    TerminalSession session("tell-key-and-call");
    for (int round = 0; round < 20; ++round) {
        session.awaitRaw(true);
        session.signal(SIGUSR1);
        EXPECT_EQ(session.readLine(), "signal");
    }
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
    EXPECT_EQ(session.readLine(), "1") << "a call that the signal broke off gives -1";
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleThreadsTest, RestoresTheTerminalWhenAnotherThreadEndsTheProcess) {
    TerminalSession session("end-beside-key-reader");
    EXPECT_EQ(session.readLine(), "raw");
    const int status = session.await();
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleTest, RestoresTheTerminalWhenTheProcessEndsAsTheReadingBegins) {
    for (int round = 0; round < 50; ++round) {
        TerminalSession session("end-when-a-key-is-awaited");
        EXPECT_EQ(WEXITSTATUS(session.await()), 7);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleThreadsTest, OneThreadReadsAndTheOtherWaits) {
    TerminalSession session("tell-keys-of-two-threads");
    session.awaitRaw(true);
    session.type("ab");
    session.type("cd.");
    EXPECT_EQ(session.readLine(), "abcd.");
    session.awaitRaw(true);
    session.type("ef.");
    EXPECT_EQ(session.readLine(), "ef.");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleTest, LeavesTheTerminalRawWhereForkedChildrenEnd) {
    TerminalSession session("fork-beside-key-reader");
    EXPECT_EQ(session.readLine(), "7 15 still raw") << "a signal ends a child as ever";
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}
