#include "qvcore/Path.h"

#include "tests/qvcore/Results.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace support;

namespace {

std::u16string expand(const std::u16string& text) {
    std::array<char16_t, 2000> area = {};
    EXPECT_EQ(QVPathExpand(text.c_str(), area.data(), 2000), 0);
    return area.data();
}

std::u16string currentDirectory() {
    std::array<char16_t, 2000> area = {};
    EXPECT_EQ(QVPathGetCurrentDirectory(area.data(), 2000), 0);
    return area.data();
}

std::u16string tempDirectory() {
    std::array<char16_t, 2000> area = {};
    EXPECT_EQ(QVPathGetTempDirectory(area.data(), 2000), 0);
    return area.data();
}

/// A query without an argument, and the text that it gives.
struct Query {
    std::int32_t (*give)(char16_t*, std::int32_t) noexcept;
    std::u16string (*text)();
};

} // namespace

TEST(PathExpandTest, IsRelativeToTheCurrentDirectory) {
    const std::u16string current = currentDirectory();
    EXPECT_EQ(expand(u"a"), current + u"\\a");
    EXPECT_EQ(expand(u"a/b\\c"), current + u"\\a\\b\\c");
    EXPECT_EQ(expand(u"."), current);
    EXPECT_EQ(expand(u"none\\..\\a"), current + u"\\a");
    EXPECT_EQ(expand(u".\\a\\.\\b"), current + u"\\a\\b");
    EXPECT_EQ(expand(u"äЖ中\xD83D\xDE00"), current + u"\\äЖ中\xD83D\xDE00");
}

TEST(PathExpandTest, KeepsASeparatorAtTheEnd) {
    EXPECT_EQ(expand(u"a\\"), currentDirectory() + u"\\a\\");
    EXPECT_EQ(expand(u"a/"), currentDirectory() + u"\\a\\");
}

TEST(PathExpandTest, GoesUp) {
    const std::u16string current = currentDirectory();
    const std::u16string parent = current.substr(0, current.rfind(u'\\'));
    EXPECT_EQ(expand(u"..\\x"), parent + u"\\x");
    EXPECT_EQ(expand(u"a\\..\\..\\x"), parent + u"\\x");
}

TEST(PathExpandTest, IsItsOwnExpansion) {
    const std::u16string once = expand(u"a\\b");
    EXPECT_EQ(expand(once), once);
}

TEST(PathExpandTest, RefusesATextThatDoesNotFit) {
    const std::u16string expanded = expand(u"a");
    const auto length = static_cast<std::int32_t>(expanded.size());
    std::array<char16_t, 2000> area;
    area.fill(u'#');
    EXPECT_EQ(QVPathExpand(u"a", area.data(), length), doesNotFit);
    EXPECT_EQ(QVPathExpand(u"a", area.data(), 0), doesNotFit);
    EXPECT_EQ(QVPathExpand(u"a", area.data(), -1), doesNotFit);
    EXPECT_EQ(area[0], u'#');
    EXPECT_EQ(QVPathExpand(u"a", area.data(), length + 1), 0);
    EXPECT_EQ(std::u16string(area.data()), expanded);
    EXPECT_EQ(area[expanded.size() + 1], u'#');
}

TEST(PathExpandTest, TakesALongText) {
    std::u16string text;
    for (int part = 0; part < 100; ++part) {
        text += u"part\\..\\";
    }
    EXPECT_EQ(expand(text + u"a"), currentDirectory() + u"\\a");
}

TEST(PathExpandTest, RefusesEmptyAndNullArguments) {
    char16_t unit = u'#';
    EXPECT_EQ(QVPathExpand(u"", &unit, 1), invalidArgument);
    EXPECT_EQ(QVPathExpand(nullptr, &unit, 1), invalidArgument);
    EXPECT_EQ(QVPathExpand(u"a", nullptr, 100), nullOutput);
    EXPECT_EQ(unit, u'#');
}

TEST(PathDirectoryTest, IsTheOneOfTheProcess) {
    const std::filesystem::path before = std::filesystem::current_path();
    const std::filesystem::path temporary =
        std::filesystem::canonical(std::filesystem::temp_directory_path());
    std::filesystem::current_path(temporary);
    const std::u16string current = currentDirectory();
    std::filesystem::current_path(before);
    std::u16string expected = temporary.u16string();
    for (char16_t& unit : expected) {
        unit = unit == u'/' ? u'\\' : unit;
    }
    EXPECT_EQ(current, expected);
    EXPECT_NE(current.back(), u'\\');
}

TEST(PathDirectoryTest, ForTemporaryFilesEndsInASeparatorAndExists) {
    std::u16string directory = tempDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_EQ(directory.back(), u'\\');
    EXPECT_EQ(directory.find(u'/'), std::u16string::npos);
    for (char16_t& unit : directory) {
        unit = unit == u'\\' ? u'/' : unit;
    }
    EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::path(directory)));
}

TEST(PathDirectoryTest, RefusesATextThatDoesNotFit) {
    for (const Query& query : {Query{QVPathGetCurrentDirectory, currentDirectory},
                               Query{QVPathGetTempDirectory, tempDirectory}}) {
        const auto length = static_cast<std::int32_t>(query.text().size());
        std::array<char16_t, 2000> area;
        area.fill(u'#');
        EXPECT_EQ(query.give(area.data(), length), doesNotFit);
        EXPECT_EQ(area[0], u'#');
        EXPECT_EQ(query.give(area.data(), length + 1), 0);
        EXPECT_EQ(query.give(nullptr, 100), nullOutput);
    }
}
