#include "qv/text/charset/UTF32Converters.h"

#include "qv/Exceptions.h"
#include "tests/support/Conversions.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using reference::Failure;
using namespace std::string_literals;

namespace {

/// A user's words: a value is told from its number by a fixed distance.
template <class Base>
class Shifted : public Base {
protected:
    unsigned int convertUTF32(unsigned int word) override { return Base::convertUTF32(word) ^ 1; }
};

TEST(BTCUTF32Test, WordsStandInTheirByteOrder) {
    BTCUTF32LE little;
    BTCUTF32BE big;
    EXPECT_EQ(support::decodeAll(little, "A\0\0\0\0\xF6\x01\0\xFF\xFE\0\0"s), u"A\U0001F600\uFEFF");
    EXPECT_EQ(support::decodeAll(big, "\0\0\0A\0\x01\xF6\0"s), u"A\U0001F600");
}

TEST(BTCUTF32Test, BoundsOfThePlanes) {
    BTCUTF32BE decoder;
    EXPECT_EQ(
        support::decodeAll(decoder, "\0\0\xD7\xFF\0\0\xE0\0\0\0\xFF\xFF\0\x01\0\0\0\x10\xFF\xFF"s),
        u"\uD7FF\uE000\uFFFF\U00010000\U0010FFFF");
}

TEST(BTCUTF32Test, SurrogatesThrowInBothSubstitutionModes) {
    BTCUTF32BE decoder;
    for (const bool mode : {true, false}) {
        decoder.setSubstitutionMode(mode);
        for (const std::string& word : {"\0\0\xD8\0"s, "\0\0\xDF\xFF"s}) {
            const Decoded outcome = support::decode(decoder, "\0\0\0a"s + word);
            EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
            EXPECT_EQ(outcome.message, "Illegal UTF-32 char in surrogate range");
        }
    }
}

TEST(BTCUTF32Test, WordsAbove10FFFFFollowTheSubstitutionSettings) {
    BTCUTF32BE decoder;
    EXPECT_EQ(support::decodeAll(decoder, "\0\x11\0\0"s), u"\uFFFD");
    EXPECT_EQ(support::decodeAll(decoder, "\xFF\xFF\xFF\xFF"), u"\uFFFD");
    decoder.setSubstitutionChars(u"ab", 2);
    EXPECT_EQ(support::decode(decoder, "\0\x11\0\0"s, 2), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\0\x11\0\0"s, 3), (Decoded{4, u"ab"}));
    decoder.setSubstitutionMode(false);
    const Decoded outcome = support::decode(decoder, "\0\x11\0\0"s);
    EXPECT_EQ(outcome.failure, Failure::unmappableCharacter);
    EXPECT_EQ(outcome.message, "");
}

TEST(BTCUTF32Test, RoomComesBeforeEverything) {
    BTCUTF32BE decoder;
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "\0\0\xD8\0"s, 0), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\0\x11\0\0"s, 0), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\0\x01\xF6\0"s, 1), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\0\x01\xF6\0"s, 2), (Decoded{4, u"\U0001F600"}));
}

/// Decodes two words of which the second is cut, at every place.
void expectFragmentsAreWholeWords(BTCUTF32& decoder, const std::string& words) {
    for (std::int32_t end = 5; end < 8; ++end) {
        char16_t units[2] = {};
        std::int32_t from = 0;
        std::int32_t to = 0;
        EXPECT_EQ(decoder.convert(reinterpret_cast<const signed char*>(words.data()), &from, end,
                                  units, &to, 2),
                  2);
        EXPECT_EQ(from, 8);
        EXPECT_EQ(to, 2);
        EXPECT_EQ(units[1], u'b');
    }
}

TEST(BTCUTF32Test, FragmentAtTheEndIsReadAsAWholeWord) {
    BTCUTF32LE little;
    expectFragmentsAreWholeWords(little, "a\0\0\0b\0\0\0"s);
    BTCUTF32BE big;
    expectFragmentsAreWholeWords(big, "\0\0\0a\0\0\0b"s);
    Shifted<BTCUTF32BE> shifted;
    expectFragmentsAreWholeWords(shifted, "\0\0\0`\0\0\0c"s);
}

TEST(CTBUTF32Test, WordsStandInTheirByteOrder) {
    CTBUTF32LE little;
    CTBUTF32BE big;
    EXPECT_EQ(support::encodeAll(little, u"A\U0001F600"), "A\0\0\0\0\xF6\x01\0"s);
    EXPECT_EQ(support::encodeAll(big, u"A\U0001F600\uFEFF"), "\0\0\0A\0\x01\xF6\0\0\0\xFE\xFF"s);
}

TEST(CTBUTF32Test, TrailingSurrogateAloneBecomesAWordThatTheDecoderRefuses) {
    CTBUTF32LE little;
    CTBUTF32BE big;
    EXPECT_EQ(support::encodeAll(little, u"\xDC00"), "\0\xDC\0\0"s);
    const std::string word = support::encodeAll(big, u"\xDC00");
    EXPECT_EQ(word, "\0\0\xDC\0"s);
    BTCUTF32BE decoder;
    EXPECT_EQ(support::decode(decoder, word).failure, Failure::invalidCharacter);
}

TEST(CTBUTF32Test, FewerThanFourFreeBytesStopInFrontOfEverything) {
    CTBUTF32BE encoder;
    EXPECT_EQ(support::encode(encoder, u"a", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\xD83D", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"a\xD83D\xDE00", 7), (Encoded{1, "\0\0\0a"s}));
    EXPECT_EQ(support::encode(encoder, u"\xD83D\xDE00", 4), (Encoded{2, "\0\x01\xF6\0"s}));
}

TEST(CTBUTF32Test, LeadingSurrogateWaitsAndSurvivesAFullOutput) {
    CTBUTF32BE encoder;
    EXPECT_EQ(support::encode(encoder, u"\xD83D"), (Encoded{1, ""}));
    EXPECT_EQ(support::encode(encoder, u"\xDE00", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\xDE00z"), (Encoded{2, "\0\x01\xF6\0\0\0\0z"s}));
}

TEST(CTBUTF32Test, FullOutputStopsInFrontOfAUnitThatWouldThrow) {
    CTBUTF32LE encoder;
    EXPECT_EQ(support::encode(encoder, u"\xD83D"), (Encoded{1, ""}));
    EXPECT_EQ(support::encode(encoder, u"x", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\xD83D", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"x", 4).failure, Failure::invalidCharacter);
}

TEST(CTBUTF32Test, LeadingSurrogateWithoutTrailingThrowsAndGoesOnWaiting) {
    CTBUTF32LE encoder;
    const Encoded outcome = support::encode(encoder, u"ab\xD83Dx");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "leading surrogate without trailing");
    EXPECT_EQ(support::encode(encoder, u"\xD83D").failure, Failure::invalidCharacter);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(support::thrownText<InvalidCharacterException>(
                      [&] { encoder.flush(nullptr, nullptr, 0); }),
                  "leading surrogate without trailing");
    }
    encoder.reset();
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
    EXPECT_EQ(support::encodeAll(encoder, u"x"), "x\0\0\0"s);
}

TEST(Utf32Test, DerivedClassesAreAskedForEveryWord) {
    const std::u16string text(50, u'b');
    Shifted<CTBUTF32LE> encoder;
    Shifted<BTCUTF32LE> decoder;
    const std::string bytes = support::encodeAll(encoder, text);
    EXPECT_EQ(bytes.substr(0, 4), "c\0\0\0"s);
    EXPECT_EQ(support::decodeAll(decoder, bytes), text);
    BTCUTF32LE plain;
    EXPECT_EQ(support::decodeAll(plain, bytes), std::u16string(50, u'c'));
}

TEST(Utf32Test, DerivedEncodersKeepPairsAtAFullOutput) {
    Shifted<CTBUTF32LE> encoder;
    EXPECT_EQ(support::encode(encoder, u"\xD83D", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"b\xD83D", 8), (Encoded{2, "c\0\0\0"s}));
    EXPECT_EQ(support::encode(encoder, u"\xDE00", 3), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\xDE00", 4), (Encoded{1, "\x01\xF6\x01\0"s}));
}

} // namespace
