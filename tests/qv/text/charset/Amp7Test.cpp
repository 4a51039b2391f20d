#include "qv/text/charset/AMP7Converters.h"

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

TEST(CTBAMP7Test, PlainCharactersGoOutAsTheyAre) {
    CTBAMP7 encoder;
    std::u16string units = u"\t\n\r";
    std::string bytes = "\t\n\r";
    for (char c = 0x20; c <= 0x7E; ++c) {
        if (c != '&') {
            units += static_cast<char16_t>(c);
            bytes += c;
        }
    }
    EXPECT_EQ(support::encodeAll(encoder, units), bytes);
}

TEST(CTBAMP7Test, ControlsAndEverythingAbove7EAreNumbers) {
    CTBAMP7 encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\0\x08\x0B\x0C\x0E\x1F\x7F"s),
              "&_0;&_8;&_B;&_C;&_E;&_1F;&_7F;");
    EXPECT_EQ(support::encodeAll(encoder, u"\u0080\u00E9\u20AC\uFFFF"), "&_80;&_E9;&_20AC;&_FFFF;");
    EXPECT_EQ(support::encodeAll(encoder, u"&\u00E9"), "&AMP;&_E9;");
}

TEST(CTBAMP7Test, SupplementaryCharactersUpToFFFFEAreNumbers) {
    CTBAMP7 encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\U00010000"), "&_10000;");
    EXPECT_EQ(support::encodeAll(encoder, u"\U000FFFFE"), "&_FFFFE;");
}

TEST(CTBAMP7Test, CharactersFromFFFFFOnFollowTheSubstitutionSettings) {
    CTBAMP7 encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\U000FFFFF\U00100000z"), "??z");
    encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>("1234567"), 7);
    EXPECT_EQ(support::encode(encoder, u"\U00100000", 7), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\U00100000", 8), (Encoded{2, "1234567"}));
    encoder.setSubstitutionMode(false);
    const Encoded outcome = support::encode(encoder, u"\U00100000");
    EXPECT_EQ(outcome.failure, Failure::unmappableCharacter);
    EXPECT_EQ(outcome.message, "");
}

TEST(CTBAMP7Test, FormThatDoesNotFitStaysUnconsumed) {
    CTBAMP7 encoder;
    EXPECT_EQ(support::encode(encoder, u"a&", 5), (Encoded{1, "a"}));
    EXPECT_EQ(support::encode(encoder, u"a&", 6), (Encoded{2, "a&AMP;"}));
    EXPECT_EQ(support::encode(encoder, u"\u00E9", 4), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"\u00E9", 5), (Encoded{1, "&_E9;"}));
    EXPECT_EQ(support::encode(encoder, u"\U00010000", 7), (Encoded{0, ""}));
}

TEST(CTBAMP7Test, LeadingSurrogateAtTheEndStaysUnconsumed) {
    CTBAMP7 encoder;
    EXPECT_EQ(support::encode(encoder, u"a\xD800"), (Encoded{1, "a"}));
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
    EXPECT_EQ(support::encodeAll(encoder, u"\xD800\xDC00"), "&_10000;");
}

TEST(CTBAMP7Test, LeadingSurrogateWithoutTrailingThrows) {
    CTBAMP7 encoder;
    const Encoded outcome = support::encode(encoder, u"a\xD800z");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "leading surrogate without trailing");
}

TEST(CTBAMP7Test, TrailingSurrogateAloneIsANumberThatTheDecoderRefuses) {
    CTBAMP7 encoder;
    const std::string bytes = support::encodeAll(encoder, u"\xDC00");
    EXPECT_EQ(bytes, "&_DC00;");
    BTCAMP7 decoder;
    const Decoded outcome = support::decode(decoder, bytes);
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "Invalid AMP-7 sequence (decoded chars in surrogate range)");
}

TEST(BTCAMP7Test, EveryByteUpTo7FIsPlain) {
    BTCAMP7 decoder;
    for (char c = 0; c < 0x7F; ++c) {
        if (c != '&') {
            EXPECT_EQ(support::decodeAll(decoder, {&c, 1}),
                      std::u16string(1, static_cast<char16_t>(c)));
        }
    }
    EXPECT_EQ(support::decodeAll(decoder, "\x7F;_"), u"\x7F;_");
}

TEST(BTCAMP7Test, KeywordsAreRead) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "&AMP;&QUOT;&APOS;"), u"&\"'");
}

TEST(BTCAMP7Test, NumbersAreReadInEitherCase) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "&_E9;&_e9;&_fFfE;&_00041;"), u"\u00E9\u00E9\uFFFEA");
    EXPECT_EQ(support::decodeAll(decoder, "&_10000;&_FFFFE;&_FFFFF;"),
              u"\U00010000\U000FFFFE\U000FFFFF");
    EXPECT_EQ(support::decodeAll(decoder, "&_;x"), u"\0x"s);
}

TEST(BTCAMP7Test, BadSequencesGiveSubstitutionAndReplacementAndTheRestIsText) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "&AX"), u"\uFFFD\uFFFDAX");
    EXPECT_EQ(support::decodeAll(decoder, "&amp;"), u"\uFFFD\uFFFDamp;");
    EXPECT_EQ(support::decodeAll(decoder, "&LT;"), u"\uFFFD\uFFFDLT;");
    EXPECT_EQ(support::decodeAll(decoder, "&;"), u"\uFFFD\uFFFD;");
    EXPECT_EQ(support::decodeAll(decoder, "\x80z"), u"\uFFFD\uFFFDz");
    EXPECT_EQ(support::decodeAll(decoder, "&_g;"), u"\uFFFD\uFFFD_g;");
    EXPECT_EQ(support::decodeAll(decoder, "&_123456;"), u"\uFFFD\uFFFD_123456;");
    EXPECT_EQ(support::decodeAll(decoder, "&_123456"), u"\uFFFD\uFFFD_123456");
    EXPECT_EQ(support::decodeAll(decoder, "&&AMP;"), u"\uFFFD\uFFFD&");
    decoder.setSubstitutionChars(u"ab", 2);
    EXPECT_EQ(support::decodeAll(decoder, "\xFF"), u"ab\uFFFD");
    decoder.setSubstitutionChars(u"", 0);
    EXPECT_EQ(support::decodeAll(decoder, "\xFF"), u"\uFFFD");
}

TEST(BTCAMP7Test, BadSequencesThrowWithoutSubstitution) {
    BTCAMP7 decoder;
    decoder.setSubstitutionMode(false);
    for (const char* bytes : {"\x80", "&x", "&_x", "&_123456", "&AMX", "&_FFFD;"}) {
        const Decoded outcome = support::decode(decoder, bytes);
        EXPECT_EQ(outcome.failure, Failure::unmappableCharacter) << bytes;
        EXPECT_EQ(outcome.message, "");
    }
}

TEST(BTCAMP7Test, NumberFFFDIsBadAndOnlyItsAmpersandIsConsumed) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "&_FFFD;"), u"\uFFFD\uFFFD_FFFD;");
    EXPECT_EQ(support::decodeAll(decoder, "&_0fffd;"), u"\uFFFD\uFFFD_0fffd;");
}

TEST(BTCAMP7Test, EscapesCutAtTheEndStayUnconsumed) {
    BTCAMP7 decoder;
    for (const char* escape : {"&", "&A", "&AM", "&AMP", "&AP", "&APO", "&APOS", "&Q", "&QU",
                               "&QUO", "&QUOT", "&_", "&_1", "&_12345"}) {
        EXPECT_EQ(support::decode(decoder, "z"s + escape), (Decoded{1, u"z"})) << escape;
    }
}

TEST(BTCAMP7Test, EscapesThatDifferAreBadAtTheEndToo) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decodeAll(decoder, "&AB"), u"\uFFFD\uFFFDAB");
    EXPECT_EQ(support::decodeAll(decoder, "&QUOX"), u"\uFFFD\uFFFDQUOX");
    EXPECT_EQ(support::decodeAll(decoder, "&_1x"), u"\uFFFD\uFFFD_1x");
}

TEST(BTCAMP7Test, SubstitutionWantsTheRoomOfBoth) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decode(decoder, "a\x80", 2), (Decoded{1, u"a"}));
    EXPECT_EQ(support::decode(decoder, "a\x80", 3), (Decoded{2, u"a\uFFFD\uFFFD"}));
    decoder.setSubstitutionChars(u"xyz", 3);
    EXPECT_EQ(support::decode(decoder, "\x80", 3), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "\x80", 4), (Decoded{1, u"xyz\uFFFD"}));
}

TEST(BTCAMP7Test, PairThatDoesNotFitStaysUnconsumed) {
    BTCAMP7 decoder;
    EXPECT_EQ(support::decode(decoder, "&_10000;", 1), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "&_10000;", 2), (Decoded{8, u"\U00010000"}));
}

TEST(BTCAMP7Test, SurrogateNumbersThrowInBothSubstitutionModes) {
    BTCAMP7 decoder;
    for (const bool mode : {true, false}) {
        decoder.setSubstitutionMode(mode);
        EXPECT_EQ(support::decode(decoder, "&_D800;").failure, Failure::invalidCharacter);
        EXPECT_EQ(support::decode(decoder, "&_dfff;").failure, Failure::invalidCharacter);
    }
}

TEST(BTCAMP7Test, NothingIsReadWithoutRoom) {
    BTCAMP7 decoder;
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "\x80", 0), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "&_D800;", 0), (Decoded{0, u""}));
}

TEST(Amp7Test, AllCharactersButTheLastComeBack) {
    CTBAMP7 encoder;
    BTCAMP7 decoder;
    std::u16string text;
    for (char32_t c = 0; c < 0xFFFFF; c += c < 0x3000 ? 1 : 97) {
        if ((c >= 0xD800 && c <= 0xDFFF) || c == 0xFFFD) {
            continue;
        }
        if (c > 0xFFFF) {
            text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            text += static_cast<char16_t>(c);
        }
    }
    EXPECT_EQ(support::decodeAll(decoder, support::encodeAll(encoder, text)), text);
}

} // namespace
