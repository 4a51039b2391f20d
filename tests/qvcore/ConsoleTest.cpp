#include "qvcore/Console.h"
#include "qvcore/File.h"

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

/// Tells the keys of two lines, each read by one call.
int tellLines(const std::vector<std::string>&) {
    tell("ready");
    for (int line = 0; line < 2; ++line) {
        std::string keys;
        const std::int32_t result = QVConsoleReadKeys(
            [](void* context, std::int32_t key) {
                std::string& told = *static_cast<std::string*>(context);
                told += (told.empty() ? "" : " ") + std::to_string(key);
                return key == '\n' ? 0 : 1;
            },
            &keys);
        tell(result == 0 ? keys : "failed");
    }
    return 0;
}

/// Tells the result of a read where standard input is closed.
int tellFailure(const std::vector<std::string>&) {
    QVFileClose(QVFileGetStandard(0));
    std::int32_t key = 0;
    tell(QVConsoleReadKey(&key) == invalidHandle ? "invalid handle" : "another result");
    return 0;
}

const support::ChildRole failureRole("tell-failure", tellFailure);
const support::ChildRole linesRole("tell-lines", tellLines);
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

TEST(ConsoleTest, ReadsNoFurtherThanTheKeyThatIsTheLast) {
    TestProcess child("tell-lines", {});
    EXPECT_EQ(child.readLine(), "ready");
    child.write("ab\ncd\n");
    EXPECT_EQ(child.readLine(), "97 98 10");
    EXPECT_EQ(child.readLine(), "99 100 10");
    EXPECT_EQ(child.readLine(), "");
    EXPECT_EQ(child.wait(), 0);
}

TEST(ConsoleTest, FailsWhereStandardInputIsClosed) {
    TestProcess child("tell-failure", {});
    EXPECT_EQ(child.readLine(), "invalid handle");
    EXPECT_EQ(child.wait(), 0);
}

TEST(ConsoleTest, RefusesNull) {
    EXPECT_EQ(QVConsoleReadKey(nullptr), nullOutput);
    EXPECT_EQ(QVConsoleReadKeys(nullptr, nullptr), nullOutput);
}
