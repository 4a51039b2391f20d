#include "qvcore/Text.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::u16string lower(std::u16string text) {
    QVStrToLowerW(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}

std::u16string upper(std::u16string text) {
    QVStrToUpperW(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}

std::int32_t compareIgnoringCase(const std::u16string& left, const std::u16string& right) {
    return QVStrNICmpW(left.data(), right.data(), static_cast<std::int32_t>(left.size()));
}

std::int32_t find(const std::u16string& text, const std::u16string& needle) {
    return QVStrNIFindW(text.data(), static_cast<std::int32_t>(text.size()), needle.data(),
                        static_cast<std::int32_t>(needle.size()));
}

/// The obvious search that the fast one must agree with.
std::int32_t findSlowly(const std::u16string& text, const std::u16string& needle) {
    for (std::size_t at = 0; at + needle.size() <= text.size(); ++at) {
        std::size_t same = 0;
        while (same < needle.size() && QVToLowerW(text[at + same]) == QVToLowerW(needle[same])) {
            ++same;
        }
        if (same == needle.size()) {
            return static_cast<std::int32_t>(at);
        }
    }
    return -1;
}

} // namespace

TEST(TextLengthTest, CountsUnitsInFrontOfTheTerminator) {
    EXPECT_EQ(QVStrLenW_32(u""), 0);
    EXPECT_EQ(QVStrLenW_32(u"a"), 1);
    EXPECT_EQ(QVStrLenW_32(u"\xD83D\xDE00"), 2);
    EXPECT_EQ(QVStrLenA_32(""), 0);
    EXPECT_EQ(QVStrLenA_32("abc"), 3);
}

TEST(TextLengthTest, TakesNullAsEmpty) {
    EXPECT_EQ(QVStrLenW_32(nullptr), 0);
    EXPECT_EQ(QVStrLenA_32(nullptr), 0);
}

TEST(TextLengthTest, IsExactAtEveryLengthAndEveryStart) {
    for (std::size_t length = 0; length < 80; ++length) {
        const std::u16string text(length, u'\xFF00');
        for (std::size_t start = 0; start <= length; ++start) {
            ASSERT_EQ(QVStrLenW_32(text.c_str() + start),
                      static_cast<std::int32_t>(length - start));
        }
    }
}

TEST(TextLengthTest, EndsAtTheFirstTerminator) {
    const std::u16string text(u"ab\0cd\0", 6);
    EXPECT_EQ(QVStrLenW_32(text.c_str()), 2);
}

TEST(TextCompareTest, OrdersByCodeUnit) {
    EXPECT_EQ(QVStrCmpW(u"", u""), 0);
    EXPECT_EQ(QVStrCmpW(u"abc", u"abc"), 0);
    EXPECT_EQ(QVStrCmpW(u"abc", u"abd"), -1);
    EXPECT_EQ(QVStrCmpW(u"abd", u"abc"), 1);
    EXPECT_EQ(QVStrCmpW(u"ab", u"abc"), -1);
    EXPECT_EQ(QVStrCmpW(u"abc", u"ab"), 1);
    EXPECT_EQ(QVStrCmpW(u"", u"a"), -1);
    EXPECT_EQ(QVStrCmpW(u"a", u"B"), 1);
}

TEST(TextCompareTest, ComparesUnitsAsUnsignedNumbers) {
    EXPECT_EQ(QVStrCmpW(u"\xFFFF", u"\x0001"), 1);
    EXPECT_EQ(QVStrCmpW(u"\xD83D\xDE00", u"\xFF00"), -1);
}

TEST(TextCompareTest, FindsTheFirstDifferenceOfLongTexts) {
    // Long enough for the ends of pages, and shifted against each other.
    const std::u16string text(5000, u'q');
    const std::u16string shifted = u"abc" + text;
    EXPECT_EQ(QVStrCmpW(text.c_str(), shifted.c_str() + 3), 0);
    for (std::size_t place = 0; place < text.size(); place += 7) {
        std::u16string other = shifted;
        other[place + 3] = u'r';
        ASSERT_EQ(QVStrCmpW(text.c_str(), other.c_str() + 3), -1);
        ASSERT_EQ(QVStrCmpW(other.c_str() + 3, text.c_str()), 1);
        other[place + 3] = 0;
        ASSERT_EQ(QVStrCmpW(text.c_str(), other.c_str() + 3), 1);
        ASSERT_EQ(QVStrCmpW(other.c_str() + 3, text.c_str()), -1);
    }
}

TEST(TextCompareTest, IgnoresCaseByTheLowerForms) {
    EXPECT_EQ(QVStrICmpW(u"", u""), 0);
    EXPECT_EQ(QVStrICmpW(u"HeLLo", u"hEllO"), 0);
    EXPECT_EQ(QVStrICmpW(u"ÄÖÜ", u"äöü"), 0);
    EXPECT_EQ(QVStrICmpW(u"ЖУК", u"жук"), 0);
    EXPECT_EQ(QVStrICmpW(u"a", u"B"), -1);
    EXPECT_EQ(QVStrICmpW(u"B", u"a"), 1);
    EXPECT_EQ(QVStrICmpW(u"ab", u"ABC"), -1);
    EXPECT_EQ(QVStrICmpW(u"ABC", u"ab"), 1);
    // '_' stands between the upper and the lower letters: the lower forms decide.
    EXPECT_EQ(QVStrICmpW(u"A", u"_"), 1);
}

TEST(TextCompareTest, ComparesExactlyTheCount) {
    EXPECT_EQ(QVStrNICmpW(u"abX", u"ABY", 2), 0);
    EXPECT_EQ(QVStrNICmpW(u"abX", u"ABY", 3), -1);
    EXPECT_EQ(QVStrNICmpW(u"abY", u"ABX", 3), 1);
    EXPECT_EQ(QVStrNICmpW(u"a", u"b", 0), 0);
    EXPECT_EQ(QVStrNICmpW(u"a", u"b", -1), 0);
}

TEST(TextCompareTest, GoesOnBehindATerminator) {
    const std::u16string left(u"a\0B", 3);
    const std::u16string right(u"A\0c", 3);
    EXPECT_EQ(compareIgnoringCase(left, right), -1);
    EXPECT_EQ(compareIgnoringCase(left, std::u16string(u"A\0b", 3)), 0);
}

TEST(TextCompareTest, FindsADifferenceAtEveryPlace) {
    for (std::size_t length = 1; length < 40; ++length) {
        const std::u16string text(length, u'q');
        const std::u16string same(length, u'Q');
        EXPECT_EQ(compareIgnoringCase(text, same), 0);
        for (std::size_t place = 0; place < length; ++place) {
            for (const char16_t unit : {u'R', u'Ж'}) {
                std::u16string other = same;
                other[place] = unit;
                EXPECT_EQ(compareIgnoringCase(text, other), -1) << length << ' ' << place;
                EXPECT_EQ(compareIgnoringCase(other, text), 1) << length << ' ' << place;
            }
        }
    }
}

TEST(TextCompareTest, MapsUnitsOutsideAsciiInLongTexts) {
    EXPECT_EQ(compareIgnoringCase(u"Straßenbahnhaltestelle ÄÖÜ", u"STRAẞENBAHNHALTESTELLE äöü"), 0);
    // The Kelvin sign's lower form is the letter k.
    EXPECT_EQ(compareIgnoringCase(u"kkkkkkkkkkkk", u"KKKK\u212AKKKKKKK"), 0);
    EXPECT_EQ(compareIgnoringCase(u"@@@@@@@@", u"````````"), -1);
    EXPECT_EQ(compareIgnoringCase(u"[[[[[[[[", u"{{{{{{{{"), -1);
}

TEST(TextFindTest, FindsTheFirstPlaceIgnoringCase) {
    EXPECT_EQ(find(u"one Two two", u"TWO"), 4);
    EXPECT_EQ(find(u"abc", u"ABC"), 0);
    EXPECT_EQ(find(u"abc", u"c"), 2);
    EXPECT_EQ(find(u"abc", u"d"), -1);
    EXPECT_EQ(find(u"Привет, МИР", u"мир"), 8);
}

TEST(TextFindTest, FindsAnEmptyNeedleAtTheStart) {
    EXPECT_EQ(find(u"abc", u""), 0);
    EXPECT_EQ(find(u"", u""), 0);
    EXPECT_EQ(QVStrNIFindW(u"abc", 3, nullptr, 0), 0);
}

TEST(TextFindTest, DoesNotFindWhatIsLongerThanTheText) {
    EXPECT_EQ(find(u"", u"a"), -1);
    EXPECT_EQ(find(u"ab", u"abc"), -1);
}

TEST(TextFindTest, LooksAtTheGivenUnitsOnly) {
    EXPECT_EQ(QVStrNIFindW(u"abcdef", 3, u"d", 1), -1);
    EXPECT_EQ(QVStrNIFindW(u"abcdef", 4, u"dxx", 1), 3);
}

TEST(TextFindTest, FindsATextWithATerminatorInIt) {
    EXPECT_EQ(find(std::u16string(u"ab\0cd", 5), std::u16string(u"\0C", 2)), 2);
}

TEST(TextFindTest, KnowsEveryCaseOfAUnit) {
    // K, k and the Kelvin sign; the three forms of the digraph; sharp s and its capital.
    for (const char16_t* form : {u"K", u"k", u"\u212A"}) {
        EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaa\u212Aaaaaaaaaaaa", form), 17);
        EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaakaaaaaaaaaaa", form), 17);
    }
    for (const char16_t* form : {u"\u01C4", u"\u01C5", u"\u01C6"}) {
        EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaa\u01C5aaaaaaaaaaa", form), 17);
    }
    EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaa\u1E9Eaaaaaaaaaaa", u"ß"), 17);
    EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaa\u0130aaaaaaaaaaa", u"i"), 17);
    // The dotless i has no other form among the letters i.
    EXPECT_EQ(find(u"aaaaaaaaaaaaaaaaaIaaaaaaaaaaa", u"\u0131"), -1);
}

TEST(TextFindTest, AgreesWithTheObviousSearch) {
    const std::u16string units = u"abABжЖ\u212Ak";
    std::uint32_t state = 12345;
    const auto next = [&](std::size_t below) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % below;
    };
    for (int round = 0; round < 20000; ++round) {
        std::u16string text(next(60), u' ');
        std::u16string needle(1 + next(5), u' ');
        for (char16_t& unit : text) {
            unit = units[next(units.size())];
        }
        for (char16_t& unit : needle) {
            unit = units[next(units.size())];
        }
        ASSERT_EQ(find(text, needle), findSlowly(text, needle));
    }
}

TEST(TextSearchTest, FindsAUnitOrTheTerminator) {
    const char16_t* text = u"abca";
    EXPECT_EQ(QVStrChrW(text, u'a'), text);
    EXPECT_EQ(QVStrChrW(text, u'c'), text + 2);
    EXPECT_EQ(QVStrChrW(text, 0), text + 4);
    EXPECT_EQ(QVStrChrW(text, u'x'), nullptr);
    EXPECT_NE(QVStrChrW(u"", 0), nullptr);
    EXPECT_EQ(QVStrChrW(u"", u'a'), nullptr);
}

TEST(TextTokenTest, TakesOneTokenAfterTheOther) {
    std::u16string text = u"  one two  ";
    char16_t* cursor = text.data();
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u" ")), u"one");
    EXPECT_EQ(cursor, text.data() + 6);
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u" ")), u"two");
    EXPECT_EQ(cursor, text.data() + 10);
    EXPECT_EQ(QVStrTokW(&cursor, u" "), nullptr);
    EXPECT_EQ(*cursor, 0);
    EXPECT_EQ(QVStrTokW(&cursor, u" "), nullptr);
}

TEST(TextTokenTest, LeavesTheCursorOnTheTextsOwnTerminator) {
    std::u16string text = u"one";
    char16_t* cursor = text.data();
    EXPECT_EQ(QVStrTokW(&cursor, u" "), text.data());
    EXPECT_EQ(cursor, text.data() + 3);
    EXPECT_EQ(*cursor, 0);
}

TEST(TextTokenTest, KnowsEveryDelimiter) {
    std::u16string text = u"a,b c";
    char16_t* cursor = text.data();
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u", ")), u"a");
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u", ")), u"b");
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u", ")), u"c");
    EXPECT_EQ(QVStrTokW(&cursor, u", "), nullptr);
}

TEST(TextTokenTest, TakesTheWholeTextWithoutDelimiters) {
    std::u16string text = u"a b";
    char16_t* cursor = text.data();
    EXPECT_EQ(std::u16string(QVStrTokW(&cursor, u"")), u"a b");
}

TEST(TextTokenTest, HasNothingLeftAtANullCursor) {
    char16_t* cursor = nullptr;
    EXPECT_EQ(QVStrTokW(&cursor, u" "), nullptr);
}

struct CasePair {
    char16_t upper;
    char16_t lower;
};

class CaseMapTest : public testing::TestWithParam<CasePair> {};

TEST_P(CaseMapTest, MapsBothWays) {
    EXPECT_EQ(QVToLowerW(GetParam().upper), GetParam().lower);
    EXPECT_EQ(QVToUpperW(GetParam().lower), GetParam().upper);
    EXPECT_EQ(QVToLowerW(GetParam().lower), GetParam().lower);
    EXPECT_EQ(QVToUpperW(GetParam().upper), GetParam().upper);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, CaseMapTest,
    testing::Values(CasePair{u'A', u'a'}, CasePair{u'Z', u'z'}, CasePair{u'À', u'à'},
                    CasePair{u'Þ', u'þ'}, CasePair{u'Ÿ', u'ÿ'}, CasePair{u'Ā', u'ā'},
                    CasePair{u'Ž', u'ž'}, CasePair{u'Ǆ', u'ǆ'}, CasePair{u'Ω', u'ω'},
                    CasePair{u'Σ', u'σ'}, CasePair{u'Ж', u'ж'}, CasePair{u'Ѐ', u'ѐ'},
                    CasePair{u'Ա', u'ա'}, CasePair{0x10A0, 0x2D00}, CasePair{0x1C90, 0x10D0},
                    CasePair{0x13A0, 0xAB70}, CasePair{0x1E00, 0x1E01}, CasePair{0x1F08, 0x1F00},
                    CasePair{0x2160, 0x2170}, CasePair{0x24B6, 0x24D0}, CasePair{0xA640, 0xA641},
                    CasePair{0xFF21, 0xFF41}));

TEST(CaseMapOneWayTest, KeepsFormsThatHaveNoCounterpart) {
    EXPECT_EQ(QVToUpperW(u'ß'), u'ß');
    EXPECT_EQ(QVToLowerW(0x1E9E), u'ß');
    EXPECT_EQ(QVToUpperW(0x0131), u'I');
    EXPECT_EQ(QVToLowerW(0x0130), u'i');
    EXPECT_EQ(QVToLowerW(0x212A), u'k');
    EXPECT_EQ(QVToLowerW(0x2126), u'ω');
    EXPECT_EQ(QVToUpperW(u'µ'), 0x039C);
    EXPECT_EQ(QVToUpperW(0x017F), u'S');
    EXPECT_EQ(QVToUpperW(0x03C2), 0x03A3);
    EXPECT_EQ(QVToUpperW(0x01C5), 0x01C4);
    EXPECT_EQ(QVToLowerW(0x01C5), 0x01C6);
}

TEST(CaseMapOneWayTest, LeavesUnitsWithoutCase) {
    for (const char16_t unit :
         {u'\0', u'@', u'[', u'`', u'{', u'0', u'×', u'÷', u'中', u'\uFFFD', u'\uFFFF'}) {
        EXPECT_EQ(QVToLowerW(unit), unit);
        EXPECT_EQ(QVToUpperW(unit), unit);
    }
    for (unsigned unit = 0xD800; unit < 0xE000; ++unit) {
        ASSERT_EQ(QVToLowerW(static_cast<char16_t>(unit)), unit);
        ASSERT_EQ(QVToUpperW(static_cast<char16_t>(unit)), unit);
    }
}

TEST(CaseMapOneWayTest, IsStableOverTheWholePlane) {
    for (unsigned value = 0; value < 0x10000; ++value) {
        const auto unit = static_cast<char16_t>(value);
        ASSERT_EQ(QVToLowerW(QVToLowerW(unit)), QVToLowerW(unit)) << value;
        ASSERT_EQ(QVToUpperW(QVToUpperW(unit)), QVToUpperW(unit)) << value;
    }
}

TEST(TextMapTest, MapsTheGivenUnitsInPlace) {
    std::u16string text = u"HELLO";
    QVStrToLowerW(text.data(), 3);
    EXPECT_EQ(text, u"helLO");
    QVStrToUpperW(text.data(), 1);
    EXPECT_EQ(text, u"HelLO");
    QVStrToLowerW(text.data(), 0);
    EXPECT_EQ(text, u"HelLO");
}

TEST(TextMapTest, MapsUpToTheTerminatorForALengthOfMinusOne) {
    std::u16string text(u"AB\0CD", 5);
    QVStrToLowerW(text.data(), -1);
    EXPECT_EQ(text, std::u16string(u"ab\0CD", 5));
    QVStrToUpperW(text.data(), -1);
    EXPECT_EQ(text, std::u16string(u"AB\0CD", 5));
}

TEST(TextMapTest, MapsLikeTheSingleUnitsAtEveryLength) {
    const std::u16string sample = u"@AZ[`az{ÀÿЖжẞ0中\u212A\xD83D\xDE00 Hello WORLD hello WORLD";
    for (std::size_t length = 0; length <= sample.size(); ++length) {
        for (std::size_t start = 0; start + length <= sample.size(); ++start) {
            const std::u16string text = sample.substr(start, length);
            std::u16string lowered = text;
            std::u16string raised = text;
            for (std::size_t at = 0; at < length; ++at) {
                lowered[at] = QVToLowerW(text[at]);
                raised[at] = QVToUpperW(text[at]);
            }
            ASSERT_EQ(lower(text), lowered);
            ASSERT_EQ(upper(text), raised);
        }
    }
}
