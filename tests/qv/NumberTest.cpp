// What every number answers, and the parsers.

#include "qv/Number.h"

#include "qv/Double.h"
#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <limits>

using namespace qv;
using support::expectConsecutive;
using support::slotOf;

namespace {

/// A number with nothing but what the root asks for.
class Plain : public Number {
public:
    Plain(std::int64_t whole, double real) : whole_(whole), real_(real) {}
    std::int64_t toInt64() const override { return whole_; }
    double toDouble() const override { return real_; }

private:
    std::int64_t whole_;
    double real_;
};

constexpr std::int64_t wide = 0x1122334455667788;

TEST(NumberTest, OperationsStandBehindThoseOfObjectsInOrder) {
    expectConsecutive(
        {slotOf(&Object::toString),     slotOf(&Number::toInt64),      slotOf(&Number::toDouble),
         slotOf(&Number::toByte),       slotOf(&Number::toShort),      slotOf(&Number::toInt),
         slotOf(&Number::toLong),       slotOf(&Number::toUByte),      slotOf(&Number::toUShort),
         slotOf(&Number::toUInt),       slotOf(&Number::toULong),      slotOf(&Number::toFloat),
         slotOf(&Number::toBigInteger), slotOf(&Number::toBigDecimal), slotOf(&Number::toInt8),
         slotOf(&Number::toInt16),      slotOf(&Number::toInt32),      slotOf(&Number::toUInt8),
         slotOf(&Number::toUInt16),     slotOf(&Number::toUInt32),     slotOf(&Number::toUInt64)});
}

TEST(NumberTest, SubclassesAddTheirOneBehindThem) {
    using TextInRadix = String (UnsignedInteger::*)(int) const;
    const auto last = slotOf(&Number::toUInt64);
    EXPECT_EQ(slotOf(static_cast<TextInRadix>(&UnsignedInteger::toString)), last + 1);
    EXPECT_EQ(slotOf(&math::BigInteger::getSize), last + 1);
    EXPECT_EQ(slotOf(&math::BigDecimal::getSize), last + 1);
}

TEST(NumberTest, OverridesStayInTheirSlots) {
    EXPECT_EQ(slotOf(&Integer32::toInt64), slotOf(&Number::toInt64));
    EXPECT_EQ(slotOf(&Double::toDouble), slotOf(&Number::toDouble));
    EXPECT_EQ(slotOf(&math::BigInteger::toBigDecimal), slotOf(&Number::toBigDecimal));
    EXPECT_EQ(slotOf(&Number::equals), slotOf(&Object::equals));
    EXPECT_EQ(slotOf(&Number::hashCode), slotOf(&Object::hashCode));
}

TEST(NumberTest, ConversionsCutTheWholeValueToTheirWidth) {
    const Plain number(wide, 0);
    EXPECT_EQ(number.toInt8(), static_cast<std::int8_t>(0x88));
    EXPECT_EQ(number.toInt16(), 0x7788);
    EXPECT_EQ(number.toInt32(), 0x55667788);
    EXPECT_EQ(number.toUInt8(), 0x88);
    EXPECT_EQ(number.toUInt16(), 0x7788);
    EXPECT_EQ(number.toUInt32(), 0x55667788u);
    EXPECT_EQ(number.toUInt64(), static_cast<std::uint64_t>(wide));
}

TEST(NumberTest, LanguageNamesGoThroughTheFixedWidths) {
    const Plain number(wide, 0);
    EXPECT_EQ(number.toByte(), static_cast<signed char>(0x88));
    EXPECT_EQ(number.toShort(), 0x7788);
    EXPECT_EQ(number.toInt(), 0x55667788);
    EXPECT_EQ(number.toLong(), 0x55667788);
    EXPECT_EQ(number.toUByte(), 0x88);
    EXPECT_EQ(number.toUShort(), 0x7788);
    EXPECT_EQ(number.toUInt(), 0x55667788u);
    EXPECT_EQ(number.toULong(), 0x55667788u);
}

TEST(NumberTest, LanguageNamesCallTheFixedWidthsOfTheSubclass) {
    class Odd : public Plain {
    public:
        Odd() : Plain(0, 0) {}
        std::int8_t toInt8() const override { return 1; }
        std::int16_t toInt16() const override { return 2; }
        std::int32_t toInt32() const override { return 3; }
        std::uint8_t toUInt8() const override { return 4; }
        std::uint16_t toUInt16() const override { return 5; }
        std::uint32_t toUInt32() const override { return 6; }
    } const odd;
    EXPECT_EQ(odd.toByte(), 1);
    EXPECT_EQ(odd.toShort(), 2);
    EXPECT_EQ(odd.toInt(), 3);
    EXPECT_EQ(odd.toLong(), 3);
    EXPECT_EQ(odd.toUByte(), 4);
    EXPECT_EQ(odd.toUShort(), 5);
    EXPECT_EQ(odd.toUInt(), 6u);
    EXPECT_EQ(odd.toULong(), 6u);
    EXPECT_EQ(odd.hashCode(), 6u);
}

TEST(NumberTest, UnsignedWidthsCutToUInt64OfTheSubclass) {
    class Odd : public Plain {
    public:
        Odd() : Plain(0, 0) {}
        std::uint64_t toUInt64() const override { return 0x10203; }
    } const odd;
    EXPECT_EQ(odd.toUInt8(), 3);
    EXPECT_EQ(odd.toUInt16(), 0x203);
    EXPECT_EQ(odd.toUInt32(), 0x10203u);
}

TEST(NumberTest, BigNumbersComeFromTheTwoBasicConversions) {
    const Plain number(-12, 2.5);
    EXPECT_EQ(number.toBigInteger().toString(), u"-12");
    EXPECT_EQ(number.toBigDecimal().toString(), u"2.5");
    EXPECT_EQ(number.toFloat(), 2.5f);
    EXPECT_EQ(Plain(0, 0.1).toFloat(), 0.1f);
}

TEST(NumberTest, HashIsTheLowHalf) {
    EXPECT_EQ(Plain(8589934591, 0).hashCode(), 4294967295u);
    EXPECT_EQ(Plain(-1, 0).hashCode(), 4294967295u);
}

TEST(NumberTest, EqualsAsksCompareTo) {
    EXPECT_TRUE(Integer32(7).equals(Double(7.9)));
    EXPECT_FALSE(Double(7.9).equals(Integer32(7)));
    EXPECT_TRUE(static_cast<const Object&>(Integer64(5)).equals(math::BigInteger(5)));
}

TEST(NumberTest, EqualsWithNoNumberThrows) {
    EXPECT_EQ(support::thrownText<CastFailedException>(
                  [] { static_cast<void>(Integer32(1).equals(String(u"1"))); }),
              "");
}

TEST(NumberTest, ComponentFaceComparesAndHashes) {
    const Integer32 seven(7);
    const Integer32 two(2);
    std::int32_t order = 99;
    EXPECT_EQ(static_cast<const IQVComparable&>(seven).CompareTo(
                  &static_cast<const ComObject&>(two), &order),
              0);
    EXPECT_EQ(order, 5);
    std::uint32_t hash = 0;
    EXPECT_EQ(static_cast<const IQVComparable&>(seven).HashCode(&hash), 0);
    EXPECT_EQ(hash, 7u);
}

TEST(NumberTest, ComponentFaceTurnsAFailedCastIntoAResult) {
    const Integer32 seven(7);
    const String text(u"7");
    std::int32_t order = 99;
    EXPECT_EQ(static_cast<const IQVComparable&>(seven).CompareTo(
                  &static_cast<const ComObject&>(text), &order),
              QV_E_FAIL);
    EXPECT_EQ(order, 0);
}

// --- Parsers ---

TEST(NumberParserTest, SignedParsersReadDecimalDigitsAndCutThem) {
    EXPECT_EQ(Number::parseInt32(u" -42 apples"), -42);
    EXPECT_EQ(Number::parseInt32(u"nothing"), 0);
    EXPECT_EQ(Number::parseInt32(u""), 0);
    EXPECT_EQ(Number::parseInt32(u"99999999999"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Number::parseInt(u"70000"), 70000);
    EXPECT_EQ(Number::parseShort(u"70000"), 4464);
    EXPECT_EQ(Number::parseInt16(u"70000"), 4464);
    EXPECT_EQ(Number::parseByte(u"300"), 44);
    EXPECT_EQ(Number::parseInt8(u"-129"), 127);
    EXPECT_EQ(Number::parseLong(u"-2147483648"), std::numeric_limits<std::int32_t>::min());
}

TEST(NumberParserTest, UnsignedParsersTakeARadix) {
    EXPECT_EQ(Number::parseUInt32(u"ff", 16), 255u);
    EXPECT_EQ(Number::parseUInt32(u"0x1F", 0), 31u);
    EXPECT_EQ(Number::parseUInt32(u"4294967296", 10), 4294967295u);
    EXPECT_EQ(Number::parseUInt32(u"-1", 10), 4294967295u);
    EXPECT_EQ(Number::parseUInt(u"12", 8), 10u);
    EXPECT_EQ(Number::parseUShort(u"10001", 16), 1);
    EXPECT_EQ(Number::parseUInt16(u"10001", 16), 1);
    EXPECT_EQ(Number::parseUByte(u"101", 16), 1);
    EXPECT_EQ(Number::parseUInt8(u"101", 16), 1);
    EXPECT_EQ(Number::parseULong(u"zz", 36), 1295u);
    EXPECT_EQ(Number::parseUInt32(u"12", 1), 0u);
}

TEST(NumberParserTest, WideParsersGoThroughBigIntegers) {
    EXPECT_EQ(Number::parseInt64(u"-8589934591"), -8589934591);
    EXPECT_EQ(Number::parseInt64(u"9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number::parseUInt64(u"7fffffffffffffff", 16), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(Number::parseUInt64(u"8589934591", 10), 8589934591u);
}

TEST(NumberParserTest, KeptTheTopBitOfAWideTextIsLost) {
    EXPECT_EQ(Number::parseInt64(u"9223372036854775808"), 0);
    EXPECT_EQ(Number::parseInt64(u"-9223372036854775808"), 0);
    EXPECT_EQ(Number::parseUInt64(u"18446744073709551615", 10), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(Number::parseUInt64(u"-1", 10), 0xFFFFFFFFFFFFFFFFu);
}

TEST(NumberParserTest, WideParsersThrowWhatBigIntegersThrow) {
    const auto refused = [](auto work) { return support::thrownText<Exception>(work); };
    EXPECT_EQ(refused([] { Number::parseInt64(u""); }), "Number Format Exception");
    EXPECT_EQ(refused([] { Number::parseUInt64(u"1-2", 10); }), "Number Format Exception");
    EXPECT_EQ(refused([] { static_cast<void>(Number::parseBigInteger(u"")); }),
              "Number Format Exception");
    EXPECT_EQ(refused([] { static_cast<void>(Number::parseBigDecimal(u".")); }),
              "Number Format Exception");
}

TEST(NumberParserTest, RealParsers) {
    EXPECT_EQ(Number::parseDouble(u" 2.5e3x"), 2500.0);
    EXPECT_EQ(Number::parseDouble(u"x"), 0.0);
    EXPECT_EQ(Number::parseDouble(u"0.1"), 0.1);
}

TEST(NumberParserTest, FloatKeepsOnlyItsPrecision) {
    EXPECT_EQ(Number::parseFloat(u"0.1"), 0.1f);
    EXPECT_NE(static_cast<double>(Number::parseFloat(u"0.1")), 0.1);
    EXPECT_EQ(Number::parseFloat(u"16777217"), 16777216.0f);
}

TEST(NumberParserTest, BigParsers) {
    EXPECT_EQ(Number::parseBigInteger(u"-123456789012345678901234567890").toString(),
              u"-123456789012345678901234567890");
    EXPECT_EQ(Number::parseBigDecimal(u"1.50").toString(), u"1.5");
}

} // namespace
