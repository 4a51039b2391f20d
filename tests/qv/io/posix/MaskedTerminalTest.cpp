// A masked line read from a real terminal.

#include "qv/Exceptions.h"
#include "qv/io/MaskedConsoleInputStream.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"
#include "tests/support/posix/TerminalSession.h"

#include <gtest/gtest.h>

using support::TerminalSession;

namespace {

/// Tells two lines, each read by one call.
const support::ChildRole reader("masked-terminal-reader", [](const std::vector<std::string>&) {
    support::tell("ready");
    qv::io::MaskedConsoleInputStream in;
    for (int line = 0; line < 2; ++line) {
        signed char bytes[1000];
        try {
            const std::int32_t count = in.read(bytes, sizeof bytes);
            const std::string text(reinterpret_cast<const char*>(bytes),
                                   static_cast<std::size_t>(count > 0 ? count - 1 : 0));
            support::tell(std::to_string(count) + ":" + text);
        } catch (const qv::UserAbortException&) {
            support::tell("aborted");
        }
    }
    return 0;
});

} // namespace

TEST(MaskedTerminalTest, EchoesNoKeyOfALine) {
    TerminalSession session("masked-terminal-reader");
    session.awaitRaw(true);
    for (int key = 0; key < 500; ++key) {
        session.type("s");
    }
    session.type("\r");
    EXPECT_EQ(session.readLine(), "501:" + std::string(500, 's')) << "an echo would stand in front";
}

TEST(MaskedTerminalTest, CtrlCWithinALineAborts) {
    for (const char* keys : {"\x03", "secret\x03"}) {
        TerminalSession session("masked-terminal-reader");
        session.awaitRaw(true);
        session.type(keys);
        EXPECT_EQ(session.readLine(), "aborted");
        session.awaitRaw(true);
        session.type("next\r");
        EXPECT_EQ(session.readLine(), "5:next");
        EXPECT_EQ(session.await(), 0) << "no signal came";
        EXPECT_TRUE(session.isRestored());
    }
}

TEST(MaskedTerminalTest, TheTerminalsOwnKeysForErasingAndForTheEndWork) {
    TerminalSession session("masked-terminal-reader");
    session.awaitRaw(true);
    session.type("ab\x7F\x7F\x7F"
                 "cd\r");
    EXPECT_EQ(session.readLine(), "3:cd");
    session.awaitRaw(true);
    session.type("\x04");
    EXPECT_EQ(session.readLine(), "-1:");
    EXPECT_EQ(session.await(), 0);
    EXPECT_TRUE(session.isRestored());
}
