#include "qvcore/Encoding.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace {

std::u16string encodingName() {
    std::array<char16_t, 40> name = {};
    QVGetDefaultCharEncoding(name.data(), static_cast<std::int32_t>(name.size()));
    return name.data();
}

std::string narrow(const char16_t* text) {
    std::array<char, 100> area = {};
    EXPECT_GT(QVUnicodeToAnsi(area.data(), text, static_cast<std::int32_t>(area.size())), 0);
    return area.data();
}

} // namespace

TEST(WindowsEncodingTest, IsNamedByTheAnsiCodePage) {
    const std::string number = std::to_string(GetACP());
    const std::u16string name = u"CP" + std::u16string(number.begin(), number.end());
    EXPECT_EQ(encodingName(), GetACP() == CP_UTF8 ? u"UTF-8" : name);
}

TEST(WindowsEncodingTest, WritesAQuestionMarkForWhatHasNoForm) {
    if (GetACP() == CP_UTF8) {
        GTEST_SKIP() << "every character has a form in UTF-8";
    }
    EXPECT_EQ(narrow(u"a\xD83D\xDE00z"), "a?z");
    // A letter that the system would replace by one that looks alike.
    EXPECT_EQ(narrow(u"a\uFF21z"), "a?z");
}

TEST(WindowsEncodingTest, ReadsBackWhatItWrites) {
    if (GetACP() != 1252) {
        GTEST_SKIP() << "the text is one of the western code page";
    }
    EXPECT_EQ(narrow(u"äÿ€"), "\xE4\xFF\x80");
    std::array<char16_t, 4> wide = {};
    EXPECT_EQ(QVAnsiToUnicode(wide.data(), "\xE4\xFF\x80", -1, 4), 3);
    EXPECT_EQ(std::u16string(wide.data()), u"äÿ€");
}
