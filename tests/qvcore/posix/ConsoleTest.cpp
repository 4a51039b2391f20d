#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

/// A new session with a terminal of its own, in which the test program plays a role.
/// This side sees what the program writes and the terminal's mode.
class TerminalSession {
public:
    explicit TerminalSession(const std::string& role = "tell-keys") {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_EQ(grantpt(master_), 0);
        EXPECT_EQ(unlockpt(master_), 0);
        const char* name = ptsname(master_);
        slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_EQ(tcgetattr(slave_, &before_), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, name, O_RDWR, 0);
        posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
        std::string arguments[] = {support::programPath(), "--child", role};
        char* pointers[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
        EXPECT_EQ(posix_spawn(&child_, "/proc/self/exe", &actions, &attributes, pointers, environ),
                  0);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(readLine(), "ready");
    }

    ~TerminalSession() {
        if (!isOver_) {
            kill(child_, SIGKILL);
            await();
        }
        close(slave_);
        close(master_);
    }

    void type(const std::string& keys) {
        EXPECT_EQ(::write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    /// The next line that the program wrote, or that the terminal echoed.
    std::string readLine() {
        std::string line;
        char byte = 0;
        while (read(master_, &byte, 1) == 1 && byte != '\n') {
            if (byte != '\r') {
                line += byte;
            }
        }
        return line;
    }

    bool isRaw() const {
        termios now = {};
        tcgetattr(slave_, &now);
        return (now.c_lflag & (ICANON | ECHO | ISIG)) == 0;
    }
    void awaitRaw(bool raw) const {
        while (isRaw() != raw) {
            std::this_thread::yield();
        }
    }
    bool isRestored() const {
        termios now = {};
        tcgetattr(slave_, &now);
        return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag &&
               now.c_cc[VMIN] == before_.c_cc[VMIN];
    }

    void signal(int number) const { kill(child_, number); }
    /// @return the status with which the program ended.
    int await() {
        int status = 0;
        EXPECT_EQ(waitpid(child_, &status, 0), child_);
        isOver_ = true;
        return status;
    }

private:
    int master_ = -1;
    int slave_ = -1;
    pid_t child_ = 0;
    bool isOver_ = false;
    termios before_ = {};
};

/// Tells a key, and whether the program's own signal handler ran meanwhile.
int tellKeyAndSignal(const std::vector<std::string>&) {
    static volatile std::sig_atomic_t hasArrived;
    std::signal(SIGUSR1, [](int) {
        hasArrived = 1;
        [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, "signal\n", 7);
    });
    support::tell("ready");
    std::int32_t key = 0;
    const std::int32_t result = QVConsoleReadKey(&key);
    support::tell(std::to_string(result) + " " + std::to_string(key) + " " +
                  std::to_string(hasArrived));
    return 0;
}

/// Leads a session whose foreground process tells a key: stops it, tells how it finds the terminal,
/// and lets it go on.
int stopKeyReader(const std::vector<std::string>&) {
    const pid_t reader = fork();
    if (reader == 0) {
        setpgid(0, 0);
        std::signal(SIGTTOU, SIG_IGN);
        tcsetpgrp(STDIN_FILENO, getpid());
        support::tell("ready");
        std::int32_t key = 0;
        QVConsoleReadKey(&key);
        support::tell(std::to_string(key));
        return 0;
    }
    std::signal(SIGTTOU, SIG_IGN);
    termios now = {};
    do {
        tcgetattr(STDIN_FILENO, &now);
    } while ((now.c_lflag & ICANON) != 0);
    kill(reader, SIGTSTP);
    int status = 0;
    waitpid(reader, &status, WUNTRACED);
    tcgetattr(STDIN_FILENO, &now);
    support::tell(WIFSTOPPED(status) && (now.c_lflag & ICANON) != 0 ? "restored" : "not restored");
    kill(reader, SIGCONT);
    waitpid(reader, &status, 0);
    return 0;
}

const support::ChildRole signalRole("tell-key-and-signal", tellKeyAndSignal);
const support::ChildRole stopRole("stop-key-reader", stopKeyReader);

} // namespace

TEST(PosixConsoleTest, ReadsKeysWithoutEchoAndLines) {
    TerminalSession session;
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97") << "an echo would stand in front";
    session.awaitRaw(true);
    session.type("\r");
    EXPECT_EQ(session.readLine(), "13");
}

TEST(PosixConsoleTest, ReadsControlKeysAsKeys) {
    TerminalSession session;
    const std::pair<const char*, const char*> keys[] = {{"\x03", "3"},  {"\n", "10"},
                                                        {"\x1C", "28"}, {"\x11", "17"},
                                                        {"\x13", "19"}, {"\xC3", "195"}};
    for (const auto& [typed, key] : keys) {
        session.awaitRaw(true);
        session.type(typed);
        EXPECT_EQ(session.readLine(), key);
    }
}

TEST(PosixConsoleTest, KnowsTheTerminalsKeysForErasingAndForTheEnd) {
    TerminalSession session;
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
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGUSR2}) {
        TerminalSession session;
        session.awaitRaw(true);
        session.signal(number);
        const int status = session.await();
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(PosixConsoleTest, RestoresTheTerminalWhileTheProcessIsStopped) {
    TerminalSession session("stop-key-reader");
    EXPECT_EQ(session.readLine(), "restored");
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
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
