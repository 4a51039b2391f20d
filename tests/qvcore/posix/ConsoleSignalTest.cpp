// The console of a process to which signals come while a key is awaited.

#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"
#include "tests/support/posix/TerminalRole.h"
#include "tests/support/posix/TerminalSession.h"

#include <array>
#include <atomic>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>

using support::TerminalSession;

namespace {

/// Programs handle these to end or stop in their own way.
const int orderlySignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGTSTP};

/// These are a program's own business once it handles them.
const int ownSignals[] = {SIGWINCH, SIGCHLD, SIGURG, SIGPIPE, SIGIO, SIGPROF, SIGXCPU, SIGRTMIN};

/// The end of the process by a signal that it does not handle.
const int endingSignals[] = {SIGTERM, SIGINT,   SIGHUP,   SIGUSR2,  SIGQUIT, SIGALRM,
                             SIGPIPE, SIGXCPU,  SIGXFSZ,  SIGPROF,  SIGIO,   SIGVTALRM,
                             SIGPWR,  SIGRTMIN, SIGRTMAX, SIGSTKFLT};

void blockAll() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

/// Tells a key while the program handles signals itself, and tells how its handler finds the
/// terminal.
const support::ChildRole handlerRole("tell-key-and-handle", [](const std::vector<std::string>&) {
    for (const int number : orderlySignals) {
        std::signal(number, [](int) { support::tellModeInHandler(); });
    }
    support::tell("ready");
    support::tellKey();
    return 0;
});

/// Does so with handlers that take more than the signal's number, and tells the sender's word.
const support::ChildRole informedRole("tell-key-and-word", [](const std::vector<std::string>&) {
    struct sigaction action = {};
    action.sa_flags = SA_SIGINFO;
    action.sa_sigaction = [](int, siginfo_t* information, void*) {
        support::tellInHandler(information->si_value.sival_int == 42 ? "word\n" : "no word\n");
    };
    sigaction(SIGUSR1, &action, nullptr);
    support::tell("ready");
    support::tellKey();
    return 0;
});

/// Tells every key up to Ctrl-Z, and whether the terminal still has the stop key that the program's
/// handler for its own signals gave it meanwhile. The handler tells how it found the terminal. A
/// hang-up is ignored.
const support::ChildRole markRole("tell-keys-and-mark", [](const std::vector<std::string>&) {
    static constexpr cc_t mark = 1;
    std::signal(SIGHUP, SIG_IGN);
    for (const int number : ownSignals) {
        std::signal(number, [](int) {
            support::tellModeInHandler();
            termios marked = support::terminalMode();
            marked.c_cc[VSTOP] = mark;
            tcsetattr(STDIN_FILENO, TCSANOW, &marked);
            support::tellInHandler("marked\n");
        });
    }
    support::tell("ready");
    return QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            support::tell(std::to_string(key) +
                          (support::terminalMode().c_cc[VSTOP] == mark ? " marked" : " unmarked"));
            return key == 26 ? 0 : 1;
        },
        nullptr);
});

void awaitSleep(pid_t thread) {
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
    for (std::string state; state != "S";) {
        std::ifstream file(path);
        file.ignore(1000, ')');
        file >> state;
    }
}

/// Sends a signal to another thread's call for each key 's', and ends with another key. The thread
/// tells what the call gave.
int tellCallBesideReader(int flags) {
    struct sigaction action = {};
    action.sa_flags = flags;
    action.sa_handler = [](int) { support::tellInHandler("signal\n"); };
    sigaction(SIGUSR1, &action, nullptr);
    static int ends[2];
    if (pipe(ends) != 0) {
        return 1;
    }
    static std::atomic<pid_t> callersId = 0;
    std::thread caller([] {
        char byte = 0;
        callersId = gettid();
        const ssize_t count = read(ends[0], &byte, 1);
        support::tell("call " + std::to_string(count));
    });
    while (callersId == 0) {
    }
    support::tell("ready");
    QVConsoleReadKeys(
        [](void* context, std::int32_t key) {
            if (key != 's') {
                return 0;
            }
            awaitSleep(callersId);
            pthread_kill(*static_cast<const pthread_t*>(context), SIGUSR1);
            return 1;
        },
        std::array{caller.native_handle()}.data());
    const bool isReleased = write(ends[1], "x", 1) == 1;
    caller.join();
    return isReleased ? 0 : 1;
}

const support::ChildRole restartedRole("tell-restarted-call", [](const std::vector<std::string>&) {
    return tellCallBesideReader(SA_RESTART);
});
const support::ChildRole brokenRole("tell-broken-off-call", [](const std::vector<std::string>&) {
    return tellCallBesideReader(0);
});

/// Waits for a key in a thread that blocks all signals, as the threads of many programs do.
const support::ChildRole blockingRole("tell-keys-with-signals-blocked",
                                      [](const std::vector<std::string>&) {
                                          support::tell("ready");
                                          std::thread reader([] {
                                              blockAll();
                                              support::tellKey();
                                          });
                                          reader.join();
                                          return 0;
                                      });

/// Sets a handler while a key is awaited, and meets it when the key is there.
const support::ChildRole laterRole("handle-from-a-key-on", [](const std::vector<std::string>&) {
    support::tell("ready");
    QVConsoleReadKeys(
        [](void*, std::int32_t) {
            std::signal(SIGUSR2, [](int) { support::tellInHandler("handled\n"); });
            return 0;
        },
        nullptr);
    raise(SIGUSR2);
    return 0;
});

/// Sets again, when a key has come, the handling that it saw while the key was awaited.
const support::ChildRole
    againRole("handle-again-behind-a-key", [](const std::vector<std::string>&) {
        std::signal(SIGUSR1, [](int) { support::tellInHandler("own\n"); });
        support::tell("ready");
        static struct sigaction seen;
        QVConsoleReadKeys(
            [](void*, std::int32_t) {
                sigaction(SIGUSR1, nullptr, &seen);
                return 0;
            },
            nullptr);
        sigaction(SIGUSR1, &seen, nullptr);
        raise(SIGUSR1);
        support::tellKey();
        raise(SIGUSR1);
        return 0;
    });

/// Replaces the handler of SIGTERM while a key is awaited by one that calls the one that it found.
/// Then awaits a second key.
const support::ChildRole chainRole("chain-handlers", [](const std::vector<std::string>&) {
    static void (*found)(int);
    support::tell("ready");
    QVConsoleReadKeys(
        [](void*, std::int32_t) {
            found = std::signal(SIGTERM, [](int signal) {
                support::tellInHandler("first\n");
                found(signal);
            });
            return 0;
        },
        nullptr);
    support::tell("replaced");
    support::tellKey();
    return 0;
});

void (*handlerBefore)(int);

/// A taker of keys that has a new handler call the one before it, from the first key on. Goes on.
template <int number>
int chainHandler(void*, std::int32_t key) {
    if (key != 'h') {
        support::tell(std::to_string(key));
        return 0;
    }
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_flags = SA_ONSTACK;
    action.sa_handler = [](int signal) {
        handlerBefore(signal);
        support::tellInHandler("chained\n");
    };
    sigaction(number, &action, &before);
    handlerBefore = before.sa_handler;
    support::tell("replaced");
    return 1;
}

/// Replaces the handler of the stop while keys are awaited, awaits keys twice, and stops at last.
/// Nothing stops in a session whose leader alone is there.
const support::ChildRole chainStopRole("chain-stops", [](const std::vector<std::string>&) {
    support::tell("ready");
    QVConsoleReadKeys(chainHandler<SIGTSTP>, nullptr);
    support::tellKey();
    raise(SIGTSTP);
    return 0;
});

/// Tells a key with a handler that is meant for the first signal alone.
const support::ChildRole onceRole("handle-the-first-signal", [](const std::vector<std::string>&) {
    struct sigaction action = {};
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    action.sa_handler = [](int) { support::tellModeInHandler(); };
    sigaction(SIGTERM, &action, nullptr);
    support::tell("ready");
    support::tellKey();
    return 0;
});

/// Raises such a signal in two threads at once while a key is awaited.
const support::ChildRole onceAtOnceRole("handle-one-of-two", [](const std::vector<std::string>&) {
    struct sigaction action = {};
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    static std::atomic<int> missing = 2;
    const auto signalAtOnce = [] {
        support::awaitRawTerminal();
        --missing;
        while (missing != 0) {
        }
        raise(SIGUSR1);
    };
    support::tell("ready");
    std::thread(signalAtOnce).detach();
    std::thread(signalAtOnce).detach();
    support::tellKey();
    return 0;
});

/// Tells a key with a handler that ends the process by the signal's default.
const support::ChildRole politeRole("end-by-default-at-last", [](const std::vector<std::string>&) {
    std::signal(SIGTERM, [](int signal) {
        std::signal(signal, SIG_DFL);
        raise(signal);
    });
    support::tell("ready");
    std::thread(support::tellKey).join(); // so that reader and handler are two threads
    return 0;
});

/// Tells a key while one handler runs within another, and how the outer one finds the terminal
/// behind the inner one.
const support::ChildRole nestedRole("nest-handlers", [](const std::vector<std::string>&) {
    std::signal(SIGUSR2, [](int) { support::tellModeInHandler(); });
    std::signal(SIGUSR1, [](int) {
        raise(SIGUSR2);
        usleep(10'000); // time for the reader to do the wrong thing
        support::tellModeInHandler();
    });
    support::tell("ready");
    std::thread(support::tellKey).join();
    return 0;
});

/// Tells how many of its signals have come while it tells keys.
const support::ChildRole burstRole("tell-keys-in-a-burst", [](const std::vector<std::string>&) {
    std::signal(SIGUSR1, [](int) {});
    std::signal(SIGALRM, [](int) {});
    support::tell("ready");
    return QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            support::tell(std::to_string(key));
            return key == '.' ? 0 : 1;
        },
        nullptr);
});

/// Sets a handler that raises its own signal again and again, on a stack that has no room for many
/// handlers within each other.
void handleManyInARow() {
    static std::array<char, 256 * 1024> memory;
    const stack_t stack = {.ss_sp = memory.data(), .ss_flags = 0, .ss_size = memory.size()};
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_flags = SA_ONSTACK;
    action.sa_handler = [](int signal) {
        static int handled;
        if (++handled < 5000) {
            raise(signal);
        } else {
            support::tellInHandler("all handled\n");
        }
    };
    sigaction(SIGUSR1, &action, nullptr);
}

const support::ChildRole rowRole("handle-many-in-a-row", [](const std::vector<std::string>&) {
    handleManyInARow();
    support::tell("ready");
    support::tellKey();
    return 0;
});
const support::ChildRole rowInChainRole("chain-many-in-a-row", [](const std::vector<std::string>&) {
    handleManyInARow();
    support::tell("ready");
    return QVConsoleReadKeys(chainHandler<SIGUSR1>, nullptr);
});

/// Tells a key twice: in a child that a handler forks, and then in the parent.
const support::ChildRole forkRole("fork-in-a-handler", [](const std::vector<std::string>&) {
    static pid_t parent;
    parent = getpid();
    std::signal(SIGUSR1, [](int) {
        const pid_t child = fork();
        if (child != 0) {
            waitpid(child, nullptr, 0);
            support::tellInHandler("child ended\n");
        } else {
            support::tellInHandler("forked\n");
        }
    });
    support::tell("ready");
    QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            support::tell((getpid() == parent ? "parent " : "child ") + std::to_string(key));
            return 0;
        },
        nullptr);
    return 0;
});

} // namespace

TEST(PosixConsoleSignalTest, RestoresTheTerminalWhenASignalEndsTheProcess) {
    for (const int number : endingSignals) {
        TerminalSession session("tell-keys");
        session.awaitRaw(true);
        session.signal(number);
        const int status = session.await();
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(session.isRestored()) << number;
    }
}

TEST(PosixConsoleSignalTest, RestoresTheTerminalBetweenTwoKeys) {
    TerminalSession session("tell-keys-in-one-go");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97 raw");
    session.signal(SIGTERM);
    EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, RestoresTheTerminalThoughTheReaderBlocksTheSignal) {
    TerminalSession session("tell-keys-with-signals-blocked");
    session.awaitRaw(true);
    session.signal(SIGTERM);
    EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, ShowsARestoredTerminalToHandlersThatMayEndTheProcess) {
    TerminalSession session("tell-key-and-handle");
    for (const int number : orderlySignals) {
        session.awaitRaw(true);
        session.signal(number);
        EXPECT_EQ(session.readLine(), "restored") << number;
    }
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, PassesOnWhatCameWithTheSignal) {
    TerminalSession session("tell-key-and-word");
    session.awaitRaw(true);
    session.signal(SIGUSR1, 42);
    EXPECT_EQ(session.readLine(), "word");
}

TEST(PosixConsoleSignalTest, LeavesTheTerminalAsItIsForOtherSignals) {
    TerminalSession session("tell-keys-and-mark");
    session.awaitRaw(true);
    for (const int number : ownSignals) {
        session.signal(number);
        EXPECT_EQ(session.readLine(), "raw") << number;
        EXPECT_EQ(session.readLine(), "marked");
        session.signal(SIGHUP);
        session.type("a");
        EXPECT_EQ(session.readLine(), "97 marked");
    }
}

TEST(PosixConsoleSignalTest, HandlesASignalOnTheThreadThatItComesTo) {
    TerminalSession restarted("tell-restarted-call");
    restarted.awaitRaw(true);
    restarted.type("s");
    EXPECT_EQ(restarted.readLine(), "signal");
    restarted.awaitRaw(true);
    restarted.type("a");
    EXPECT_EQ(restarted.readLine(), "call 1");
    TerminalSession brokenOff("tell-broken-off-call");
    brokenOff.awaitRaw(true);
    brokenOff.type("s");
    EXPECT_EQ(brokenOff.readLine(), "signal");
    EXPECT_EQ(brokenOff.readLine(), "call -1");
}

TEST(PosixConsoleSignalTest, KeepsAHandlerThatIsSetMeanwhile) {
    TerminalSession session("handle-from-a-key-on");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "handled");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleSignalTest, HandlesAsBeforeWhereItsHandlerIsSetAgain) {
    TerminalSession session("handle-again-behind-a-key");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "own");
    session.expectKey();
    EXPECT_EQ(session.readLine(), "own");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleSignalTest, LeavesAHandlerAloneThatCallsTheOneBeforeIt) {
    TerminalSession session("chain-handlers");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "replaced");
    session.awaitRaw(true);
    session.signal(SIGTERM);
    EXPECT_EQ(session.readLine(), "first");
    EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, KeepsAHandlerThatCallsTheOneBeforeItAsOftenAsItIsCalled) {
    TerminalSession session("chain-stops");
    session.awaitRaw(true);
    session.type("h");
    EXPECT_EQ(session.readLine(), "replaced");
    for (int time = 0; time < 2; ++time) {
        session.awaitRaw(true);
        session.signal(SIGTSTP);
        EXPECT_EQ(session.readLine(), "chained");
    }
    session.expectKey();
    for (int time = 0; time < 2; ++time) {
        session.awaitRaw(true);
        session.signal(SIGTSTP);
        EXPECT_EQ(session.readLine(), "chained");
    }
    session.expectKey();
    EXPECT_EQ(session.readLine(), "chained") << "behind the last key";
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleSignalTest, HandlesTheFirstSignalAloneWhereTheProgramSaysSo) {
    TerminalSession session("handle-the-first-signal");
    session.awaitRaw(true);
    session.signal(SIGTERM);
    EXPECT_EQ(session.readLine(), "restored");
    session.awaitRaw(true);
    session.signal(SIGTERM);
    EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, HandlesOneOfTwoSignalsAtOnceWhereTheProgramSaysSo) {
    for (int round = 0; round < 150; ++round) {
        TerminalSession session("handle-one-of-two");
        ASSERT_EQ(WTERMSIG(session.await()), SIGUSR1);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleSignalTest, RestoresTheTerminalWhereAHandlerEndsByTheDefault) {
    for (int round = 0; round < 20; ++round) {
        TerminalSession session("end-by-default-at-last");
        session.awaitRaw(true);
        session.signal(SIGTERM);
        EXPECT_EQ(WTERMSIG(session.await()), SIGTERM);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleSignalTest, KeepsTheTerminalRestoredUntilTheLastHandlerHasEnded) {
    TerminalSession session("nest-handlers");
    session.awaitRaw(true);
    session.signal(SIGUSR1);
    EXPECT_EQ(session.readLine(), "restored");
    EXPECT_EQ(session.readLine(), "restored");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleSignalTest, LosesNoKeyInABurstOfSignals) {
    TerminalSession session("tell-keys-in-a-burst");
    session.awaitRaw(true);
    for (int key = 0; key < 100; ++key) {
        for (int signal = 0; signal < 10; ++signal) {
            session.signal(signal % 2 == 0 ? SIGUSR1 : SIGALRM);
        }
        session.awaitRaw(true);
        session.type("a");
        EXPECT_TRUE(session.readLine().ends_with("97"));
    }
}

TEST(PosixConsoleSignalTest, ReadsOnInAChildThatAHandlerForks) {
    TerminalSession session("fork-in-a-handler");
    session.awaitRaw(true);
    session.signal(SIGUSR1);
    EXPECT_EQ(session.readLine(), "forked");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "child 97");
    EXPECT_EQ(session.readLine(), "child ended");
    session.awaitRaw(true);
    session.type("b");
    EXPECT_EQ(session.readLine(), "parent 98");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleSignalTest, HandlesOneSignalBehindTheOther) {
    TerminalSession session("handle-many-in-a-row");
    session.awaitRaw(true);
    session.signal(SIGUSR1);
    EXPECT_EQ(session.readLine(), "all handled");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleSignalTest, HandlesOneSignalBehindTheOtherWhereHandlersCallEachOther) {
    TerminalSession session("chain-many-in-a-row");
    session.awaitRaw(true);
    session.type("h");
    EXPECT_EQ(session.readLine(), "replaced");
    session.signal(SIGUSR1);
    std::string line = session.readLine();
    int calls = 1;
    for (; line == "chained"; line = session.readLine()) {
        ++calls;
    }
    EXPECT_EQ(line, "all handled");
    EXPECT_EQ(session.readLine(), "chained");
    EXPECT_EQ(calls, 5000);
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
}
