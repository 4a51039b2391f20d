#include "qv/text/charset/UTF16Converters.h"
#include "qv/text/charset/UTF32Converters.h"

#include "tests/support/Conversions.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using namespace std::string_literals;

namespace {

TEST(Utf16Test, WordsStandInTheirByteOrder) {
    BTCUTF16LE littleDecoder;
    BTCUTF16BE bigDecoder;
    CTBUTF16LE littleEncoder;
    CTBUTF16BE bigEncoder;
    EXPECT_EQ(support::decodeAll(littleDecoder, "A\0\xAC\x20"s), u"A\u20AC");
    EXPECT_EQ(support::decodeAll(bigDecoder, "\0A\x20\xAC"s), u"A\u20AC");
    EXPECT_EQ(support::encodeAll(littleEncoder, u"A\u20AC"), "A\0\xAC\x20"s);
    EXPECT_EQ(support::encodeAll(bigEncoder, u"A\u20AC"), "\0A\x20\xAC"s);
}

TEST(Utf16Test, SurrogatesAndByteOrderMarksPassThrough) {
    const std::u16string text = u"\uFEFF\xDC00\xD800\xD800z\U0001F600\uFFFE\0"s;
    BTCUTF16LE littleDecoder;
    BTCUTF16BE bigDecoder;
    CTBUTF16LE littleEncoder;
    CTBUTF16BE bigEncoder;
    EXPECT_EQ(support::decodeAll(littleDecoder, support::encodeAll(littleEncoder, text)), text);
    EXPECT_EQ(support::decodeAll(bigDecoder, support::encodeAll(bigEncoder, text)), text);
    EXPECT_EQ(littleEncoder.flush(nullptr, nullptr, 0), 0);
}

TEST(Utf16Test, LastOddByteStaysUnconsumed) {
    BTCUTF16LE decoder;
    EXPECT_EQ(support::decode(decoder, "a\0b\0c"s), (Decoded{4, u"ab"}));
    BTCUTF16BE bigDecoder;
    EXPECT_EQ(support::decode(bigDecoder, "\0"s), (Decoded{0, u""}));
}

TEST(Utf16Test, OutputLimitsTheWords) {
    BTCUTF16BE decoder;
    EXPECT_EQ(support::decode(decoder, "\0a\0b\0c"s, 2), (Decoded{4, u"ab"}));
    CTBUTF16BE encoder;
    EXPECT_EQ(support::encode(encoder, u"abc", 5), (Encoded{2, "\0a\0b"s}));
}

TEST(Utf16Test, EncoderReturnsCharacters) {
    CTBUTF16LE encoder;
    signed char out[8] = {};
    std::int32_t from = 0;
    std::int32_t to = 1;
    EXPECT_EQ(encoder.convert(u"abc", &from, 3, out, &to, 8), 3);
    EXPECT_EQ(from, 3);
    EXPECT_EQ(to, 7);
    BTCUTF16LE decoder;
    char16_t units[3] = {};
    from = 0;
    to = 0;
    EXPECT_EQ(decoder.convert(out, &from, 8, units, &to, 3), 3);
}

// --- The steps, which the leaves of UTF-16 and UTF-32 share ---

template <class Leaf>
struct Open : Leaf {
    using Leaf::convertUTF16;
    using Leaf::convertUTF32;
};

template <class Leaf>
class HostOrderTest : public testing::Test {};
using HostOrderLeaves = testing::Types<BTCUTF16LE, CTBUTF16LE, BTCUTF32LE, CTBUTF32LE>;
TYPED_TEST_SUITE(HostOrderTest, HostOrderLeaves);

TYPED_TEST(HostOrderTest, StepsGiveTheWordItself) {
    Open<TypeParam> leaf;
    EXPECT_EQ(leaf.convertUTF16(0x1234), 0x1234);
    EXPECT_EQ(leaf.convertUTF32(0x12345678), 0x12345678u);
}

template <class Leaf>
class SwappedOrderTest : public testing::Test {};
using SwappedOrderLeaves = testing::Types<BTCUTF16BE, CTBUTF16BE, BTCUTF32BE, CTBUTF32BE>;
TYPED_TEST_SUITE(SwappedOrderTest, SwappedOrderLeaves);

TYPED_TEST(SwappedOrderTest, StepsSwapTheBytesThereAndBack) {
    Open<TypeParam> leaf;
    EXPECT_EQ(leaf.convertUTF16(0x1234), 0x3412);
    EXPECT_EQ(leaf.convertUTF16(0x3412), 0x1234);
    EXPECT_EQ(leaf.convertUTF32(0x12345678), 0x78563412u);
    EXPECT_EQ(leaf.convertUTF32(0x78563412), 0x12345678u);
}

/// A user's byte order: the words pass through its own step, whatever the leaf below does.
template <class Base>
class Inverted : public Base {
protected:
    unsigned short convertUTF16(unsigned short word) override {
        return static_cast<unsigned short>(~Base::convertUTF16(word));
    }
};

TEST(Utf16Test, DerivedClassesAreAskedForEveryWord) {
    const std::u16string text(50, u'\x1234');
    Inverted<CTBUTF16LE> littleEncoder;
    Inverted<BTCUTF16LE> littleDecoder;
    Inverted<CTBUTF16BE> bigEncoder;
    Inverted<BTCUTF16BE> bigDecoder;
    const std::string little = support::encodeAll(littleEncoder, text);
    EXPECT_EQ(little.substr(0, 2), "\xCB\xED");
    EXPECT_EQ(support::decodeAll(littleDecoder, little), text);
    const std::string big = support::encodeAll(bigEncoder, text);
    EXPECT_EQ(big.substr(0, 2), "\xED\xCB");
    EXPECT_EQ(bigDecoder.getMaxBytesPerChar(), 4);
    BTCUTF16BE plain;
    EXPECT_EQ(support::decodeAll(plain, big), std::u16string(50, u'\xEDCB'));
}

} // namespace
