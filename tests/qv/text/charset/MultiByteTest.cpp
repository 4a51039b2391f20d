#include "qv/text/charset/BTCMultiByte.h"
#include "qv/text/charset/CTBMultiByte.h"

#include "qv/Exceptions.h"
#include "tests/support/Conversions.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using reference::Failure;

namespace {

/// An encoding of digits: a digit n, then n bytes of a number with base 256, highest first; 9 is
/// bad.
class DigitDecoder : public BTCMultiByte {
public:
    DigitDecoder() {
        encodingName_ = u"X-DIGITS";
        maxBytesPerChar_ = 5;
        maxCharsPerByte_ = 3;
    }
    void setPendingTrail(char16_t trail) { pendingTrail_ = trail; }

protected:
    unsigned int convertBytes(const signed char* bytes, int& length) override {
        const int digits = bytes[0] - '0';
        if (digits == 9) {
            length = 1;
            return 0xFFFD;
        }
        if (length < 1 + digits) {
            length = 0;
            return 0xFFFD;
        }
        unsigned int value = 0;
        for (int i = 1; i <= digits; ++i) {
            value = value * 256 + static_cast<unsigned char>(bytes[i]);
        }
        length = 1 + digits;
        return value;
    }
};

/// The reverse, with at most four bytes to a number; U+0021 has no form, and nothing above U+20000
/// has.
class DigitEncoder : public CTBMultiByte {
public:
    DigitEncoder() {
        encodingName_ = u"X-DIGITS";
        maxBytesPerChar_ = 5;
        maxCharsPerByte_ = 2;
    }
    int lastMax = 0;

protected:
    int convertChar(unsigned int codePoint, signed char* out, int max) override {
        lastMax = max;
        const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
        if (codePoint == 0x21 || codePoint > 0x20000 || isSurrogate) {
            return -1;
        }
        int digits = 0;
        while (codePoint >> 8 * digits != 0) {
            ++digits;
        }
        out[0] = static_cast<signed char>('0' + digits);
        for (int i = 0; i < digits; ++i) {
            out[digits - i] = static_cast<signed char>(codePoint >> 8 * i & 0xFF);
        }
        return 1 + digits;
    }
};

TEST(BTCMultiByteTest, FieldsAreReported) {
    DigitDecoder decoder;
    EXPECT_EQ(String(decoder.getEncodingName()), u"X-DIGITS");
    EXPECT_EQ(decoder.getMaxBytesPerChar(), 5);
    EXPECT_EQ(decoder.getMaxCharsPerByte(), 3);
}

/// A step that says whatever it likes about what it consumed.
class BoastfulDecoder : public BTCMultiByte {
public:
    explicit BoastfulDecoder(int consumed) : consumed_(consumed) {}

protected:
    unsigned int convertBytes(const signed char*, int& length) override {
        length = consumed_;
        return u'x';
    }

private:
    int consumed_;
};

TEST(BTCMultiByteTest, NameIsEmptyAndBoundIsMinusOneUntilSet) {
    BoastfulDecoder decoder(1);
    EXPECT_EQ(String(decoder.getEncodingName()), u"");
    EXPECT_EQ(decoder.getMaxBytesPerChar(), -1);
}

TEST(BTCMultiByteTest, StepNeverMovesTheInputOutOfItsRange) {
    BoastfulDecoder beyond(1000);
    EXPECT_EQ(support::decode(beyond, "ab"), (Decoded{2, u"x"}));
    BoastfulDecoder backwards(-1);
    EXPECT_EQ(support::decode(backwards, "ab"), (Decoded{0, u""}));
}

TEST(BTCMultiByteTest, CodePointsBecomeUnitsAndPairs) {
    DigitDecoder decoder;
    EXPECT_EQ(support::decodeAll(decoder, "1A2\x20\xAC"
                                          "3\x01\xF6\x01"
                                          "0"
                                          "3\x10\xFF\xFF"),
              std::u16string(u"A\u20AC\U0001F601") + u'\0' + u"\U0010FFFF");
}

TEST(BTCMultiByteTest, IncompleteCharacterStaysUnconsumed) {
    DigitDecoder decoder;
    EXPECT_EQ(support::decode(decoder, "1A2\x20"), (Decoded{2, u"A"}));
}

TEST(BTCMultiByteTest, SurrogatesThrowInBothSubstitutionModes) {
    DigitDecoder decoder;
    for (const bool mode : {true, false}) {
        decoder.setSubstitutionMode(mode);
        const Decoded outcome = support::decode(decoder, "1A2\xD8\x01");
        EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
        EXPECT_EQ(outcome.message, "Invalid byte sequence (decoded chars in surrogate range)");
    }
}

TEST(BTCMultiByteTest, BadCharactersTakeTheWholeSubstitutionIfItJustFits) {
    DigitDecoder decoder;
    EXPECT_EQ(support::decode(decoder, "9", 1), (Decoded{1, u"\uFFFD"}));
    EXPECT_EQ(support::decode(decoder, "9", 0), (Decoded{0, u""}));
    decoder.setSubstitutionChars(u"abc", 3);
    EXPECT_EQ(support::decode(decoder, "9", 2), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "9", 3), (Decoded{1, u"abc"}));
    EXPECT_EQ(support::decode(decoder, "3\x11\x01\x01", 3), (Decoded{4, u"abc"}));
    decoder.setSubstitutionChars(u"", 0);
    EXPECT_EQ(support::decode(decoder, "9", 0), (Decoded{1, u""}));
}

TEST(BTCMultiByteTest, BadCharactersThrowWithoutSubstitution) {
    DigitDecoder decoder;
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "9").failure, Failure::unmappableCharacter);
    EXPECT_EQ(support::decode(decoder, "9", 0).failure, Failure::unmappableCharacter);
    EXPECT_EQ(support::decode(decoder, "3\x11\x01\x01").failure, Failure::unmappableCharacter);
    // Anything but U+FFFD needs room before it is looked at.
    EXPECT_EQ(support::decode(decoder, "3\x11\x01\x01", 0), (Decoded{0, u""}));
}

TEST(BTCMultiByteTest, PairThatDoesNotFitStaysUnconsumed) {
    DigitDecoder decoder;
    EXPECT_EQ(support::decode(decoder, "3\x01\xF6\x01", 1), (Decoded{0, u""}));
    EXPECT_EQ(support::decode(decoder, "3\x01\xF6\x01", 2), (Decoded{4, u"\U0001F601"}));
}

TEST(BTCMultiByteTest, FlushWritesAWaitingTrailWithoutMovingOrForgetting) {
    DigitDecoder decoder;
    std::int32_t position = 1;
    char16_t units[3] = u"..";
    EXPECT_EQ(decoder.flush(units, &position, 3), 0);
    decoder.setPendingTrail(u'\xDC01');
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(decoder.flush(units, &position, 3), 1);
        EXPECT_EQ(position, 1);
        EXPECT_EQ(units[1], u'\xDC01');
    }
    EXPECT_EQ(units[0], u'.');
    decoder.reset();
    EXPECT_EQ(decoder.flush(units, &position, 3), 0);
}

TEST(BTCMultiByteTest, ResetKeepsTheSubstitutionSettings) {
    DigitDecoder decoder;
    decoder.setPendingTrail(u'\xDC01');
    decoder.setSubstitutionChars(u"abc", 3);
    decoder.reset();
    EXPECT_EQ(support::decodeAll(decoder, "9"), u"abc");
    decoder.setSubstitutionMode(false);
    decoder.reset();
    EXPECT_FALSE(decoder.getSubstitutionMode());
    EXPECT_EQ(String(decoder.getEncodingName()), u"X-DIGITS");
}

TEST(BTCMultiByteTest, FlushThrowsUnlessTwoUnitsAreFree) {
    DigitDecoder decoder;
    decoder.setPendingTrail(u'\xDC01');
    std::int32_t position = 1;
    char16_t units[2] = {};
    try {
        decoder.flush(units, &position, 2);
        ADD_FAILURE();
    } catch (const InvalidCharacterException& exception) {
        EXPECT_STREQ(exception.getDescription().getBytes(),
                     "Not enough room in buffer for trailing surrogate");
    }
}

TEST(CTBMultiByteTest, FieldsAreReportedAndTheStepGetsSixBytes) {
    DigitEncoder encoder;
    EXPECT_EQ(String(encoder.getEncodingName()), u"X-DIGITS");
    EXPECT_EQ(encoder.getMaxBytesPerChar(), 5);
    EXPECT_EQ(encoder.getMaxCharsPerByte(), 2);
    support::encodeAll(encoder, u"A");
    EXPECT_EQ(encoder.lastMax, 6);
}

/// A step that claims one byte more than it was given room for.
class BoastfulEncoder : public CTBMultiByte {
protected:
    int convertChar(unsigned int, signed char*, int max) override { return max + 1; }
};

TEST(CTBMultiByteTest, FormLongerThanItsRoomIsNone) {
    BoastfulEncoder encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"ab"), "??");
}

TEST(CTBMultiByteTest, CharactersAndPairsBecomeTheirForms) {
    DigitEncoder encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"A\u20AC\U0001F601"), "1A2\x20\xAC"
                                                                 "3\x01\xF6\x01");
}

TEST(CTBMultiByteTest, LeadingSurrogateWaitsForTheNextCall) {
    DigitEncoder encoder;
    EXPECT_EQ(support::encode(encoder, u"A\xD83D"), (Encoded{2, "1A"}));
    EXPECT_EQ(
        support::thrownText<InvalidCharacterException>([&] { encoder.flush(nullptr, nullptr, 0); }),
        "leading surrogate without trailing");
    EXPECT_EQ(support::encode(encoder, u"\xDE01"), (Encoded{1, "3\x01\xF6\x01"}));
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

TEST(CTBMultiByteTest, SurrogatesWithoutTheirOtherHalfThrow) {
    DigitEncoder encoder;
    Encoded outcome = support::encode(encoder, u"A\xDC00");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "trailing surrogate without leading");
    outcome = support::encode(encoder, u"\xD800x");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "leading surrogate without trailing");
    encoder.reset();
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

TEST(CTBMultiByteTest, ResetKeepsTheSubstitutionSettings) {
    DigitEncoder encoder;
    support::encode(encoder, u"\xD800");
    encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>("12"), 2);
    encoder.reset();
    EXPECT_EQ(support::encodeAll(encoder, u"!"), "12");
    encoder.setSubstitutionMode(false);
    encoder.reset();
    EXPECT_FALSE(encoder.getSubstitutionMode());
    EXPECT_EQ(String(encoder.getEncodingName()), u"X-DIGITS");
}

TEST(CTBMultiByteTest, PairWithoutFormIsReportedByItsSecondHalf) {
    DigitEncoder encoder;
    const Encoded outcome = support::encode(encoder, u"\U00100000");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "trailing surrogate without leading");
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

/// A user's class may give surrogates forms of their own: they are then no pair.
class SurrogateFormsEncoder : public CTBMultiByte {
protected:
    int convertChar(unsigned int codePoint, signed char* out, int) override {
        out[0] = 'S';
        return codePoint >= 0xD800 && codePoint <= 0xDFFF ? 1 : 0;
    }
};

TEST(CTBMultiByteTest, SurrogatesWithAFormPassLikeOtherCharacters) {
    SurrogateFormsEncoder encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\xD800\xD800\xDC00x"), "SSS?");
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
    EXPECT_EQ(support::encode(encoder, u"\xD800", 0), (Encoded{0, ""}));
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

TEST(CTBMultiByteTest, CharactersWithoutFormFollowTheSubstitutionSettings) {
    DigitEncoder encoder;
    EXPECT_EQ(support::encode(encoder, u"!", 1), (Encoded{1, "?"}));
    EXPECT_EQ(support::encode(encoder, u"!", 0), (Encoded{0, ""}));
    encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>("1234567"), 7);
    EXPECT_EQ(support::encode(encoder, u"!", 6), (Encoded{0, ""}));
    EXPECT_EQ(support::encode(encoder, u"!", 7), (Encoded{1, "1234567"}));
    encoder.setSubstitutionMode(false);
    EXPECT_EQ(support::encode(encoder, u"!", 0).failure, Failure::unmappableCharacter);
}

TEST(CTBMultiByteTest, FormThatDoesNotFitStaysUnconsumed) {
    DigitEncoder encoder;
    EXPECT_EQ(support::encode(encoder, u"A\u20AC", 4), (Encoded{1, "1A"}));
    EXPECT_EQ(support::encode(encoder, u"A\u20AC", 5), (Encoded{2, "1A2\x20\xAC"}));
}

TEST(CTBMultiByteTest, PairThatMeetsAFullOutputLosesItsLeadingHalf) {
    DigitEncoder encoder;
    EXPECT_EQ(support::encode(encoder, u"\U0001F601", 3), (Encoded{1, ""}));
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
    EXPECT_EQ(support::encode(encoder, u"\xDE01").failure, Failure::invalidCharacter);
}

} // namespace
