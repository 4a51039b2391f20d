#include "qv/text/charset/SingleByteConverters.h"

#include "qv/Exceptions.h"
#include "tests/support/Conversions.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <vector>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using reference::Failure;
using namespace std::string_literals;

namespace {

std::string allBytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// The upper half of a code page, written out.
const std::u16string cp437Upper = u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»"
                                  u"░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                  u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
const std::u16string cp1252Upper = u"€\uFFFD‚ƒ„…†‡ˆ‰Š‹Œ\uFFFDŽ\uFFFD\uFFFD‘’“”•–—˜™š›œ\uFFFDžŸ"
                                   u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
                                   u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
                                   u"àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";

std::u16string lowerHalf() {
    std::u16string units;
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        units += unit;
    }
    return units;
}

TEST(BTCASCIITest, BytesAbove7FHaveNoCharacter) {
    BTCASCII decoder;
    EXPECT_EQ(support::decodeAll(decoder, allBytes()),
              lowerHalf() + std::u16string(128, u'\uFFFD'));
}

TEST(BTCISO8859_1Test, BytesAreWidenedAsSignedValues) {
    BTCISO8859_1 decoder;
    std::u16string upper;
    for (char16_t unit = 0xFF80; unit != 0; ++unit) {
        upper += unit;
    }
    EXPECT_EQ(support::decodeAll(decoder, allBytes()), lowerHalf() + upper);
    EXPECT_EQ(support::decodeAll(decoder, "\xE9"), u"\xFFE9");
}

TEST(BTCISO8859_1Test, SubstitutionNeverApplies) {
    BTCISO8859_1 decoder;
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decodeAll(decoder, "\xFD"), u"\xFFFD");
}

/// A user's class that overrides the step, in vain: nothing goes through it.
TEST(BTCISO8859_1Test, ConversionNeverAsksTheStep) {
    struct : BTCISO8859_1 {
        char16_t convertByte(signed char) override { return u'!'; }
    } decoder;
    EXPECT_EQ(support::decodeAll(decoder, "a\xE9" + std::string(40, 'b')),
              u"a\xFFE9" + std::u16string(40, u'b'));
}

TEST(BTCISO8859_1Test, RangesThatOverlapAreWalkedByteByByte) {
    // The output overtakes the input in the same memory: what it covered is read again.
    std::vector<char16_t> memory(64);
    auto* const bytes = reinterpret_cast<signed char*>(memory.data());
    for (int i = 0; i < 128; ++i) {
        bytes[i] = static_cast<signed char>(i);
    }
    std::vector<char16_t> expected = memory;
    const auto* const in = reinterpret_cast<const signed char*>(expected.data());
    for (std::size_t i = 0; i < 40; ++i) {
        expected[24 + i] = static_cast<char16_t>(in[68 + i]);
    }
    BTCISO8859_1 decoder;
    std::int32_t from = 68;
    std::int32_t to = 24;
    EXPECT_EQ(decoder.convert(bytes, &from, 108, memory.data(), &to, 64), 40);
    EXPECT_EQ(memory, expected);
}

TEST(CodePageTest, Cp437IsThePublishedMapping) {
    BTCCP437 decoder;
    EXPECT_EQ(support::decodeAll(decoder, allBytes()), lowerHalf() + cp437Upper);
    CTBCP437 encoder;
    EXPECT_EQ(support::encodeAll(encoder, lowerHalf() + cp437Upper), allBytes());
}

TEST(CodePageTest, Cp1252IsThePublishedMapping) {
    BTCCP1252 decoder;
    EXPECT_EQ(support::decodeAll(decoder, allBytes()), lowerHalf() + cp1252Upper);
    CTBCP1252 encoder;
    std::string expected = allBytes();
    for (const std::size_t undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        expected[undefined] = '?';
    }
    EXPECT_EQ(support::encodeAll(encoder, lowerHalf() + cp1252Upper), expected);
}

TEST(CodePageTest, UndefinedBytesOf1252ThrowWithoutSubstitution) {
    BTCCP1252 decoder;
    decoder.setSubstitutionMode(false);
    for (const char* byte : {"\x81", "\x8D", "\x8F", "\x90", "\x9D"}) {
        EXPECT_EQ(support::decode(decoder, byte).failure, Failure::unmappableCharacter);
    }
    EXPECT_EQ(support::decodeAll(decoder, "\x80"), u"€");
}

TEST(CodePageTest, ControlCharactersOfTheUpperHalfHaveNoByte) {
    CTBCP1252 encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\u0081\u008D\u0080"), "???");
}

TEST(CTBASCIITest, CharactersFrom80OnHaveNoByte) {
    CTBASCII encoder;
    EXPECT_EQ(support::encodeAll(encoder, lowerHalf()), allBytes().substr(0, 128));
    EXPECT_EQ(support::encodeAll(encoder, u"\0\u0080\u00E9\u20AC\uFFFD"s), "\0????"s);
}

TEST(CTBISO8859_1Test, CharactersFrom100OnHaveNoByte) {
    CTBISO8859_1 encoder;
    std::u16string units = lowerHalf();
    for (char16_t unit = 0x80; unit < 0x100; ++unit) {
        units += unit;
    }
    EXPECT_EQ(support::encodeAll(encoder, units), allBytes());
    EXPECT_EQ(support::encodeAll(encoder, u"\u0100\uFFE9"), "??");
}

// --- The steps of the leaves, over all that they can be asked for ---

std::u16string latin1Upper() {
    std::u16string units;
    for (char16_t unit = 0x80; unit <= 0xFF; ++unit) {
        units += unit;
    }
    return units;
}

/// Compares the step of a decoder with a page of 256 characters, U+FFFD for none.
template <class Leaf>
void expectBytes(const std::u16string& page) {
    struct : Leaf {
        using Leaf::convertByte;
    } decoder;
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(decoder.convertByte(static_cast<signed char>(byte)),
                  page[static_cast<std::size_t>(byte)])
            << byte;
    }
}

/// Compares the step of an encoder with a page, whose places are the bytes.
template <class Leaf>
void expectChars(const std::u16string& page) {
    struct : Leaf {
        using Leaf::convertChar;
    } encoder;
    for (int unit = 0; unit < 0x10000; ++unit) {
        const auto c = static_cast<char16_t>(unit);
        const std::size_t found = c == u'\uFFFD' ? page.npos : page.find(c);
        const int expected = found == page.npos ? 0 : static_cast<int>(found);
        ASSERT_EQ(static_cast<unsigned char>(encoder.convertChar(c)), expected) << unit;
    }
}

TEST(SingleByteStepsTest, BytesGiveTheirCharacters) {
    expectBytes<BTCASCII>(lowerHalf() + std::u16string(128, u'\uFFFD'));
    expectBytes<BTCISO8859_1>(lowerHalf() + latin1Upper());
    expectBytes<BTCCP437>(lowerHalf() + cp437Upper);
    expectBytes<BTCCP1252>(lowerHalf() + cp1252Upper);
}

TEST(SingleByteStepsTest, CharactersGiveTheirBytesAndAllOthersZero) {
    expectChars<CTBASCII>(lowerHalf());
    expectChars<CTBISO8859_1>(lowerHalf() + latin1Upper());
    expectChars<CTBCP437>(lowerHalf() + cp437Upper);
    expectChars<CTBCP1252>(lowerHalf() + cp1252Upper);
}

// --- The common rules, with every encoder and decoder that can meet them ---

TEST(BTCSingleByteTest, AnyOtherNumberOfSubstitutionCharactersMakesBytesVanish) {
    BTCASCII decoder;
    decoder.setSubstitutionChars(u"ab", 2);
    EXPECT_EQ(support::decodeAll(decoder, "x\x80y"), u"xy");
    EXPECT_EQ(support::decode(decoder, "\x80\x81", 0), (Decoded{2, u""}));
    decoder.setSubstitutionChars(u"", 0);
    EXPECT_EQ(support::decodeAll(decoder, "x\x80y"), u"xy");
    decoder.setSubstitutionChars(u"#", 1);
    EXPECT_EQ(support::decodeAll(decoder, "x\x80y"), u"x#y");
}

TEST(BTCSingleByteTest, SubstitutionNeedsOneFreeUnit) {
    BTCASCII decoder;
    EXPECT_EQ(support::decode(decoder, "x\x80", 1), (Decoded{1, u"x"}));
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "\x80", 0).failure, Failure::unmappableCharacter);
}

class CTBSingleByteTest : public testing::TestWithParam<reference::Form> {
protected:
    support::Encoder encoder_ = support::newEncoder(GetParam());
};

TEST_P(CTBSingleByteTest, SurrogatePairGivesOneSubstitutionByte) {
    EXPECT_EQ(support::encodeAll(*encoder_, u"a\U0001F600z"), "a?z");
    EXPECT_EQ(support::encode(*encoder_, u"a\xD83D"), (Encoded{2, "a"}));
    EXPECT_EQ(support::encode(*encoder_, u"\xDE00z"), (Encoded{2, "?z"}));
}

TEST_P(CTBSingleByteTest, AnyOtherNumberOfSubstitutionBytesMakesCharactersVanish) {
    encoder_->setSubstitutionBytes(reinterpret_cast<const signed char*>("12"), 2);
    EXPECT_EQ(support::encodeAll(*encoder_, u"a\u4E00\U0001F600z"), "az");
    EXPECT_EQ(support::encode(*encoder_, u"\u4E00", 0), (Encoded{1, ""}));
    encoder_->setSubstitutionBytes(nullptr, 0);
    EXPECT_EQ(support::encodeAll(*encoder_, u"a\u4E00\U0001F600z"), "az");
}

TEST_P(CTBSingleByteTest, SurrogatesWithoutTheirOtherHalfThrow) {
    Encoded outcome = support::encode(*encoder_, u"a\xDC00");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "trailing surrogate without leading");
    outcome = support::encode(*encoder_, u"a\xD800z");
    EXPECT_EQ(outcome.failure, Failure::invalidCharacter);
    EXPECT_EQ(outcome.message, "leading surrogate without trailing");
    encoder_->reset();
    EXPECT_EQ(support::encodeAll(*encoder_, u"z"), "z");
}

TEST_P(CTBSingleByteTest, FlushThrowsWhereASurrogateWaitsUntilReset) {
    support::encode(*encoder_, u"\xD800");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(support::thrownText<InvalidCharacterException>(
                      [this] { encoder_->flush(nullptr, nullptr, 0); }),
                  "leading surrogate without trailing");
    }
    encoder_->reset();
    EXPECT_EQ(encoder_->flush(nullptr, nullptr, 0), 0);
}

TEST_P(CTBSingleByteTest, WithoutSubstitutionCharactersAndPairsThrow) {
    encoder_->setSubstitutionMode(false);
    EXPECT_EQ(support::encode(*encoder_, u"\u4E00").failure, Failure::unmappableCharacter);
    EXPECT_EQ(support::encode(*encoder_, u"\U0001F600").failure, Failure::unmappableCharacter);
    // The pair is gone with its exception.
    EXPECT_EQ(encoder_->flush(nullptr, nullptr, 0), 0);
}

TEST_P(CTBSingleByteTest, PairThatMeetsAFullOutputLosesItsLeadingHalf) {
    EXPECT_EQ(support::encode(*encoder_, u"\U0001F600", 0), (Encoded{1, ""}));
    EXPECT_EQ(support::encode(*encoder_, u"\xDE00").failure, Failure::invalidCharacter);
}

TEST_P(CTBSingleByteTest, FullOutputStopsInFrontOfTheCharacter) {
    EXPECT_EQ(support::encode(*encoder_, u"ab", 1), (Encoded{1, "a"}));
    EXPECT_EQ(support::encode(*encoder_, u"a\u4E00", 1), (Encoded{1, "a"}));
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, CTBSingleByteTest,
                         testing::Values(reference::Form::ascii, reference::Form::latin1,
                                         reference::Form::cp437, reference::Form::cp1252));

// --- Tables of the caller's ---

class TableTest : public testing::Test {
protected:
    TableTest() {
        for (std::size_t byte = 0; byte < decoderTable_.size(); ++byte) {
            decoderTable_[byte] = static_cast<char16_t>(0x0400 + (byte ^ 1));
        }
        decoderTable_[7] = u'\uFFFD';
        pages_[4] = 256;
        for (std::size_t unit = 0; unit < 256; ++unit) {
            bytes_[256 + unit] = static_cast<unsigned char>(unit ^ 1);
        }
    }

    std::vector<char16_t> decoderTable_ = std::vector<char16_t>(256);
    std::vector<int> pages_ = std::vector<int>(256);
    std::vector<unsigned char> bytes_ = std::vector<unsigned char>(512);
};

TEST_F(TableTest, DecoderFollowsItsTableForAllBytes) {
    BTCSingleByteTable decoder(u"X-MINE", decoderTable_.data());
    EXPECT_EQ(String(decoder.getEncodingName()), u"X-MINE");
    std::u16string expected(decoderTable_.begin(), decoderTable_.end());
    EXPECT_EQ(support::decodeAll(decoder, allBytes()), expected);
    decoder.setSubstitutionMode(false);
    EXPECT_EQ(support::decode(decoder, "\x07").failure, Failure::unmappableCharacter);
}

TEST_F(TableTest, EncoderFollowsItsTableForAllCharacters) {
    CTBSingleByteTable encoder(u"X-MINE", pages_.data(), bytes_.data());
    EXPECT_EQ(String(encoder.getEncodingName()), u"X-MINE");
    EXPECT_EQ(support::encodeAll(encoder, u"\u0400\u0441\u0440"), "\x01\x40\x41");
    EXPECT_EQ(support::encodeAll(encoder, u"a\u0401"), "??"); // U+0401 has the value 0
    EXPECT_EQ(support::encodeAll(encoder, u"\0"s), "\0"s);
}

/// Users' classes that override the step of a leaf.
template <class Leaf>
class Doubled : public Leaf {
public:
    using Leaf::Leaf;

protected:
    char16_t convertByte(signed char byte) override {
        return byte == 'x' ? u'\uFFFD' : static_cast<char16_t>(Leaf::convertByte(byte) + 0x100);
    }
};

template <class Leaf>
class OnlyA : public Leaf {
public:
    using Leaf::Leaf;

protected:
    signed char convertChar(char16_t unit) override { return unit == u'a' ? 'A' : 0; }
};

TEST_F(TableTest, DerivedDecodersAreAskedForEveryByte) {
    Doubled<BTCASCII> ascii;
    Doubled<BTCCP437> cp437;
    Doubled<BTCSingleByteTable> table(u"X", decoderTable_.data());
    const std::string bytes(40, 'a');
    EXPECT_EQ(support::decodeAll(ascii, bytes + "x"), std::u16string(40, u'\u0161') + u"\uFFFD");
    EXPECT_EQ(support::decodeAll(cp437, bytes + "x"), std::u16string(40, u'\u0161') + u"\uFFFD");
    EXPECT_EQ(support::decodeAll(table, bytes), std::u16string(40, u'\u0560'));
}

TEST_F(TableTest, DerivedEncodersAreAskedForEveryCharacter) {
    OnlyA<CTBASCII> ascii;
    OnlyA<CTBISO8859_1> latin1;
    OnlyA<CTBCP1252> cp1252;
    OnlyA<CTBSingleByteTable> table(u"X", pages_.data(), bytes_.data());
    const std::u16string text = std::u16string(40, u'a') + u"b";
    std::string expected(40, 'A');
    expected += '?';
    EXPECT_EQ(support::encodeAll(ascii, text), expected);
    EXPECT_EQ(support::encodeAll(latin1, text), expected);
    EXPECT_EQ(support::encodeAll(cp1252, text), expected);
    EXPECT_EQ(support::encodeAll(table, text), expected);
}

/// A user's class may give surrogates bytes of their own: they are then no pair.
class SurrogateEncoder : public CTBSingleByte {
public:
    const char16_t* getEncodingName() override { return u"X-SURROGATES"; }

protected:
    signed char convertChar(char16_t unit) override {
        return unit >= 0xD800 && unit <= 0xDFFF ? 'S' : 0;
    }
};

TEST(SurrogateEncoderTest, SurrogatesWithABytePassLikeOtherCharacters) {
    SurrogateEncoder encoder;
    EXPECT_EQ(support::encodeAll(encoder, u"\xD800\xD800\xDC00x"), "SSS?");
    EXPECT_EQ(encoder.flush(nullptr, nullptr, 0), 0);
}

} // namespace
