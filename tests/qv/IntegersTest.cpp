#include "qv/Integers.h"

#include "qv/Double.h"
#include "qv/Exceptions.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <limits>
#include <type_traits>

using namespace qv;

namespace {

constexpr int greatest = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();

TEST(IntegersTest, ValuesHaveTheirTypes) {
    static_assert(std::is_same_v<decltype(Integer8(1).operator signed char()), signed char>);
    static_assert(std::is_same_v<decltype(Integer16(1).operator short()), short>);
    static_assert(std::is_same_v<decltype(Integer32(1).operator int()), int>);
    static_assert(std::is_convertible_v<Integer64, std::int64_t>);
    static_assert(std::is_same_v<decltype(UInteger8(1).operator unsigned char()), unsigned char>);
    static_assert(std::is_convertible_v<UInteger64, std::uint64_t>);
    static_assert(std::is_base_of_v<SignedInteger, Integer64>);
    static_assert(std::is_base_of_v<UnsignedInteger, UInteger8>);
}

TEST(IntegersTest, ValueGoesInAndOut) {
    Integer32 number(5);
    EXPECT_EQ(number, 5);
    number = -7;
    EXPECT_EQ(number, -7);
    const Integer32 copy(number);
    number = Integer32(1);
    EXPECT_EQ(copy, -7);
    EXPECT_EQ(number, 1);
}

TEST(IntegersTest, TakeTheMatchingConversionOfAnotherNumber) {
    const Double real(-1.5);
    EXPECT_EQ(Integer32(real), -1);
    const Integer64 wide(0x1FFFFFFFF);
    EXPECT_EQ(Integer8(wide), -1);
    EXPECT_EQ(Integer16(wide), -1);
    EXPECT_EQ(Integer32(wide), -1);
    EXPECT_EQ(UInteger8(wide), 255);
    EXPECT_EQ(UInteger16(wide), 65535);
    EXPECT_EQ(UInteger32(wide), 4294967295u);
    EXPECT_EQ(UInteger64(Integer8(-1)), std::numeric_limits<std::uint64_t>::max());
}

TEST(IntegersTest, TakeTheMatchingParserOfAText) {
    EXPECT_EQ(Integer8(String(u"300")), 44);
    EXPECT_EQ(Integer16(String(u"70000")), 4464);
    EXPECT_EQ(Integer32(String(u"-12x")), -12);
    EXPECT_EQ(Integer64(String(u"8589934591")), 8589934591);
    EXPECT_EQ(UInteger8(String(u"257")), 1);
    EXPECT_EQ(UInteger16(String(u"65537")), 1);
    EXPECT_EQ(UInteger32(String(u"4000000000")), 4000000000u);
    EXPECT_EQ(UInteger64(String(u"8589934591")), 8589934591u);
    EXPECT_EQ(UInteger32(String(u"ff"), 16), 255u);
    EXPECT_EQ(UInteger64(String(u"1000000000"), 16), 0x1000000000u);
}

TEST(IntegersTest, KeptComparisonIsTheDifference) {
    EXPECT_EQ(Integer32(7).compareTo(Integer32(2)), 5);
    EXPECT_EQ(Integer32(2).compareTo(Integer32(7)), -5);
    EXPECT_EQ(Integer8(100).compareTo(Integer8(-100)), 200);
    EXPECT_EQ(Integer16(-32768).compareTo(Integer16(32767)), -65535);
    EXPECT_EQ(UInteger8(255).compareTo(UInteger8(0)), 255);
    EXPECT_EQ(UInteger16(0).compareTo(UInteger16(65535)), -65535);
}

TEST(IntegersTest, KeptComparisonOfExtremesOverflows) {
    EXPECT_EQ(Integer32(greatest).compareTo(Integer32(least)), -1);
    EXPECT_EQ(Integer32(least).compareTo(Integer32(1)), greatest);
    EXPECT_EQ(UInteger32(4294967295u).compareTo(UInteger32(0)), -1);
    EXPECT_EQ(UInteger32(0).compareTo(UInteger32(1)), -1);
}

TEST(IntegersTest, ComparisonCutsTheOtherSide) {
    EXPECT_EQ(Integer32(7).compareTo(Double(2.9)), 5);
    EXPECT_EQ(Integer8(1).compareTo(Integer32(257)), 0);
    EXPECT_EQ(UInteger16(1).compareTo(Integer32(65537)), 0);
}

TEST(IntegersTest, WideComparisonIsASign) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto fewest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(Integer64(most).compareTo(Integer64(fewest)), 1);
    EXPECT_EQ(Integer64(fewest).compareTo(Integer64(most)), -1);
    EXPECT_EQ(Integer64(5).compareTo(Double(5.5)), 0);
    EXPECT_EQ(UInteger64(std::numeric_limits<std::uint64_t>::max()).compareTo(UInteger64(0)), 1);
    EXPECT_EQ(UInteger64(0).compareTo(Integer8(-1)), -1);
}

TEST(IntegersTest, AnObjectIsComparedAsANumber) {
    const Integer32 seven(7);
    const Object& other = Integer16(3);
    EXPECT_EQ(seven.compareTo(static_cast<const Object&>(Integer16(3))), 4);
    EXPECT_EQ(seven.compareTo(static_cast<const Object&>(seven)), 0);
    EXPECT_EQ(seven.compareTo(seven), 0);
    static_cast<void>(other);
}

TEST(IntegersTest, AnObjectThatIsNoNumberFailsTheCast) {
    EXPECT_EQ(support::thrownText<CastFailedException>([] {
                  static_cast<void>(
                      Integer32(1).compareTo(static_cast<const Object&>(String(u"1"))));
              }),
              "");
    EXPECT_EQ(support::thrownText<CastFailedException>(
                  [] { static_cast<void>(UInteger64(1).compareTo(Object())); }),
              "");
}

TEST(IntegersTest, ConversionsFollowTheChain) {
    EXPECT_EQ(UInteger8(255).toInt8(), -1);
    EXPECT_EQ(UInteger8(255).toInt64(), 255);
    EXPECT_EQ(Integer64(8589934591).toInt32(), -1);
    EXPECT_EQ(Integer64(8589934591).hashCode(), 4294967295u);
    EXPECT_EQ(UInteger64(std::numeric_limits<std::uint64_t>::max()).toInt64(), -1);
    EXPECT_EQ(UInteger64(std::numeric_limits<std::uint64_t>::max()).toDouble(), 0x1p64);
    EXPECT_EQ(Integer8(-1).toUInt64(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(Integer8(-1).toDouble(), -1.0);
    EXPECT_EQ(UInteger32(4294967295u).toFloat(), 4294967296.0f);
}

TEST(IntegersTest, TextIsDecimal) {
    EXPECT_EQ(Integer8(-128).toString(), u"-128");
    EXPECT_EQ(Integer16(-32768).toString(), u"-32768");
    EXPECT_EQ(Integer32(least).toString(), u"-2147483648");
    EXPECT_EQ(Integer64(std::numeric_limits<std::int64_t>::min()).toString(),
              u"-9223372036854775808");
    EXPECT_EQ(UInteger8(255).toString(), u"255");
    EXPECT_EQ(UInteger16(65535).toString(), u"65535");
    EXPECT_EQ(UInteger32(4294967295u).toString(), u"4294967295");
    EXPECT_EQ(UInteger64(std::numeric_limits<std::uint64_t>::max()).toString(),
              u"18446744073709551615");
}

TEST(IntegersTest, UnsignedTextTakesARadix) {
    EXPECT_EQ(UInteger32(255).toString(16), u"ff");
    EXPECT_EQ(UInteger8(5).toString(2), u"101");
    EXPECT_EQ(UInteger64(std::numeric_limits<std::uint64_t>::max()).toString(36), u"3w5e11264sgsf");
    EXPECT_EQ(UInteger64(0).toString(16), u"0");
}

TEST(IntegersTest, BigNumbersAreExact) {
    EXPECT_EQ(Integer64(9007199254740993).toBigInteger().toString(), u"9007199254740993");
    EXPECT_EQ(Integer64(9007199254740993).toBigDecimal().toString(), u"9007199254740993");
    EXPECT_EQ(Integer8(-5).toBigDecimal().toString(), u"-5");
    const UInteger64 most(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(most.toBigInteger().toString(), u"18446744073709551615");
    EXPECT_EQ(most.toBigDecimal().toString(), u"18446744073709551615");
}

/// The roots' own texts, which the widths replace.
class OwnSigned : public SignedInteger {
public:
    std::int64_t toInt64() const override { return -1234567; }
    double toDouble() const override { return -1234567; }
};
class OwnUnsigned : public UnsignedInteger {
public:
    using UnsignedInteger::toString;
    std::int64_t toInt64() const override { return -1; }
    double toDouble() const override { return 0; }
};

TEST(IntegersTest, RootsWriteTheirTextThroughBigIntegers) {
    EXPECT_EQ(OwnSigned().toString(), u"-1234567");
    EXPECT_EQ(OwnUnsigned().toString(), u"18446744073709551615");
    EXPECT_EQ(OwnUnsigned().toString(16), u"ffffffffffffffff");
}

TEST(IntegersTest, RootsTextGoesThroughTheTextInARadixOfTheSubclass) {
    class Marked : public OwnUnsigned {
    public:
        using OwnUnsigned::toString;
        String toString(int radix) const override { return String::valueOf(radix); }
    };
    EXPECT_EQ(static_cast<const Object&>(Marked()).toString(), u"10");
}

} // namespace
