#include "qvcore/Module.h"

#include "qvcore/Thread.h"

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

TEST(WindowsModuleTest, HasACommandLine) {
    const char16_t* line = QVModuleGetCommandLine();
    ASSERT_NE(line, nullptr);
    EXPECT_NE(std::u16string(line).find(u"qvcore-test"), std::u16string::npos);
    EXPECT_EQ(QVModuleGetCommandLine(), line);
}

TEST(WindowsModuleTest, TakesForkFunctionsAndNeverCallsThem) {
    EXPECT_EQ(QVModuleOnFork([] { FAIL(); }, [] { FAIL(); }), 0);
}

TEST(WindowsModuleTest, ShowsTheThreadIdOfTheSystem) {
    EXPECT_EQ(QVThreadGetID(), GetCurrentThreadId());
}
