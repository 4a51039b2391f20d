#include "qvcore/Console.h"

#include "tests/qvcore/Results.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <gtest/gtest.h>

using namespace support;

namespace {

/// Tells every key of standard input, until its end or Ctrl-Z.
int tellKeys(const std::vector<std::string>&) {
    std::int32_t key = 0;
    tell("ready");
    while (key != 26) {
        const std::int32_t result = QVConsoleReadKey(&key);
        tell(result == 0 ? std::to_string(key) : "failed");
        if (result != 0) {
            return 1;
        }
    }
    return 0;
}

const support::ChildRole keysRole("tell-keys", tellKeys);

} // namespace

TEST(ConsoleTest, ReadsByteByByteWhereThereIsNoTerminal) {
    TestProcess child("tell-keys", {});
    EXPECT_EQ(child.readLine(), "ready");
    child.write("a");
    EXPECT_EQ(child.readLine(), "97");
    child.write(std::string("\r\n\x08\xFF\0\x03", 6));
    for (const char* key : {"13", "10", "8", "255", "0", "3"}) {
        EXPECT_EQ(child.readLine(), key);
    }
    child.closeInput();
    EXPECT_EQ(child.readLine(), "26");
    EXPECT_EQ(child.wait(), 0);
}

TEST(ConsoleTest, RefusesANullOutput) { EXPECT_EQ(QVConsoleReadKey(nullptr), nullOutput); }
