// The console of a job: a process that its session's leader brings to the foreground, stops and
// lets go on, as a shell does.

#include "tests/support/ChildRole.h"
#include "tests/support/posix/TerminalRole.h"
#include "tests/support/posix/TerminalSession.h"

#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>

using support::terminalMode;
using support::TerminalSession;

namespace {

void bringToForeground(pid_t job) {
    std::signal(SIGTTOU, SIG_IGN); // the caller need not be there itself
    tcsetpgrp(STDIN_FILENO, job);
    std::signal(SIGTTOU, SIG_DFL);
}

[[noreturn]] void tellKeyAndEnd() {
    support::tellKey();
    _exit(0);
}

/// Starts a job that tells a key.
pid_t startInForeground() {
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        bringToForeground(getpid());
        tellKeyAndEnd();
    }
    return job;
}

/// @return the signal that has stopped the job, 0 for one that has ended.
int awaitStop(pid_t job) {
    int status = 0;
    waitpid(job, &status, WUNTRACED);
    return WIFSTOPPED(status) ? WSTOPSIG(status) : 0;
}

void letGoOn(pid_t job) {
    kill(job, SIGCONT);
    int status = 0;
    waitpid(job, &status, 0);
}

/// Sets the terminal's mode as the leader, which is in the background meanwhile.
void setMode(const termios& mode) {
    std::signal(SIGTTOU, SIG_IGN);
    tcsetattr(STDIN_FILENO, TCSANOW, &mode);
    std::signal(SIGTTOU, SIG_DFL);
}

/// Stops a job that waits for a key, again and again, tells how it has left the terminal, and lets
/// it go on with the terminal as it was first.
int stopReader(int number, int times) {
    support::tell("ready");
    const termios before = terminalMode();
    const pid_t job = startInForeground();
    for (int time = 0; time < times; ++time) {
        support::awaitRawTerminal();
        kill(job, number);
        const int signal = awaitStop(job);
        const bool wasRaw = support::isTerminalRaw();
        setMode(before);
        support::tell(std::to_string(signal) + (wasRaw ? " raw" : " restored"));
        kill(job, SIGCONT);
    }
    awaitStop(job);
    return 0;
}

const support::ChildRole stopRole("stop-key-reader", [](const std::vector<std::string>&) {
    return stopReader(SIGTSTP, 3);
});
const support::ChildRole stopAtOnceRole("stop-key-reader-at-once",
                                        [](const std::vector<std::string>&) {
                                            return stopReader(SIGSTOP, 3);
                                        });

/// Stops a job that waits for a key, has `meanwhile` done, and lets it go on; tells how that has
/// left the terminal when it has ended.
template <typename Work>
int stopOnce(Work meanwhile) {
    support::tell("ready");
    const pid_t job = startInForeground();
    support::awaitRawTerminal();
    kill(job, SIGSTOP);
    awaitStop(job);
    meanwhile(job);
    kill(job, SIGCONT);
    awaitStop(job);
    support::tell(support::isTerminalRaw() ? "raw" : "restored");
    return 0;
}

/// The key is there before the job goes on.
const support::ChildRole typeRole("type-for-stopped-reader", [](const std::vector<std::string>&) {
    return stopOnce([](pid_t) {
        support::tell("stopped");
        pollfd typed = {STDIN_FILENO, POLLIN, 0};
        poll(&typed, 1, -1);
    });
});

const support::ChildRole endRole("end-stopped-reader", [](const std::vector<std::string>&) {
    return stopOnce([](pid_t job) { kill(job, SIGTERM); });
});

/// Changes the terminal before the stopped job is ended.
const support::ChildRole
    changeRole("change-for-stopped-reader", [](const std::vector<std::string>&) {
        const termios before = terminalMode();
        const int result = stopOnce([&before](pid_t job) {
            termios changed = before;
            changed.c_cc[VSTOP] = 1;
            setMode(changed);
            kill(job, SIGTERM);
        });
        support::tell(terminalMode().c_cc[VSTOP] == 1 ? "kept" : "lost");
        return result;
    });

/// Tells a key of a process that goes on, though nobody had stopped it, when that has come.
const support::ChildRole lateRole("continue-behind-a-key", [](const std::vector<std::string>&) {
    support::tell("ready");
    QVConsoleReadKeys(
        [](void*, std::int32_t) {
            raise(SIGCONT);
            return 0;
        },
        nullptr);
    support::tell(support::isTerminalRaw() ? "raw" : "restored");
    return 0;
});

/// Stops a job that ignores to be let go on, which it is all the same.
const support::ChildRole deafRole("stop-deaf-key-reader", [](const std::vector<std::string>&) {
    std::signal(SIGCONT, SIG_IGN);
    return stopReader(SIGSTOP, 1);
});

/// Stops a job with a handler for going on.
const support::ChildRole
    redrawRole("stop-redrawing-key-reader", [](const std::vector<std::string>&) {
        std::signal(SIGCONT, [](int) { support::tellInHandler("redrawn\n"); });
        return stopReader(SIGSTOP, 1);
    });

/// Stops a job once that handles or ignores a stop from its continue on.
const support::ChildRole
    handleRole("handle-stop-from-continue-on", [](const std::vector<std::string>&) {
        std::signal(SIGCONT, [](int) {
            std::signal(SIGTSTP, [](int) { support::tellInHandler("handled\n"); });
        });
        return stopReader(SIGTSTP, 1);
    });
const support::ChildRole
    ignoreRole("ignore-stop-from-continue-on", [](const std::vector<std::string>&) {
        std::signal(SIGCONT, [](int) { std::signal(SIGTSTP, SIG_IGN); });
        return stopReader(SIGTSTP, 1);
    });

/// Takes the foreground from a job that waits for a key, changes the terminal's stop key, ends the
/// job, and tells whether the key is still the changed one.
const support::ChildRole robRole("take-terminal-from-reader", [](const std::vector<std::string>&) {
    support::tell("ready");
    const pid_t job = startInForeground();
    support::awaitRawTerminal();
    bringToForeground(getpgrp());
    termios changed = terminalMode();
    changed.c_cc[VSTOP] = 1;
    setMode(changed);
    kill(job, SIGTERM);
    awaitStop(job);
    support::tell(terminalMode().c_cc[VSTOP] == 1 ? "kept" : "lost");
    return 0;
});

/// Takes the foreground from a job that waits for a key, reads a line there, and gives it back when
/// the key has stopped the job.
const support::ChildRole borrowRole("borrow-terminal-of-reader",
                                    [](const std::vector<std::string>&) {
                                        support::tell("ready");
                                        const termios before = terminalMode();
                                        const pid_t job = startInForeground();
                                        support::awaitRawTerminal();
                                        bringToForeground(getpgrp());
                                        setMode(before);
                                        support::tell("taken");
                                        support::tell(std::to_string(awaitStop(job)));
                                        char line[2] = {};
                                        const bool isRead = read(STDIN_FILENO, line, 2) == 2;
                                        bringToForeground(job);
                                        letGoOn(job);
                                        return isRead ? 0 : 1;
                                    });

/// Stops a process whose main thread waits for bytes while another waits for a key, lets it go on,
/// and then gives it both. Tells what the bytes' call gave.
const support::ChildRole callRole("stop-caller-beside-reader", [](const std::vector<std::string>&) {
    support::tell("ready");
    int ends[2] = {};
    if (pipe(ends) != 0) {
        return 1;
    }
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        bringToForeground(getpid());
        std::thread(support::tellKey).detach();
        char byte = 0;
        support::tell("call " + std::to_string(read(ends[0], &byte, 1)));
        _exit(0);
    }
    support::awaitRawTerminal();
    kill(job, SIGTSTP);
    awaitStop(job);
    kill(job, SIGCONT);
    support::awaitRawTerminal();
    const bool isWritten = write(ends[1], "x", 1) == 1;
    awaitStop(job);
    return isWritten ? 0 : 1;
});

/// Starts a job in the background, changes the terminal's stop key while it is stopped there,
/// brings it to the foreground, and tells whether the key is still the changed one when it has
/// ended.
int startReaderInBackground(const std::vector<std::string>&) {
    support::tell("ready");
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        tellKeyAndEnd();
    }
    const int signal = awaitStop(job);
    support::tell(std::to_string(signal) + (support::isTerminalRaw() ? " raw" : " untouched"));
    termios changed = terminalMode();
    changed.c_cc[VSTOP] = 1;
    setMode(changed);
    bringToForeground(job);
    letGoOn(job);
    support::tell(terminalMode().c_cc[VSTOP] == 1 ? "kept" : "lost");
    return 0;
}

/// Starts a job in the background that ignores to be stopped there, and tells how it has left the
/// terminal.
int startUnstoppableReader(const std::vector<std::string>&) {
    support::tell("ready");
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        std::signal(SIGTTIN, SIG_IGN);
        std::signal(SIGTTOU, SIG_IGN);
        tellKeyAndEnd();
    }
    awaitStop(job);
    support::tell(support::isTerminalRaw() ? "raw" : "untouched");
    return 0;
}

const support::ChildRole backgroundRole("background-key-reader", startReaderInBackground);
const support::ChildRole unstoppableRole("unstoppable-key-reader", startUnstoppableReader);

} // namespace

TEST(PosixConsoleJobTest, RestoresTheTerminalWhenTheProcessIsStopped) {
    TerminalSession session("stop-key-reader");
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(session.readLine(), std::to_string(SIGTSTP) + " restored");
    }
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, FindsTheTerminalAnewBehindAStopThatCannotBeCaught) {
    TerminalSession session("stop-key-reader-at-once");
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(session.readLine(), std::to_string(SIGSTOP) + " raw");
    }
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, AwaitsTheForegroundBeforeItTouchesTheTerminal) {
    TerminalSession session("background-key-reader");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTTIN) + " untouched");
    session.expectKey();
    EXPECT_EQ(session.readLine(), "kept");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, FailsInTheBackgroundWhereItIsNotToBeStopped) {
    TerminalSession session("unstoppable-key-reader");
    EXPECT_EQ(session.readLine(), "failed");
    EXPECT_EQ(session.readLine(), "untouched");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, RestoresTheTerminalThoughTheKeyCameWhileTheProcessWasStopped) {
    TerminalSession session("type-for-stopped-reader");
    EXPECT_EQ(session.readLine(), "stopped");
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
    EXPECT_EQ(session.readLine(), "restored");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, RestoresTheTerminalWhenAStoppedProcessIsEnded) {
    TerminalSession session("end-stopped-reader");
    EXPECT_EQ(session.readLine(), "restored");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, LeavesTheTerminalThatWasSetWhileTheProcessWasStopped) {
    TerminalSession session("change-for-stopped-reader");
    EXPECT_EQ(session.readLine(), "restored");
    EXPECT_EQ(session.readLine(), "kept");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, RestoresTheTerminalWhenTheLastKeyBringsAContinue) {
    TerminalSession session("continue-behind-a-key");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "restored");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, FindsTheTerminalAnewThoughTheContinueIsIgnored) {
    TerminalSession session("stop-deaf-key-reader");
    EXPECT_EQ(session.readLine(), std::to_string(SIGSTOP) + " raw");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, LetsTheProgramHandleTheContinue) {
    TerminalSession session("stop-redrawing-key-reader");
    EXPECT_EQ(session.readLine(), std::to_string(SIGSTOP) + " raw");
    EXPECT_EQ(session.readLine(), "redrawn");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, LeavesTheHandlerOfTheStopThatTheContinueBrought) {
    TerminalSession session("handle-stop-from-continue-on");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTSTP) + " restored");
    session.awaitRaw(true);
    session.signalForeground(SIGTSTP);
    EXPECT_EQ(session.readLine(), "handled");
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, LeavesAStopIgnoredThatTheContinueIgnores) {
    TerminalSession session("ignore-stop-from-continue-on");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTSTP) + " restored");
    session.awaitRaw(true);
    session.signalForeground(SIGTSTP);
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, LeavesTheTerminalToThoseWhoTookIt) {
    TerminalSession session("take-terminal-from-reader");
    EXPECT_EQ(session.readLine(), "kept");
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleJobTest, FindsTheTerminalAnewThatWasTakenMeanwhile) {
    TerminalSession session("borrow-terminal-of-reader");
    EXPECT_EQ(session.readLine(), "taken");
    session.type("x\n");
    EXPECT_EQ(session.readLine(), "x");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTTIN));
    session.expectKey();
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, LetsTheCallsBesideItGoOnBehindAStop) {
    TerminalSession session("stop-caller-beside-reader");
    EXPECT_EQ(session.readLine(), "call 1");
    EXPECT_EQ(session.await(), 0);
}
