// A length of -1 means up to the terminator. No other negative length does: it stands for no units.

#include "qv/String.h"

#include "tests/support/Printing.h"

#include <gtest/gtest.h>
#include <limits>

using namespace qv;

namespace {

class StringLengthTest : public testing::TestWithParam<int> {};

TEST_P(StringLengthTest, ConstructorsTakeNothing) {
    EXPECT_EQ(String(u"abc", GetParam()).getData(), String().getData());
    EXPECT_EQ(String(u"abc", GetParam(), 20), u"");
    EXPECT_EQ(String(String::ACQUIRE_COPY, u"abc", GetParam()), u"");
    EXPECT_EQ(String(String::ACQUIRE_WRAP, u"abc", GetParam()).getLength(), 0);
    EXPECT_EQ(String(String::ACQUIRE_COPY_UPPER, u"abc", GetParam()), u"");
    EXPECT_EQ(CQVString::create(u"abc", GetParam(), 0), u"");
    EXPECT_EQ(String(L"abc", GetParam()), u"");
}

TEST_P(StringLengthTest, EditsInsertNothing) {
    String text(u"text");
    EXPECT_EQ(text.append(u"abc", GetParam()), u"text");
    EXPECT_EQ(text.prepend(u"abc", GetParam()), u"text");
    EXPECT_EQ(text.insert(2, u"abc", GetParam()), u"text");
    EXPECT_EQ(text.replace(1, 2, u"abc", GetParam(), 0), u"tt");
    EXPECT_EQ(text.setTo(u"abc", GetParam()), u"");
    EXPECT_EQ(text.setTo(String::ACQUIRE_WRAP, u"abc", GetParam()), u"");
    EXPECT_EQ(text.format(u"abc{0}", GetParam(), u"x"), u"");
}

TEST_P(StringLengthTest, ComparisonsSeeAnEmptyText) {
    const String text(u"text");
    EXPECT_EQ(text.compare(u"text", GetParam()), 4);
    EXPECT_FALSE(text.equals(u"text", GetParam()));
    EXPECT_TRUE(String().equals(u"text", GetParam()));
    EXPECT_TRUE(text.startsWith(u"abc", GetParam()));
    EXPECT_TRUE(text.endsWith(u"abc", GetParam()));
    EXPECT_EQ(text.regionCompare(1, 2, u"text", GetParam(), 0), 2);
    EXPECT_FALSE(text.regionMatches(0, -1, u"text", GetParam(), 0));
}

TEST_P(StringLengthTest, SearchesFindNothing) {
    const String text(u"text");
    EXPECT_EQ(text.indexOf(u"t", GetParam(), 0), -1);
    EXPECT_EQ(text.lastIndexOf(u"t", GetParam(), -1), -1);
    EXPECT_FALSE(text.contains(u"t", GetParam()));
    EXPECT_EQ(text.findFirstOf(u"t", GetParam()), -1);
    EXPECT_EQ(text.findFirstNotOf(u"e", GetParam()), -1);
    EXPECT_EQ(text.findFirstOfCase(u"t", GetParam()), -1);
    EXPECT_EQ(text.findLastOf(u"t", GetParam()), -1);
    EXPECT_EQ(text.findLastNotOf(u"e", GetParam()), -1);
}

INSTANTIATE_TEST_SUITE_P(Negative, StringLengthTest,
                         testing::Values(-2, std::numeric_limits<int>::min()));

} // namespace
