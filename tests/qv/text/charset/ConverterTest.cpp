#include "qv/Class.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/AMP7Converters.h"
#include "qv/text/charset/BTCCom.h"
#include "qv/text/charset/BTCUTF8.h"
#include "qv/text/charset/CTBCom.h"
#include "qv/text/charset/CTBUTF8.h"
#include "qv/text/charset/CodecClasses.h"
#include "qv/text/charset/SingleByteConverters.h"
#include "qv/text/charset/UTF16Converters.h"
#include "qv/text/charset/UTF32Converters.h"
#include "qvcore/Encoding.h"
#include "tests/support/Conversions.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace qv;
using namespace qv::text::charset;
using reference::Form;
using reference::nameOf;

namespace {

TEST(ByteToCharConverterTest, SubstitutesOneReplacementCharacterAtFirst) {
    BTCASCII decoder;
    char16_t chars[3] = {};
    EXPECT_TRUE(decoder.getSubstitutionMode());
    EXPECT_EQ(decoder.getSubstitutionChars(nullptr, 0), 1);
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 3), 1);
    EXPECT_EQ(chars[0], u'\uFFFD');
}

TEST(ByteToCharConverterTest, GivesSubstitutionCharactersUpToTheMaximum) {
    BTCASCII decoder;
    decoder.setSubstitutionChars(u"abc", 3);
    char16_t chars[4] = u"...";
    EXPECT_EQ(decoder.getSubstitutionChars(nullptr, 1), 3);
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 0), 0);
    EXPECT_EQ(std::u16string(chars), u"...");
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 2), 2);
    EXPECT_EQ(std::u16string(chars), u"ab.");
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 9), 3);
    EXPECT_EQ(std::u16string(chars), u"abc");
}

TEST(ByteToCharConverterTest, SubstitutionModeDecidesBetweenReplacementAndException) {
    BTCASCII decoder;
    EXPECT_EQ(support::decodeAll(decoder, "a\x80"), u"a\uFFFD");
    decoder.setSubstitutionMode(false);
    EXPECT_FALSE(decoder.getSubstitutionMode());
    const auto outcome = support::decode(decoder, "a\x80");
    EXPECT_EQ(outcome.failure, reference::Failure::unmappableCharacter);
    EXPECT_EQ(outcome.message, "");
}

TEST(ByteToCharConverterTest, ResetKeepsTheSubstitutionSettings) {
    BTCASCII decoder;
    decoder.setSubstitutionMode(false);
    decoder.setSubstitutionChars(u"x", 1);
    decoder.reset();
    char16_t unit = 0;
    EXPECT_FALSE(decoder.getSubstitutionMode());
    EXPECT_EQ(decoder.getSubstitutionChars(&unit, 1), 1);
    EXPECT_EQ(unit, u'x');
}

TEST(CharToByteConverterTest, SubstitutesOneQuestionMarkAtFirst) {
    CTBASCII encoder;
    signed char bytes[7] = {};
    EXPECT_TRUE(encoder.getSubstitutionMode());
    EXPECT_EQ(encoder.getSubstitutionBytes(nullptr, 0), 1);
    EXPECT_EQ(encoder.getSubstitutionBytes(bytes, 7), 1);
    EXPECT_EQ(bytes[0], '?');
}

TEST(CharToByteConverterTest, BytesBehindTheQuestionMarkAreZeroAtFirst) {
    struct : CTBASCII {
        using CTBASCII::substitutionBytes_;
    } encoder;
    EXPECT_EQ(sizeof encoder.substitutionBytes_, 7u);
    EXPECT_EQ(encoder.substitutionBytes_[0], 0x3F);
    EXPECT_EQ(encoder.substitutionBytes_[1], 0);
    EXPECT_EQ(encoder.substitutionBytes_[2], 0);
}

TEST(CharToByteConverterTest, GivesSubstitutionBytesUpToTheMaximum) {
    CTBASCII encoder;
    const signed char seven[] = {'1', '2', '3', '4', '5', '6', '7'};
    encoder.setSubstitutionBytes(seven, 7);
    signed char bytes[7] = {};
    EXPECT_EQ(encoder.getSubstitutionBytes(nullptr, 1), 7);
    EXPECT_EQ(encoder.getSubstitutionBytes(bytes, 0), 0);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(encoder.getSubstitutionBytes(bytes, 5), 5);
    EXPECT_EQ(bytes[4], '5');
    EXPECT_EQ(bytes[5], 0);
    EXPECT_EQ(encoder.getSubstitutionBytes(bytes, 9), 7);
    EXPECT_EQ(bytes[6], '7');
}

TEST(CharToByteConverterTest, SubstitutionModeDecidesBetweenReplacementAndException) {
    CTBASCII encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"a\u00E9"), "a?");
    encoder.setSubstitutionMode(false);
    EXPECT_FALSE(encoder.getSubstitutionMode());
    const auto outcome = support::encode(encoder, u"a\u00E9");
    EXPECT_EQ(outcome.failure, reference::Failure::unmappableCharacter);
    EXPECT_EQ(outcome.message, "");
}

TEST(ConverterExceptionsTest, CarryTheirResults) {
    EXPECT_EQ(InvalidCharacterException().getResult(), static_cast<std::int32_t>(0x8BB34101));
    EXPECT_EQ(UnmappableCharacterException().getResult(), static_cast<std::int32_t>(0x8BB34102));
    EXPECT_EQ(UnknownEncodingException(u"x").getResult(), static_cast<std::int32_t>(0x8BB34103));
}

// --- What each encoding says of itself ---

struct Properties {
    Form form;
    const char16_t* name;
    int bytesPerChar, decoderCharsPerByte, encoderCharsPerByte;
};

constexpr Properties properties[] = {
    {Form::utf8, u"UTF-8", 6, 4, 1},       {Form::utf16le, u"UTF-16LE", 4, 4, 4},
    {Form::utf16be, u"UTF-16BE", 4, 4, 4}, {Form::utf32le, u"UTF-32LE", 4, 4, 4},
    {Form::utf32be, u"UTF-32BE", 4, 4, 4}, {Form::amp7, u"AMP-7", 8, 1, 1},
    {Form::ascii, u"ASCII", 1, 1, 1},      {Form::latin1, u"ISO8859_1", 1, 1, 1},
    {Form::cp437, u"CP437", 1, 1, 1},      {Form::cp1252, u"CP1252", 1, 1, 1},
};

class ConverterPropertiesTest : public testing::TestWithParam<Properties> {};

TEST_P(ConverterPropertiesTest, NameAndBoundsAreThoseOfTheEncoding) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    EXPECT_EQ(String(decoder->getEncodingName()), GetParam().name);
    EXPECT_EQ(String(encoder->getEncodingName()), GetParam().name);
    EXPECT_EQ(decoder->getMaxBytesPerChar(), GetParam().bytesPerChar);
    EXPECT_EQ(encoder->getMaxBytesPerChar(), GetParam().bytesPerChar);
    EXPECT_EQ(decoder->getMaxCharsPerByte(), GetParam().decoderCharsPerByte);
    EXPECT_EQ(encoder->getMaxCharsPerByte(), GetParam().encoderCharsPerByte);
}

TEST_P(ConverterPropertiesTest, FlushAndResetOfAFreshConverterDoNothing) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    std::int32_t position = 1;
    char16_t unit = u'x';
    signed char byte = 'y';
    decoder->reset();
    encoder->reset();
    EXPECT_EQ(decoder->flush(&unit, &position, 2), 0);
    EXPECT_EQ(encoder->flush(&byte, &position, 2), 0);
    EXPECT_EQ(position, 1);
    EXPECT_EQ(unit, u'x');
    EXPECT_EQ(byte, 'y');
}

TEST_P(ConverterPropertiesTest, ResetKeepsTheSubstitutionSettings) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    support::configure(*decoder, {false, u"xy"});
    support::configure(*encoder, {false, "xyz"});
    support::encode(*encoder, u"a\xD800"); // where a surrogate can wait, one does
    decoder->reset();
    encoder->reset();
    char16_t chars[3] = {};
    signed char bytes[7] = {};
    EXPECT_FALSE(decoder->getSubstitutionMode());
    EXPECT_FALSE(encoder->getSubstitutionMode());
    EXPECT_EQ(decoder->getSubstitutionChars(chars, 3), 2);
    EXPECT_EQ(std::u16string(chars), u"xy");
    EXPECT_EQ(encoder->getSubstitutionBytes(bytes, 7), 3);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes)), "xyz");
    EXPECT_EQ(encoder->flush(nullptr, nullptr, 0), 0);
}

TEST_P(ConverterPropertiesTest, EmptyInputAndNullBuffersDoNothing) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    std::int32_t from = 0;
    std::int32_t to = 0;
    EXPECT_EQ(decoder->convert(nullptr, &from, 0, nullptr, &to, 0), 0);
    EXPECT_EQ(encoder->convert(nullptr, &from, 0, nullptr, &to, 0), 0);
    EXPECT_EQ(from, 0);
    EXPECT_EQ(to, 0);
}

TEST_P(ConverterPropertiesTest, RangesThatAreReversedMoveNothing) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    const signed char bytes[8] = {};
    char16_t units[8] = {};
    signed char out[8] = {};
    std::int32_t from = 6;
    std::int32_t to = 6;
    EXPECT_EQ(decoder->convert(bytes, &from, 2, units, &to, 8), 0);
    EXPECT_EQ(encoder->convert(units, &from, 2, out, &to, 8), 0);
    from = 0;
    EXPECT_EQ(decoder->convert(bytes, &from, 8, units, &to, 2), 0);
    EXPECT_EQ(encoder->convert(units, &from, 8, out, &to, 2), 0);
    EXPECT_EQ(from, 0);
    EXPECT_EQ(to, 6);
}

TEST_P(ConverterPropertiesTest, NoRoomStopsInFrontOfTheFirstUnit) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    const std::string bytes = support::encodeAll(*encoder, u"abcdefgh");
    const auto decoded = support::decode(*decoder, bytes, 0);
    EXPECT_EQ(decoded.consumed, 0);
    EXPECT_EQ(decoded.failure, reference::Failure::none);
    const auto encoded = support::encode(*encoder, u"abcdefgh", 0);
    EXPECT_EQ(encoded.consumed, 0);
    EXPECT_EQ(encoded.failure, reference::Failure::none);
}

TEST_P(ConverterPropertiesTest, LongAsciiTextComesBack) {
    const support::Decoder decoder = support::newDecoder(GetParam().form);
    const support::Encoder encoder = support::newEncoder(GetParam().form);
    std::u16string text;
    for (int i = 0; i < 5000; ++i) {
        text += static_cast<char16_t>(u' ' + i % 95);
    }
    EXPECT_EQ(support::decodeAll(*decoder, support::encodeAll(*encoder, text)), text);
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, ConverterPropertiesTest, testing::ValuesIn(properties));

// --- Finding a converter ---

TEST(GetConverterTest, NullNameGivesTheDefaultConverter) {
    char16_t name[40] = {};
    QVGetDefaultCharEncoding(name, 40);
    ASSERT_NE(name[0], 0);
    const support::Decoder expected(ByteToCharConverter::getConverter(name));
    const support::Decoder decoder(ByteToCharConverter::getConverter(nullptr));
    const support::Encoder encoder(CharToByteConverter::getConverter(nullptr));
    EXPECT_EQ(String(decoder->getEncodingName()), expected->getEncodingName());
    EXPECT_EQ(String(encoder->getEncodingName()), expected->getEncodingName());
    const support::Decoder direct(ByteToCharConverter::getDefaultConverter());
    EXPECT_EQ(String(direct->getEncodingName()), expected->getEncodingName());
}

TEST(GetConverterTest, NewConverterHasNoReferences) {
    ByteToCharConverter* const decoder = ByteToCharConverter::getConverter(u"UTF-8");
    EXPECT_EQ(decoder->GetRefCount(), 0u);
    EXPECT_EQ(decoder->AddRef(), 1u);
    EXPECT_EQ(decoder->Release(), 0u);
}

TEST(GetConverterTest, UnknownNameThrowsWithTheNameAsGiven) {
    EXPECT_EQ(support::thrownText<UnknownEncodingException>(
                  [] { ByteToCharConverter::getConverter(u"no such Encoding"); }),
              "no such Encoding");
    EXPECT_EQ(support::thrownText<UnknownEncodingException>(
                  [] { CharToByteConverter::getConverter(u"UTF-16"); }),
              "UTF-16");
    EXPECT_THROW(ByteToCharConverter::getConverter(u""), UnknownEncodingException);
}

// --- The order of the operation tables ---

TEST(ByteToCharConverterTest, OperationsStandInTheirOrder) {
    using C = ByteToCharConverter;
    support::expectConsecutive(
        {support::slotOf(&C::convert), support::slotOf(&C::flush), support::slotOf(&C::reset),
         support::slotOf(&C::getEncodingName), support::slotOf(&C::getMaxBytesPerChar),
         support::slotOf(&C::getMaxCharsPerByte), support::slotOf(&C::getSubstitutionMode),
         support::slotOf(&C::setSubstitutionMode), support::slotOf(&C::getSubstitutionChars),
         support::slotOf(&C::setSubstitutionChars)});
    EXPECT_EQ(support::slotOf(&C::convert), support::slotOf(&Object::toString) + 1);
}

TEST(CharToByteConverterTest, OperationsStandInTheirOrder) {
    using C = CharToByteConverter;
    support::expectConsecutive(
        {support::slotOf(&C::convert), support::slotOf(&C::flush), support::slotOf(&C::reset),
         support::slotOf(&C::getEncodingName), support::slotOf(&C::getMaxBytesPerChar),
         support::slotOf(&C::getMaxCharsPerByte), support::slotOf(&C::getSubstitutionMode),
         support::slotOf(&C::setSubstitutionMode), support::slotOf(&C::getSubstitutionBytes),
         support::slotOf(&C::setSubstitutionBytes)});
    EXPECT_EQ(support::slotOf(&C::convert), support::slotOf(&Object::toString) + 1);
}

/// Opens the protected steps of a class.
template <class Base>
struct Open : Base {
    static auto word16() { return &Open::convertUTF16; }
    static auto word32() { return &Open::convertUTF32; }
};

TEST(ConverterStepsTest, StepsStandBehindTheCommonOperations) {
    support::expectConsecutive({support::slotOf(&ByteToCharConverter::setSubstitutionChars),
                                support::slotOf(Open<ByteToCharUTF>::word16()),
                                support::slotOf(Open<ByteToCharUTF>::word32())});
    support::expectConsecutive({support::slotOf(&CharToByteConverter::setSubstitutionBytes),
                                support::slotOf(Open<CharToByteUTF>::word16()),
                                support::slotOf(Open<CharToByteUTF>::word32())});
}

struct OpenSteps {
    struct ByteDecoder : BTCSingleByte {
        static auto step() { return &ByteDecoder::convertByte; }
    };
    struct ByteEncoder : CTBSingleByte {
        static auto step() { return &ByteEncoder::convertChar; }
    };
    struct BytesDecoder : BTCMultiByte {
        static auto step() { return &BytesDecoder::convertBytes; }
    };
    struct BytesEncoder : CTBMultiByte {
        static auto step() { return &BytesEncoder::convertChar; }
    };
};

TEST(ConverterStepsTest, StepOfAByteOrOfBytesIsTheOneOperationAdded) {
    const auto decoders = support::slotOf(&ByteToCharConverter::setSubstitutionChars);
    const auto encoders = support::slotOf(&CharToByteConverter::setSubstitutionBytes);
    EXPECT_EQ(support::slotOf(OpenSteps::ByteDecoder::step()), decoders + 1);
    EXPECT_EQ(support::slotOf(OpenSteps::BytesDecoder::step()), decoders + 1);
    EXPECT_EQ(support::slotOf(OpenSteps::ByteEncoder::step()), encoders + 1);
    EXPECT_EQ(support::slotOf(OpenSteps::BytesEncoder::step()), encoders + 1);
}

// --- The class tree ---

template <class Base, class... Classes>
constexpr bool areBelow = (std::is_base_of_v<Base, Classes> && ...);

static_assert(areBelow<Object, ByteToCharConverter, CharToByteConverter>);
static_assert(
    areBelow<ByteToCharConverter, ByteToCharUTF, BTCSingleByte, BTCMultiByte, BTCUTF8, BTCAMP7>);
static_assert(
    areBelow<CharToByteConverter, CharToByteUTF, CTBSingleByte, CTBMultiByte, CTBUTF8, CTBAMP7>);
static_assert(areBelow<ByteToCharUTF, BTCUTF16, BTCUTF32>);
static_assert(areBelow<CharToByteUTF, CTBUTF16, CTBUTF32>);
static_assert(areBelow<BTCUTF16, BTCUTF16LE, BTCUTF16BE>);
static_assert(areBelow<CTBUTF16, CTBUTF16LE, CTBUTF16BE>);
static_assert(areBelow<BTCUTF32, BTCUTF32LE, BTCUTF32BE>);
static_assert(areBelow<CTBUTF32, CTBUTF32LE, CTBUTF32BE>);
static_assert(areBelow<BTCSingleByte, BTCASCII, BTCISO8859_1, BTCSingleByteTable>);
static_assert(areBelow<CTBSingleByte, CTBASCII, CTBISO8859_1, CTBSingleByteTable>);
static_assert(areBelow<BTCSingleByteTable, BTCCP437, BTCCP1252>);
static_assert(areBelow<CTBSingleByteTable, CTBCP437, CTBCP1252>);
static_assert(areBelow<BTCMultiByte, BTCCom>);
static_assert(areBelow<CTBMultiByte, CTBCom>);
static_assert(areBelow<ComObject, CodecClasses>);
static_assert(areBelow<Exception, InvalidCharacterException, UnmappableCharacterException,
                       UnknownEncodingException>);

} // namespace
