#include "qvcore/Encoding.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>

namespace {

std::u16string encodingName() {
    std::array<char16_t, 40> name;
    name.fill(u'#');
    QVGetDefaultCharEncoding(name.data(), static_cast<std::int32_t>(name.size()));
    return name.data();
}

/// Narrows into an area of exactly `size` bytes.
std::string narrow(const char16_t* text, std::int32_t size, std::int32_t* result = nullptr) {
    std::string area(static_cast<std::size_t>(size) + 1, '#');
    const std::int32_t written = QVUnicodeToAnsi(area.data(), text, size);
    EXPECT_EQ(area.back(), '#');
    if (result != nullptr) {
        *result = written;
    }
    EXPECT_EQ(written, static_cast<std::int32_t>(area.find('\0') + 1));
    return area.c_str();
}

std::u16string widen(const std::string& text) {
    const auto length = static_cast<std::int32_t>(text.size());
    const std::int32_t units = QVAnsiToUnicode(nullptr, text.data(), length, 0);
    std::u16string wide(static_cast<std::size_t>(units), u'#');
    EXPECT_EQ(QVAnsiToUnicode(wide.data(), text.data(), length, units), units);
    return wide;
}

} // namespace

TEST(DefaultEncodingTest, HasAName) { EXPECT_FALSE(encodingName().empty()); }

TEST(DefaultEncodingTest, GivesTheEmptyTextWhereItsNameDoesNotFit) {
    const std::u16string name = encodingName();
    const auto length = static_cast<std::int32_t>(name.size());
    std::array<char16_t, 41> area = {};
    QVGetDefaultCharEncoding(area.data(), length + 1);
    EXPECT_EQ(std::u16string(area.data()), name);
    area.fill(u'#');
    QVGetDefaultCharEncoding(area.data(), length);
    EXPECT_EQ(area[0], 0);
    area.fill(u'#');
    QVGetDefaultCharEncoding(area.data(), 1);
    EXPECT_EQ(area[0], 0);
    EXPECT_EQ(area[1], u'#');
    QVGetDefaultCharEncoding(area.data() + 1, 0);
    EXPECT_EQ(area[1], u'#');
    QVGetDefaultCharEncoding(nullptr, 40);
}

TEST(NarrowTest, CountsTheTerminator) {
    std::int32_t written = 0;
    EXPECT_EQ(narrow(u"abc", 10, &written), "abc");
    EXPECT_EQ(written, 4);
    EXPECT_EQ(narrow(u"", 10, &written), "");
    EXPECT_EQ(written, 1);
}

TEST(NarrowTest, CutsWhatDoesNotFit) {
    EXPECT_EQ(narrow(u"abc", 4), "abc");
    EXPECT_EQ(narrow(u"abc", 3), "ab");
    EXPECT_EQ(narrow(u"abc", 1), "");
}

TEST(NarrowTest, DoesNothingWithoutRoomOrArguments) {
    char byte = '#';
    EXPECT_EQ(QVUnicodeToAnsi(&byte, u"a", 0), 0);
    EXPECT_EQ(QVUnicodeToAnsi(&byte, u"a", -1), 0);
    EXPECT_EQ(QVUnicodeToAnsi(nullptr, u"a", 10), 0);
    EXPECT_EQ(QVUnicodeToAnsi(&byte, nullptr, 1), 0);
    EXPECT_EQ(byte, '#');
}

TEST(NarrowTest, WritesAQuestionMarkForAnUnpairedSurrogate) {
    EXPECT_EQ(narrow(u"a\xD800z", 10), "a?z");
    EXPECT_EQ(narrow(u"a\xDC00\xD800", 10), "a??");
}

TEST(WidenTest, MeasuresAndWrites) {
    EXPECT_EQ(QVAnsiToUnicode(nullptr, "abc", -1, 0), 3);
    EXPECT_EQ(QVAnsiToUnicode(nullptr, "abc", 2, 0), 2);
    EXPECT_EQ(QVAnsiToUnicode(nullptr, "", -1, 0), 0);
    EXPECT_EQ(widen("abc"), u"abc");
    EXPECT_EQ(widen(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(WidenTest, WritesNoTerminatorAndNoMoreThanFits) {
    std::u16string area(4, u'#');
    EXPECT_EQ(QVAnsiToUnicode(area.data(), "abc", -1, 3), 3);
    EXPECT_EQ(area, u"abc#");
    area.assign(4, u'#');
    EXPECT_EQ(QVAnsiToUnicode(area.data(), "abc", -1, 2), 3);
    EXPECT_EQ(area, u"ab##");
}

TEST(WidenTest, ReadsBackWhatWasNarrowed) {
    std::string ascii;
    for (char unit = 1; unit < 127; ++unit) {
        ascii += unit;
    }
    const std::u16string wide = widen(ascii);
    EXPECT_EQ(wide, std::u16string(ascii.begin(), ascii.end()));
    EXPECT_EQ(narrow(wide.c_str(), 200), ascii);
}
