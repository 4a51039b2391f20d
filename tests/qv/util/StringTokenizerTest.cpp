#include "qv/util/StringTokenizer.h"

#include "qv/Exceptions.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;
using util::StringTokenizer;
using Tokens = std::vector<std::u16string>;

/// All tokens; each step's count of those to come must be right.
Tokens all(StringTokenizer tokenizer) {
    Tokens tokens;
    int left = tokenizer.getTokenCount();
    while (tokenizer.hasMoreTokens()) {
        EXPECT_EQ(tokenizer.getTokenCount(), left--);
        tokens.push_back(support::units(tokenizer.nextToken()));
    }
    EXPECT_EQ(left, 0);
    EXPECT_EQ(tokenizer.getTokenCount(), 0);
    EXPECT_EQ(support::thrownText<Exception>([&] { tokenizer.nextToken(); }), "No such element");
    return tokens;
}

TEST(StringTokenizerTest, SplitsAtDelimiters) {
    EXPECT_EQ(all(StringTokenizer(u"a,,b", u",", false)), (Tokens{u"a", u"b"}));
    EXPECT_EQ(all(StringTokenizer(u",a;b,;", u",;", false)), (Tokens{u"a", u"b"}));
    EXPECT_EQ(all(StringTokenizer(u"one", u",", false)), (Tokens{u"one"}));
    EXPECT_EQ(all(StringTokenizer(u"aXbxc", u"x", false)), (Tokens{u"aXb", u"c"}));
}

TEST(StringTokenizerTest, DelimitersAreTokensWhereAskedFor) {
    EXPECT_EQ(all(StringTokenizer(u"a,,b", u",", true)), (Tokens{u"a", u",", u",", u"b"}));
    EXPECT_EQ(all(StringTokenizer(u",ab", u",", true)), (Tokens{u",", u"ab"}));
    EXPECT_EQ(all(StringTokenizer(u"ab,", u",", true)), (Tokens{u"ab", u","}));
    EXPECT_EQ(all(StringTokenizer(u",", u",", true)), (Tokens{u","}));
}

TEST(StringTokenizerTest, NullIsTheDefaultSet) {
    EXPECT_EQ(all(StringTokenizer(u" a\rb\nc\td\fe\vf ", nullptr, false)),
              (Tokens{u"a", u"b", u"c", u"d", u"e\vf"}));
    EXPECT_EQ(all(StringTokenizer(u"a b")), (Tokens{u"a", u"b"}));
}

TEST(StringTokenizerTest, NothingHasNoTokens) {
    EXPECT_EQ(all(StringTokenizer(u"", nullptr, false)), Tokens());
    EXPECT_EQ(all(StringTokenizer(u"", nullptr, true)), Tokens());
    EXPECT_EQ(all(StringTokenizer(u"  \t ", nullptr, false)), Tokens());
}

TEST(StringTokenizerTest, WithoutDelimitersTheTextIsOneToken) {
    EXPECT_EQ(all(StringTokenizer(u"a b", u"", false)), (Tokens{u"a b"}));
    EXPECT_EQ(all(StringTokenizer(u"a b", u"", true)), (Tokens{u"a b"}));
}

TEST(StringTokenizerTest, NextTokenNeedsNoQuestionBefore) {
    StringTokenizer tokenizer(u"a b", nullptr, false);
    EXPECT_EQ(tokenizer.nextToken(), u"a");
    EXPECT_EQ(tokenizer.nextToken(), u"b");
    EXPECT_THROW(tokenizer.nextToken(), Exception);
}

TEST(StringTokenizerTest, QuestionsDoNotMoveThePosition) {
    StringTokenizer tokenizer(u"a b", nullptr, false);
    EXPECT_TRUE(tokenizer.hasMoreTokens());
    EXPECT_TRUE(tokenizer.hasMoreTokens());
    EXPECT_EQ(tokenizer.getTokenCount(), 2);
    EXPECT_EQ(tokenizer.nextToken(), u"a");
    EXPECT_EQ(tokenizer.getTokenCount(), 1);
}

TEST(StringTokenizerTest, NewDelimitersStayAndCountFromThePosition) {
    StringTokenizer tokenizer(u"a b,c d;e f", nullptr, false);
    EXPECT_EQ(tokenizer.nextToken(), u"a");
    EXPECT_TRUE(tokenizer.hasMoreTokens()) << "which looks behind the blank";
    EXPECT_EQ(tokenizer.nextToken(u","), u" b") << "which is no delimiter any more";
    EXPECT_EQ(tokenizer.nextToken(), u"c d;e f");
    EXPECT_FALSE(tokenizer.hasMoreTokens());
}

TEST(StringTokenizerTest, NewDelimitersStayAlsoWhereThereIsNoToken) {
    StringTokenizer tokenizer(u"a,", u",", false);
    EXPECT_EQ(tokenizer.nextToken(), u"a");
    EXPECT_THROW(tokenizer.nextToken(u";,"), Exception);
    EXPECT_EQ(tokenizer.nextToken(u";"), u",");
}

TEST(StringTokenizerTest, UnitsBeyondAsciiAndZeroAreUnitsLikeOthers) {
    const String text(u"\u4E2D\u6587|\xD83D\xDE00|a\0b", 9);
    EXPECT_EQ(all(StringTokenizer(text, u"|", false)),
              (Tokens{u"\u4E2D\u6587", u"\xD83D\xDE00", std::u16string(u"a\0b", 3)}));
    EXPECT_EQ(all(StringTokenizer(text, u"\u6587", false)).size(), 2u);
}

TEST(StringTokenizerTest, HasATextOfItsOwn) {
    String text(u"a b");
    StringTokenizer tokenizer(text, nullptr, false);
    text = u"c d";
    EXPECT_EQ(tokenizer.nextToken(), u"a");
}

TEST(StringTokenizerTest, TakesLongTexts) {
    String text;
    for (int i = 0; i < 10000; ++i) {
        text.append(u"word  ");
    }
    StringTokenizer tokenizer(text, nullptr, false);
    EXPECT_EQ(tokenizer.getTokenCount(), 10000);
}

} // namespace
