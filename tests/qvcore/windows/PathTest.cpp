#include "qvcore/Path.h"

#include "tests/qvcore/Results.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace {

std::u16string expand(const char16_t* text) {
    std::array<char16_t, 300> area = {};
    EXPECT_EQ(QVPathExpand(text, area.data(), 300), 0);
    return area.data();
}

} // namespace

TEST(WindowsPathTest, KeepsDriveAndServer) {
    EXPECT_EQ(expand(u"C:\\a\\..\\b"), u"C:\\b");
    EXPECT_EQ(expand(u"C:/a/./b"), u"C:\\a\\b");
    EXPECT_EQ(expand(u"C:\\..\\.."), u"C:\\");
    EXPECT_EQ(expand(u"\\\\server\\share\\a\\..\\b"), u"\\\\server\\share\\b");
}

TEST(WindowsPathTest, BlanksAreNoName) {
    std::array<char16_t, 300> area = {};
    for (const char16_t* text : {u" ", u"   "}) {
        for (const unsigned long error : {NO_ERROR, ERROR_ACCESS_DENIED}) {
            SetLastError(error);
            EXPECT_EQ(QVPathExpand(text, area.data(), 300), support::invalidName);
        }
    }
}

TEST(WindowsPathTest, TakesTheDriveFromTheCurrentDirectory) {
    std::array<char16_t, 300> current = {};
    ASSERT_EQ(QVPathGetCurrentDirectory(current.data(), 300), 0);
    EXPECT_EQ(expand(u"\\a"), std::u16string(current.data(), 2) + u"\\a");
}
