#include "qv/util/CommandLineParser.h"

#include "qv/Exceptions.h"
#include "tests/support/LocaleScope.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::util;

namespace {

/// The elements of a parsed line, written down: `name(value|value)` for an option, `value` for a
/// parameter.
std::string written(const CommandLineParser& parser) {
    std::string text;
    for (int i = 0; i < parser.getElementCount(); ++i) {
        const Reference<CommandLineParser::Element> element = parser.getElement(i);
        EXPECT_EQ(element->getPosition(), i);
        bool parameter = false;
        for (int p = 0; p < parser.getParameterCount(); ++p) {
            parameter = parameter || parser.getParameter(p) == element;
        }
        std::string values;
        for (int v = 0; v < element->getValueCount(); ++v) {
            values +=
                (v > 0 ? "|" : "") + std::string(element->getValueString(v).getBytes(u"UTF-8"));
        }
        text += i > 0 ? " " : "";
        text += parameter ? values
                          : std::string(element->getName().getBytes(u"UTF-8")) + "(" + values + ")";
    }
    return text;
}

std::string parsed(const char16_t* line) {
    CommandLineParser parser;
    parser.parse(line);
    return written(parser);
}

TEST(CommandLineParserTest, EmptyTextHasNoElements) {
    EXPECT_EQ(parsed(u""), "");
    EXPECT_EQ(parsed(nullptr), "");
    EXPECT_EQ(parsed(u"   "), "");
}

TEST(CommandLineParserTest, OptionsAndParametersStandInOrder) {
    EXPECT_EQ(parsed(u"a -b c /d"), "a b() c d()");
    EXPECT_EQ(parsed(u"-x --x /x -/-x"), "x() x() x() x()");
    EXPECT_EQ(parsed(u"-- x"), "() x");
    EXPECT_EQ(parsed(u"-x- --dry-run /a/b=1"), "x-() dry-run() a/b(1)");
    EXPECT_EQ(parsed(u"a\tb c"), "a\tb c") << "tabs do not separate";
    EXPECT_EQ(parsed(u"  a   b  "), "a b");
}

TEST(CommandLineParserTest, ValuesStandBehindTheEqualsSign) {
    EXPECT_EQ(parsed(u"-a=1,2,3 b"), "a(1|2|3) b");
    EXPECT_EQ(parsed(u"-a= b"), "a() b");
    EXPECT_EQ(parsed(u"-a=b=c"), "a(b=c)");
    EXPECT_EQ(parsed(u"-a=,,1,"), "a(1)");
    EXPECT_EQ(parsed(u"-=5"), "(5)");
    EXPECT_EQ(parsed(u"-a=-b"), "a(-b)");
}

TEST(CommandLineParserTest, QuotesProtectValues) {
    EXPECT_EQ(parsed(u"-a=\"x y\",z"), "a(x y|z)");
    EXPECT_EQ(parsed(u"-a=z,\"x y\" b"), "a(z|x y) b");
    EXPECT_EQ(parsed(u"-a=\"x,y\""), "a(x,y)");
    EXPECT_EQ(parsed(u"-a=\"\",b"), "a(|b)");
    EXPECT_EQ(parsed(u"-a=x\"y z\""), "a(x\"y) z\"") << "a quote counts at the head of a value";
    EXPECT_EQ(parsed(u"-a=\"x y"), "a(x) y") << "a quote that does not close protects nothing";
}

TEST(CommandLineParserTest, QuotesThatAreNotAtTheHeadOfAValueProtectNoBlanks) {
    EXPECT_EQ(parsed(u"-a=b=\"x y\""), "a(b=\"x) y\"") << "the second sign is part of the value";
    EXPECT_EQ(parsed(u"-a=1,,\"x y\""), "a(1|\"x) y\"") << "a quote behind a second comma";
    EXPECT_EQ(parsed(u"-a=\"\",\"x y\""), "a(|\"x) y\"") << "an empty value takes no comma along";
    EXPECT_EQ(parsed(u"-a\"=x y\""), "a\"(x) y\"");
}

TEST(CommandLineParserTest, QuoteBehindAQuotedValueOpensAnother) {
    EXPECT_EQ(parsed(u"-a=\"x y\"\"p q\" b"), "a(x y|p q) b");
    EXPECT_EQ(parsed(u"-a=\"x y\"z,w b"), "a(x y|z|w) b");
    EXPECT_EQ(parsed(u"-a=\"x y\", b"), "a(x y) b");
    EXPECT_EQ(parsed(u"-a=\"x y\" \"p q\""), "a(x y) p q");
    EXPECT_EQ(parsed(u"-a=1, b"), "a(1) b");
}

TEST(CommandLineParserTest, QuotesProtectParameters) {
    EXPECT_EQ(parsed(u"\"a b\" c"), "a b c");
    EXPECT_EQ(parsed(u"x \"a b\" c"), "x a b c");
    EXPECT_EQ(parsed(u"\"\" c"), " c") << "an empty parameter";
    EXPECT_EQ(parsed(u"\"-x\""), "x()") << "quotes do not protect a switch character";
    EXPECT_EQ(parsed(u"\"-in=/tmp/a b.txt\""), "in(/tmp/a b.txt)");
}

TEST(CommandLineParserTest, QuoteBehindAQuotedTokenCountsBehindAnyBlanks) {
    // A quoted token takes all the delimiters behind it along.
    CommandLineParser parser;
    parser.parse(u"\"a b\"   \"c d\" e");
    ASSERT_EQ(parser.getParameterCount(), 3);
    EXPECT_EQ(parser.getParameter(1)->getValueString(0), u"c d");
    EXPECT_EQ(parsed(u"-a=\"x\",,\"y z\",w"), "a(x|y z|w)");
}

TEST(CommandLineParserTest, QuoteThatDoesNotCloseTakesTheRest) {
    CommandLineParser parser;
    parser.parse(u"a \" b c");
    ASSERT_EQ(parser.getParameterCount(), 2);
    EXPECT_EQ(parser.getParameter(1)->getValueString(0), u" b c");
    EXPECT_EQ(parsed(u"\""), "") << "nothing stands behind it";
    EXPECT_EQ(parsed(u"a \""), "a");
}

TEST(CommandLineParserTest, StringIsParsedLikeItsUnits) {
    const String line(u"-a=1 \"b c\"");
    CommandLineParser parser;
    parser.parse(line);
    EXPECT_EQ(written(parser), "a(1) b c");
    EXPECT_EQ(line, u"-a=1 \"b c\"") << "a copy is taken apart";
    EXPECT_EQ(parser.getParameter(0)->getName(), u"");
    EXPECT_EQ(parser.getParameter(0)->getPosition(), 1);
    parser.parse(String());
    EXPECT_EQ(parser.getElementCount(), 0);
}

TEST(CommandLineParserTest, StringThatWrapsARangeIsParsedUpToItsEnd) {
    const String line(u"-a=1 b -c d");
    CommandLineParser parser;
    parser.parse(String(String::ACQUIRE_WRAP, line, 0, 6));
    EXPECT_EQ(parser.getElementCount(), 2);
    EXPECT_EQ(parser.getValueString(u"a"), u"1");
    EXPECT_FALSE(parser.isPresent(u"c"));
}

TEST(CommandLineParserTest, QuoteBehindTwoBlanksIsKept) {
    EXPECT_EQ(parsed(u"x  \"a b\""), "x \"a b\"");
    CommandLineParser parser;
    parser.parse(u"x  \"a b\"");
    EXPECT_EQ(parser.getParameterCount(), 3);
    EXPECT_EQ(parser.getParameter(1)->getValueString(0), u"\"a");
    EXPECT_EQ(parser.getParameter(2)->getValueString(0), u"b\"");
}

class DefinedOptionTest : public testing::Test {
protected:
    void SetUp() override { parser.defineOption(u"o", 2, u"p, q"); }
    std::string parse(const char16_t* line) {
        parser.parse(line);
        return written(parser);
    }
    CommandLineParser& parser = *new CommandLineParser; // an object may end with an exception
    Reference<CommandLineParser> holder{&parser};
};

TEST_F(DefinedOptionTest, TakesItsValuesFromTheTokensBehindIt) {
    EXPECT_EQ(parse(u"-o a b c"), "o(a|b) c");
    EXPECT_EQ(parse(u"-o a"), "o(a)");
    EXPECT_EQ(parse(u"-o \"a b\" c d"), "o(a b|c) d");
    EXPECT_EQ(parse(u"-o \"\" b c"), "o(|b) c") << "an empty value is one";
    EXPECT_EQ(parse(u"\"-o\" a b c"), "o(a|b) c");
    EXPECT_EQ(parse(u"-x 5"), "x() 5") << "an option without a definition takes none";
}

TEST_F(DefinedOptionTest, HasItsDefaultsAtTheEndAndInFrontOfAnOption) {
    EXPECT_EQ(parse(u"-o"), "o(p|q)");
    EXPECT_EQ(parse(u"-o "), "o(p|q)");
    EXPECT_EQ(parse(u"-o -x"), "o(p|q) x()");
    EXPECT_EQ(parse(u"-o /x"), "o(p|q) x()");
}

TEST_F(DefinedOptionTest, CountPlaysNoPartBehindAnEqualsSign) {
    EXPECT_EQ(parse(u"-o=1,2,3 4"), "o(1|2|3) 4");
    EXPECT_EQ(parse(u"-o= 4"), "o() 4");
}

TEST_F(DefinedOptionTest, TakesNoTokenWhereNoneIsExpected) {
    parser.defineOption(u"v", 0, u"d");
    EXPECT_EQ(parse(u"-v x"), "v() x") << "neither the token nor the default";
    EXPECT_EQ(parse(u"-v"), "v(d)");
    EXPECT_EQ(parse(u"-v -v x"), "v(d) v() x");
    parser.defineOption(u"n", -1, nullptr);
    EXPECT_EQ(parse(u"-n x"), "n() x");
}

TEST_F(DefinedOptionTest, LosesATokenThatOpensAnOption) {
    EXPECT_EQ(parse(u"-o a -b"), "o(a)");
    EXPECT_EQ(parse(u"-o   -x"), "o()") << "the blank behind it hides the switch character";
    EXPECT_EQ(parse(u"-o a -b c"), "o(a) c");
}

TEST_F(DefinedOptionTest, AnswersForAnAbsentOption) {
    parse(u"x");
    EXPECT_FALSE(parser.isPresent(u"o"));
    const Reference<CommandLineParser::Element> option = parser.getOption(u"o");
    ASSERT_TRUE(option);
    EXPECT_EQ(option->getPosition(), -1);
    EXPECT_EQ(option->getValueCount(), 2);
    EXPECT_EQ(parser.getValueString(u"o", 1), u"q");
    EXPECT_FALSE(parser.getOption(u"unknown"));
}

TEST_F(DefinedOptionTest, LaterDefinitionTakesThePlaceOfAnEarlierOne) {
    parser.defineOption(u"o", 1, u"z");
    EXPECT_EQ(parse(u"-o a b"), "o(a) b");
    EXPECT_EQ(parse(u"-o"), "o(z)");
    parser.defineOption(u"o", 1, nullptr);
    EXPECT_EQ(parse(u"-o"), "o()");
    parse(u"");
    EXPECT_FALSE(parser.getOption(u"o")) << "no defaults, no answer";
    parser.defineOption(u"o", 1, u"");
    ASSERT_TRUE(parser.getOption(u"o")) << "empty defaults are defaults";
    EXPECT_EQ(parser.getOption(u"o")->getValueCount(), 0);
}

TEST_F(DefinedOptionTest, DefaultsAreSeparatedByCommasAndBlanks) {
    parser.defineOption(u"o", 0, u"a,b c,, \"d e\" f");
    parse(u"");
    const Reference<CommandLineParser::Element> option = parser.getOption(u"o");
    ASSERT_EQ(option->getValueCount(), 6);
    EXPECT_EQ(option->getValueString(2), u"c");
    EXPECT_EQ(option->getValueString(3), u"\"d") << "a quote behind a second delimiter is kept";
    EXPECT_EQ(option->getValueString(4), u"e\"");
}

TEST_F(DefinedOptionTest, LosesAQuotedTokenThatOpensAnOptionToo) {
    EXPECT_EQ(parse(u"-o \"-b c\" d"), "o() d");
    EXPECT_EQ(parse(u"-o a /b c"), "o(a) c");
}

TEST_F(DefinedOptionTest, LosesAllValuesOfAnOptionThatItMeets) {
    EXPECT_EQ(parse(u"-o a -b=\"x y\" c"), "o(a) c");
    EXPECT_EQ(parse(u"-o a /b=1,\"x y\" c"), "o(a) c");
    EXPECT_EQ(parse(u"-o a  -b=\"x y\" c"), "o(a) c") << "behind any blanks";
    EXPECT_EQ(parse(u"-o a -b=x\"y z\" c"), "o(a) z\" c") << "this quote protects no blank";
}

TEST_F(DefinedOptionTest, TakesAValueWithAnEqualsSignAsItStands) {
    EXPECT_EQ(parse(u"-o a=\"x y\" c"), "o(a=\"x|y\") c");
    EXPECT_EQ(parse(u"-o \"a=x y\" c d"), "o(a=x y|c) d");
    EXPECT_EQ(parse(u"-o a  \"x y\" c"), "o(a|\"x) y\" c") << "a quote behind a second blank";
}

TEST(CommandLineParserTest, DefinitionOfANameWithASwitchCharacterMeetsNoOption) {
    CommandLineParser parser;
    parser.defineOption(u"-o", 1, u"d");
    parser.parse(u"-o a");
    EXPECT_EQ(written(parser), "o() a") << "names are taken as they stand";
    EXPECT_TRUE(parser.isPresent(u"o"));
    EXPECT_FALSE(parser.isPresent(u"-o"));
    const Reference<CommandLineParser::Element> definition = parser.getOption(u"-o");
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->getName(), u"-o");
    EXPECT_EQ(definition->getPosition(), -1);
    EXPECT_EQ(definition->getValueString(0), u"d");
}

TEST_F(DefinedOptionTest, NamesThatDifferInCaseAreTwoUntilCaseIsIgnored) {
    parser.defineOption(u"O", 0, u"upper");
    parse(u"");
    EXPECT_EQ(parser.getValueString(u"o", 0), u"p");
    EXPECT_EQ(parser.getValueString(u"O", 0), u"upper");
    parser.setIgnoreCase(true);
    EXPECT_EQ(parser.getValueString(u"o", 0), u"upper") << "the later definition counts";
}

TEST(CommandLineParserTest, SecondParseDropsTheFirst) {
    CommandLineParser parser;
    parser.defineOption(u"o", 1);
    parser.parse(u"-o a b");
    parser.parse(u"-o c");
    EXPECT_EQ(written(parser), "o(c)");
    EXPECT_EQ(parser.getParameterCount(), 0);
}

TEST(CommandLineParserTest, OptionOfAnEarlierParseIsForgotten) {
    CommandLineParser parser;
    parser.parse(u"-a -b");
    parser.parse(u"x y z");
    for (const bool ignoreCase : {false, true}) {
        parser.setIgnoreCase(ignoreCase);
        EXPECT_FALSE(parser.isPresent(u"a"));
        EXPECT_FALSE(parser.getOption(u"b"));
    }
}

TEST(CommandLineParserTest, SubclassFindsDefinitionsAndResets) {
    struct Open : CommandLineParser {
        using CommandLineParser::getDefinition;
        using CommandLineParser::reset;
    };
    Open parser;
    parser.defineOption(u"o", 1, u"7");
    parser.parse(u"-o 1 -p x");
    ASSERT_TRUE(parser.getDefinition(u"o"));
    EXPECT_EQ(parser.getDefinition(u"o")->getName(), u"o");
    EXPECT_FALSE(parser.getDefinition(u"p")) << "it stands on the line only";
    parser.reset();
    EXPECT_EQ(parser.getElementCount(), 0);
    EXPECT_EQ(parser.getParameterCount(), 0);
    EXPECT_FALSE(parser.isPresent(u"o"));
    EXPECT_EQ(parser.getValueLong(u"o", 0), 7) << "definitions stay";
}

TEST(CommandLineParserTest, LaterOfRepeatedOptionsIsFound) {
    CommandLineParser parser;
    parser.parse(u"-a=1 -a=2");
    EXPECT_EQ(parser.getElementCount(), 2);
    EXPECT_EQ(parser.getValueString(u"a", 0), u"2");
}

TEST(CommandLineParserTest, CaseIsIgnoredOnRequest) {
    CommandLineParser parser;
    parser.defineOption(u"Level", 1, u"7");
    parser.parse(u"-NAME=x");
    EXPECT_FALSE(parser.isPresent(u"name"));
    EXPECT_FALSE(parser.getOption(u"level"));
    parser.setIgnoreCase(true);
    EXPECT_TRUE(parser.isPresent(u"name"));
    EXPECT_EQ(parser.getValueLong(u"LEVEL", 0), 7);
    parser.parse(u"-level 3");
    EXPECT_EQ(parser.getValueLong(u"Level", 0), 3);
    parser.setIgnoreCase(false);
    EXPECT_FALSE(parser.isPresent(u"Level"));
    EXPECT_TRUE(parser.isPresent(u"level"));
}

TEST(CommandLineParserTest, ArgumentsAreJoined) {
    char program[] = "program";
    char option[] = "-in=a b";
    char tab[] = "x\ty";
    char text[] = "\xC3\xA9";
    char* arguments[] = {program, option, tab, text, nullptr};
    CommandLineParser parser;
    parser.parse(3, arguments + 1);
    EXPECT_EQ(parser.getElementCount(), 3);
    EXPECT_EQ(parser.getValueString(u"in", 0), u"a b");
    EXPECT_EQ(parser.getElement(1)->getValueString(0), u"x\ty");
    String decoded;
    decoded = text;
    EXPECT_EQ(parser.getElement(2)->getValueString(0), decoded);
    parser.parse(1, arguments);
    EXPECT_EQ(parser.getParameter(0)->getValueString(0), u"program");
    parser.parse(0, arguments);
    EXPECT_EQ(parser.getElementCount(), 0);
}

TEST(CommandLineParserTest, ArgumentThatCannotBeDecodedIsNoFailure) {
    char bad[] = "-name=a\xED\xA0\x80z"; // in UTF-8 half a surrogate pair
    char good[] = "last";
    char* arguments[] = {bad, good, nullptr};
    String expected(u"a\uFFFD\uFFFD\uFFFDz");
    try {
        expected = "a\xED\xA0\x80z";
    } catch (const text::charset::InvalidCharacterException&) { // the default encoding is UTF-8
    }
    CommandLineParser parser;
    parser.parse(2, arguments);
    EXPECT_EQ(parser.getValueString(u"name", 0), expected);
    EXPECT_EQ(parser.getElementCount(), 2);
    EXPECT_EQ(parser.getParameter(0)->getValueString(0), u"last");
}

TEST(CommandLineParserTest, OnlyABlankHasAnArgumentQuoted) {
    char argument[] = "a\"b\tc";
    char* arguments[] = {argument, nullptr};
    CommandLineParser parser;
    parser.parse(1, arguments);
    EXPECT_EQ(written(parser), "a\"b\tc");
}

TEST(CommandLineParserTest, ArgumentsAreJoinedAsTheyStand) {
    char quoted[] = "a\"b c";
    char empty[] = "";
    char bare[] = "\"d";
    char* arguments[] = {quoted, nullptr};
    CommandLineParser parser;
    parser.parse(1, arguments);
    EXPECT_EQ(written(parser), "a b c\"") << "a quote inside is not escaped";
    EXPECT_EQ(parser.getElementCount(), 3);
    char* blanks[] = {bare, empty, bare, nullptr};
    parser.parse(3, blanks);
    // The text is `"d  "d ` with a quoted run up to the second quote.
    EXPECT_EQ(parser.getElementCount(), 2);
    EXPECT_EQ(parser.getElement(0)->getValueString(0), u"d  ");
    EXPECT_EQ(parser.getElement(1)->getValueString(0), u"d");
}

TEST(CommandLineParserTest, ValuesAreConverted) {
    const support::LocaleScope locale(LC_NUMERIC, "C");
    CommandLineParser parser;
    parser.parse(u"-n=12ab,0x1F,010,-5,99999999999 -d=2.5x,-1e3 -t=abc, -e=\"\"");
    EXPECT_EQ(parser.getValueLong(u"n", 0), 12);
    EXPECT_EQ(parser.getValueLong(u"n", 1), 31);
    EXPECT_EQ(parser.getValueLong(u"n", 2), 8);
    EXPECT_EQ(parser.getValueLong(u"n", 3), -5);
    EXPECT_EQ(parser.getValueLong(u"n", 4), 0x7FFFFFFF);
    EXPECT_EQ(parser.getValueDouble(u"d", 0), 2.5);
    EXPECT_EQ(parser.getValueDouble(u"d", 1), -1000.0);
    EXPECT_EQ(support::thrownText<Exception>([&] { parser.getValueLong(u"t", 0); }),
              "Unable to convert string to long");
    EXPECT_EQ(support::thrownText<Exception>([&] { parser.getValueDouble(u"t", 0); }),
              "Unable to convert string to double");
    EXPECT_EQ(support::thrownText<Exception>([&] { parser.getValueLong(u"e", 0); }),
              "Unable to convert string to long");
    EXPECT_EQ(support::thrownText<Exception>([&] { parser.getValueDouble(u"e", 0); }),
              "Unable to convert string to double");
}

TEST(CommandLineParserTest, IndicesOutOfRangeThrow) {
    CommandLineParser parser;
    parser.parse(u"-a=1 b");
    for (const int index : {-1, 2, 99}) {
        EXPECT_EQ(support::thrownText<Exception>([&] { parser.getElement(index); }),
                  "Invalid vector index");
        EXPECT_EQ(support::thrownText<Exception>([&] { parser.getParameter(index); }),
                  "Invalid vector index");
        EXPECT_EQ(support::thrownText<Exception>([&] { parser.getValueString(u"a", index); }),
                  "Invalid vector index");
        EXPECT_THROW(parser.getValueLong(u"a", index), Exception);
        EXPECT_THROW(parser.getValueDouble(u"a", index), Exception);
    }
}

TEST(CommandLineParserTest, SwitchCharactersAreFixed) {
    EXPECT_EQ(String(CommandLineParser::m_switchChars), u"-/");
}

} // namespace
