// The console of a job: a process that its session's leader brings to the foreground, stops and
// lets go on, as a shell does.

#include "tests/support/ChildRole.h"
#include "tests/support/posix/TerminalRole.h"
#include "tests/support/posix/TerminalSession.h"

#include <csignal>
#include <gtest/gtest.h>
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

/// Stops a job that waits for a key, tells how it has left the terminal, and lets it go on with the
/// terminal as it was first.
int stopReader(int number) {
    support::tell("ready");
    const termios before = terminalMode();
    const pid_t job = startInForeground();
    support::awaitRawTerminal();
    kill(job, number);
    const int signal = awaitStop(job);
    support::tell(std::to_string(signal) + (support::isTerminalRaw() ? " raw" : " restored"));
    setMode(before);
    letGoOn(job);
    return 0;
}

int stopReaderByKey(const std::vector<std::string>&) { return stopReader(SIGTSTP); }
int stopReaderAtOnce(const std::vector<std::string>&) { return stopReader(SIGSTOP); }

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

const support::ChildRole stopRole("stop-key-reader", stopReaderByKey);
const support::ChildRole stopAtOnceRole("stop-key-reader-at-once", stopReaderAtOnce);
const support::ChildRole backgroundRole("background-key-reader", startReaderInBackground);
const support::ChildRole unstoppableRole("unstoppable-key-reader", startUnstoppableReader);

void expectKey(TerminalSession& session) {
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
}

} // namespace

TEST(PosixConsoleJobTest, RestoresTheTerminalWhileTheProcessIsStopped) {
    TerminalSession session("stop-key-reader");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTSTP) + " restored");
    expectKey(session);
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, FindsTheTerminalAnewBehindAStopThatCannotBeCaught) {
    TerminalSession session("stop-key-reader-at-once");
    EXPECT_EQ(session.readLine(), std::to_string(SIGSTOP) + " raw");
    expectKey(session);
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}

TEST(PosixConsoleJobTest, AwaitsTheForegroundBeforeItTouchesTheTerminal) {
    TerminalSession session("background-key-reader");
    EXPECT_EQ(session.readLine(), std::to_string(SIGTTIN) + " untouched");
    expectKey(session);
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
