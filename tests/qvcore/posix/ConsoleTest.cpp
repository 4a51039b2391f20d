#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

/// A new session with a terminal of its own, in which the test program plays the role "tell-keys".
/// This side sees what the program writes and the terminal's mode.
class TerminalSession {
public:
    TerminalSession() {
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
        std::string arguments[] = {support::programPath(), "--child", "tell-keys"};
        char* pointers[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
        EXPECT_EQ(posix_spawn(&child_, "/proc/self/exe", &actions, &attributes, pointers, environ),
                  0);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(readLine(), "ready");
    }

    ~TerminalSession() {
        kill(child_, SIGKILL);
        int status = 0;
        waitpid(child_, &status, 0);
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
    /// @return the status of the child's next change.
    int await(int options = 0) const {
        int status = 0;
        EXPECT_EQ(waitpid(child_, &status, options), child_);
        return status;
    }

private:
    int master_ = -1;
    int slave_ = -1;
    pid_t child_ = 0;
    termios before_ = {};
};

int tellKeyAndSignals(const std::vector<std::string>&) {
    static volatile std::sig_atomic_t arrived;
    std::signal(SIGUSR1, [](int) { arrived = 1; });
    std::printf("ready\n");
    std::fflush(stdout);
    std::int32_t key = 0;
    const std::int32_t result = QVConsoleReadKey(&key);
    std::printf("%d %d %d\n", result, key, static_cast<int>(arrived));
    return 0;
}

const support::ChildRole signalRole("tell-key-and-signals", tellKeyAndSignals);

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
    TerminalSession session;
    session.awaitRaw(true);
    session.signal(SIGTSTP);
    session.awaitRaw(false);
    EXPECT_TRUE(session.isRestored());
    session.signal(SIGCONT);
    session.awaitRaw(true);
    session.type("a");
    EXPECT_EQ(session.readLine(), "97");
}
