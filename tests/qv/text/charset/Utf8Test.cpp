#include "qv/text/charset/BTCUTF8.h"
#include "qv/text/charset/CTBUTF8.h"

#include "qv/Exceptions.h"
#include "tests/support/Conversions.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using reference::Failure;
using namespace std::string_literals;

namespace {

const std::string surrogateMessage = "Invalid UTF-8 sequence (decoded chars in surrogate range)";

struct Sequence {
    std::string bytes;
    std::u16string units;
};

class BTCUTF8SequenceTest : public testing::TestWithParam<Sequence> {};

TEST_P(BTCUTF8SequenceTest, GivesTheSameInBothSubstitutionModes) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decodeAll(decoder, GetParam().bytes), GetParam().units);
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decodeAll(decoder, GetParam().bytes), GetParam().units);
}

INSTANTIATE_TEST_SUITE_P(
    WellFormed, BTCUTF8SequenceTest,
    testing::Values(Sequence{"\0"s, u"\0"s}, Sequence{"\x7F", u"\x7F"},
                    Sequence{"\xC2\x80", u"\u0080"}, Sequence{"\xDF\xBF", u"\u07FF"},
                    Sequence{"\xE0\xA0\x80", u"\u0800"}, Sequence{"\xED\x9F\xBF", u"\uD7FF"},
                    Sequence{"\xEE\x80\x80", u"\uE000"}, Sequence{"\xEF\xBB\xBF", u"\uFEFF"},
                    Sequence{"\xEF\xBF\xBD", u"\uFFFD"}, Sequence{"\xEF\xBF\xBF", u"\uFFFF"},
                    Sequence{"\xF0\x90\x80\x80", u"\U00010000"},
                    Sequence{"\xF0\xAF\xBF\xBF", u"\U0002FFFF"},
                    Sequence{"\xF4\x8F\xBF\xBF", u"\U0010FFFF"}));

INSTANTIATE_TEST_SUITE_P(OverlongFormsOfThreeAndFourBytes, BTCUTF8SequenceTest,
                         testing::Values(Sequence{"\xE0\x80\x80", u"\0"s},
                                         Sequence{"\xE0\x9F\xBF", u"\u07FF"},
                                         Sequence{"\xF0\x80\x80\x80", u"\0"s},
                                         Sequence{"\xF0\x8F\xBF\xBF", u"\uFFFF"}));

INSTANTIATE_TEST_SUITE_P(BadBytes, BTCUTF8SequenceTest,
                         testing::Values(Sequence{"\x80", u"\uFFFD"}, Sequence{"\xBF", u"\uFFFD"},
                                         Sequence{"\xC0\x80", u"\uFFFD\uFFFD"},
                                         Sequence{"\xC1\xBF", u"\uFFFD\uFFFD"},
                                         Sequence{"\xF5", u"\uFFFD"}, Sequence{"\xFF", u"\uFFFD"},
                                         Sequence{"\xFE\xFE", u"\uFFFD\uFFFD"},
                                         Sequence{"\xC3(", u"\uFFFD("},
                                         Sequence{"\xE2(\xA1", u"\uFFFD(\uFFFD"},
                                         Sequence{"\xE2\x82(", u"\uFFFD\uFFFD("},
                                         Sequence{"\xC3\xC3\xA9", u"\uFFFD\u00E9"}));

INSTANTIATE_TEST_SUITE_P(FourBytesWithASecondByteAboveAF, BTCUTF8SequenceTest,
                         testing::Values(Sequence{"\xF0\xB0\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
                                         Sequence{"\xF1\xBF\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
                                         Sequence{"\xF4\xB0\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
                                         Sequence{"\xF1\xAF\xBF\xBF", u"\U0006FFFF"}));

TEST(BTCUTF8Test, SurrogatesThrowInBothSubstitutionModes) {
    BTCUTF8 decoder;
    for (const bool mode : {true, false}) {
        decoder.setSubstitutionMode(mode);
        for (const char* bytes : {"ab\xED\xA0\x80", "ab\xED\xBF\xBF"}) {
            const Decoded outcome = support::decode(decoder, bytes);
            EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
            EXPECT_EQ(outcome.message, surrogateMessage);
        }
    }
}

TEST(BTCUTF8Test, OutputInFrontOfAFailureStays) {
    BTCUTF8 decoder;
    const std::string text = std::string(100, 'a') + "\xED\xA0\x80";
    std::u16string out(200, u'.');
    std::int32_t from = 0;
    std::int32_t to = 0;
    EXPECT_THROW(decoder.convert(reinterpret_cast<const signed char*>(text.data()), &from, 103,
                                 out.data(), &to, 200),
                 InvalidCharacterException);
    EXPECT_EQ(from, 0);
    EXPECT_EQ(to, 0);
    EXPECT_EQ(out.substr(0, 100), std::u16string(100, u'a'));
}

TEST(BTCUTF8Test, ValuesAbove10FFFFFollowTheSubstitutionSettings) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "\xF4\x90\x80\x80"), u"\uFFFD");
    EXPECT_EQ(support::decodeAll(decoder, "\xF4\xAF\xBF\xBF"), u"\uFFFD");
    decoder.setSubstitutionChars(u"<?>", 3);
    EXPECT_EQ(support::decodeAll(decoder, "\xF4\x90\x80\x80!"), u"<?>!");
    decoder.setSubstitutionChars(u"", 0);
    EXPECT_EQ(support::decodeAll(decoder, "\xF4\x90\x80\x80!"), u"!");
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "\xF4\x90\x80\x80").failure, Failure::unmappableCharacter);
}

TEST(BTCUTF8Test, SubstitutionWantsOneUnitMoreThanItTakes) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decode(decoder, "\xF4\x90\x80\x80", 1), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\xF4\x90\x80\x80", 2), (Decoded{4, u"\uFFFD"}));
    decoder.setSubstitutionChars(u"abc", 3);
    EXPECT_EQ(support::decode(decoder, "\xF4\x90\x80\x80", 3), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\xF4\x90\x80\x80", 4), (Decoded{4, u"abc"}));
}

TEST(BTCUTF8Test, MalformedBytesIgnoreTheSubstitutionCharacters) {
    BTCUTF8 decoder;
    decoder.setSubstitutionChars(u"abc", 3);
    EXPECT_EQ(support::decodeAll(decoder, "\xFF"), u"\uFFFD");
}

TEST(BTCUTF8Test, IncompleteSequenceStaysUnconsumed) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decode(decoder, "a\xC3"), (Decoded{1, u"a"}));
    EXPECT_EQ(support::decode(decoder, "a\xE2\x82"), (Decoded{1, u"a"}));
    EXPECT_EQ(support::decode(decoder, "a\xF0\x9F\x98"), (Decoded{1, u"a"}));
    // Also where it is bad already: the length alone decides.
    EXPECT_EQ(support::decode(decoder, "a\xE2("), (Decoded{1, u"a"}));
}

TEST(BTCUTF8Test, PairThatDoesNotFitStaysUnconsumed) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decode(decoder, "a\xF0\x9F\x98\x80", 2), (Decoded{1, u"a"}));
    EXPECT_EQ(support::decode(decoder, "a\xF0\x9F\x98\x80", 3), (Decoded{5, u"a\U0001F600"}));
}

TEST(BTCUTF8Test, SurrogateWithoutRoomStopsInsteadOfThrowing) {
    BTCUTF8 decoder;
    EXPECT_EQ(support::decode(decoder, "a\xED\xA0\x80", 1), (Decoded{1, u"a"}));
}

TEST(CTBUTF8Test, WritesTheFormsOfAllLengths) {
    CTBUTF8 encoder;
    EXPECT_EQ(
        support::encodeAll(encoder, u"\0\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFEFF\uFFFF"s),
        "\0\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBB\xBF\xEF\xBF\xBF"s);
    EXPECT_EQ(support::encodeAll(encoder, u"\U00010000\U0010FFFF"),
              "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(CTBUTF8Test, TrailingSurrogateAloneBecomesThreeBytes) {
    CTBUTF8 encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"a\xDC00z"), "a\xED\xB0\x80z");
    EXPECT_EQ(support::encodeAll(encoder, u"\xDFFF"), "\xED\xBF\xBF");
}

TEST(CTBUTF8Test, LeadingSurrogateWaitsForTheNextCall) {
    CTBUTF8 encoder;
    EXPECT_EQ(support::encode(encoder, u"a\xD83D"), (Encoded{2, "a"}));
    EXPECT_EQ(support::encode(encoder, u"\xDE00z"), (Encoded{2, "\xF0\x9F\x98\x80z"}));
}

TEST(CTBUTF8Test, LeadingSurrogateCountsAsConsumedWithoutRoom) {
    CTBUTF8 encoder;
    EXPECT_EQ(support::encode(encoder, u"\xD83D", 0), (Encoded{1, ""}));
}

TEST(CTBUTF8Test, LeadingSurrogateWithoutTrailingThrowsAndGoesOnWaiting) {
    CTBUTF8 encoder;
    Encoded outcome = support::encode(encoder, u"\xD83Dx");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "leading surrogate without trailing");
    outcome = support::encode(encoder, u"x");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    encoder.reset();
    EXPECT_EQ(support::encodeAll(encoder, u"x"), "x");
}

TEST(CTBUTF8Test, FlushThrowsWhereASurrogateWaitsUntilReset) {
    CTBUTF8 encoder;
    support::encode(encoder, u"\xD83D");
    for (int i = 0; i < 2; ++i) {
        try {
            encoder.flush(nullptr, nullptr, 0);
            ADD_FAILURE();
        } catch (const InvalidCharacterException& exception) {
            EXPECT_STREQ(exception.getDescription().getBytes(),
                         "leading surrogate without trailing");
        }
    }
    encoder.reset();
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

TEST(CTBUTF8Test, PairThatMeetsThreeFreeBytesLosesItsLeadingHalf) {
    CTBUTF8 encoder;
    EXPECT_EQ(support::encode(encoder, u"\xD83D\xDE00", 3), (Encoded{1, ""}));
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
    EXPECT_EQ(support::encode(encoder, u"\xDE00", 3), (Encoded{1, "\xED\xB8\x80"}));
}

TEST(CTBUTF8Test, FormThatDoesNotFitStaysUnconsumed) {
    CTBUTF8 encoder;
    EXPECT_EQ(support::encode(encoder, u"a\u00E9", 2), (Encoded{1, "a"}));
    EXPECT_EQ(support::encode(encoder, u"\u20AC", 2), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\u20AC", 3), (Encoded{1, "\xE2\x82\xAC"}));
}

} // namespace
