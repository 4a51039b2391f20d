#include "qvcore/Console.h"

#include "tests/support/ChildRole.h"
#include "tests/support/posix/TerminalRole.h"
#include "tests/support/posix/TerminalSession.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>

using support::TerminalSession;

namespace {

/// Tells every key up to Ctrl-Z and whether it was handed over by a raw terminal.
const support::ChildRole oneGoRole("tell-keys-in-one-go", [](const std::vector<std::string>&) {
    support::tell("ready");
    return QVConsoleReadKeys(
        [](void*, std::int32_t key) {
            support::tell(std::to_string(key) + (support::isTerminalRaw() ? " raw" : " not raw"));
            return key == 26 ? 0 : 1;
        },
        nullptr);
});

/// Tells every key of a terminal that changes or drops carriage returns, and has no key for erasing
/// and none for the end.
const support::ChildRole oddRole("tell-keys-of-odd-terminal", [](const std::vector<std::string>&) {
    termios mode = support::terminalMode();
    mode.c_iflag |= INLCR | IGNCR;
    mode.c_cc[VERASE] = _POSIX_VDISABLE;
    mode.c_cc[VEOF] = _POSIX_VDISABLE;
    tcsetattr(STDIN_FILENO, TCSANOW, &mode);
    support::tell("ready");
    for (int key = 0; key < 5; ++key) {
        support::tellKey();
    }
    return 0;
});

/// Reads a key of a terminal that hangs up meanwhile. @return the key.
const support::ChildRole hangUpRole("survive-hang-up", [](const std::vector<std::string>&) {
    std::signal(SIGHUP, SIG_IGN);
    support::tell("ready");
    std::int32_t key = 0;
    return QVConsoleReadKey(&key) == 0 ? key : 1;
});

/// Reads keys up to a full stop in each of two threads, and tells what each has got.
const support::ChildRole twoRole("tell-keys-of-two-threads", [](const std::vector<std::string>&) {
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
});

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

TEST(PosixConsoleTest, ReadsKeysAsTheyAreThoughTheTerminalWouldChangeThem) {
    TerminalSession session("tell-keys-of-odd-terminal");
    for (const char key : {'\r', '\n', '\0', '\x7F', '\x04'}) {
        session.awaitRaw(true);
        session.type(std::string(1, key));
        EXPECT_EQ(session.readLine(), std::to_string(key));
    }
    EXPECT_EQ(session.await(), 0);
}

TEST(PosixConsoleTest, TakesAHangUpForTheEndOfInput) {
    TerminalSession session("survive-hang-up");
    session.awaitRaw(true);
    session.hangUp();
    EXPECT_EQ(WEXITSTATUS(session.await()), 26);
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
