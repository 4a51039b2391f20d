#include "qv/math/BigDecimal.h"

#include "qv/Double.h"
#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <limits>

using namespace qv;
using math::BigDecimal;
using math::BigInteger;

namespace {

BigDecimal decimal(const char16_t* text) { return BigDecimal(String(text)); }

/// The value, blank, the scale.
String parts(const BigDecimal& number) {
    BigInteger value = number.abs();
    if (number.isNegative()) {
        value.negate();
    }
    return value.toString() + u" " + String::valueOf(number.getScale());
}

String read(const char16_t* text) { return parts(decimal(text)); }

String written(const BigInteger& value, int scale) { return BigDecimal(value, scale).toString(); }

String sum(const char16_t* a, const char16_t* b) {
    BigDecimal number = decimal(a);
    number.add(decimal(b));
    return number.toString();
}

String difference(const char16_t* a, const char16_t* b) {
    BigDecimal number = decimal(a);
    number.subtract(decimal(b));
    return number.toString();
}

String product(const char16_t* a, const char16_t* b) {
    BigDecimal number = decimal(a);
    number.multiply(decimal(b));
    return number.toString();
}

String quotient(const char16_t* a, const char16_t* b, int scale) {
    BigDecimal number = decimal(a);
    number.divide(decimal(b), scale);
    return parts(number);
}

String rescaled(const BigDecimal& from, int scale) {
    BigDecimal number(from);
    number.setScale(scale);
    return parts(number);
}

int compare(const char16_t* a, const char16_t* b) { return decimal(a).compareTo(decimal(b)); }

// --- Construction ---

TEST(BigDecimalTest, ANewNumberIsZeroWithScaleZero) {
    const BigDecimal number;
    EXPECT_EQ(parts(number), u"0 0");
    EXPECT_EQ(number.toString(), u"0");
    EXPECT_EQ(number.getSize(), 0);
}

TEST(BigDecimalTest, MachineNumbersAreTaken) {
    EXPECT_EQ(parts(BigDecimal(-5)), u"-5 0");
    EXPECT_EQ(parts(BigDecimal(5u)), u"5 0");
    EXPECT_EQ(parts(BigDecimal(-5L)), u"-5 0");
    EXPECT_EQ(parts(BigDecimal(5UL)), u"5 0");
    EXPECT_EQ(parts(BigDecimal(std::numeric_limits<std::int64_t>::min())),
              u"-9223372036854775808 0");
    EXPECT_EQ(parts(BigDecimal(std::numeric_limits<std::uint64_t>::max())),
              u"18446744073709551615 0");
    EXPECT_EQ(parts(BigDecimal(BigInteger(-12), 7)), u"-12 7");
}

TEST(BigDecimalTest, MachineNumbersAreAssigned) {
    BigDecimal number = decimal(u"1.25");
    number = -3L;
    EXPECT_EQ(parts(number), u"-3 0");
    number = decimal(u"1.25");
    number = 4UL;
    EXPECT_EQ(parts(number), u"4 0");
    number = 2.5;
    EXPECT_EQ(parts(number), u"25 1");
    number = 1.5f;
    EXPECT_EQ(parts(number), u"15 1");
    number = 6;
    EXPECT_EQ(parts(number), u"6 0");
    number = 7u;
    EXPECT_EQ(parts(number), u"7 0");
    number = -8LL;
    EXPECT_EQ(parts(number), u"-8 0");
    number = 9ULL;
    EXPECT_EQ(parts(number), u"9 0");
    const BigDecimal other(number = decimal(u"0.5"));
    number = other;
    number = number;
    EXPECT_EQ(parts(number), u"5 1");
}

TEST(BigDecimalTest, AMoveLeavesTheOtherUsable) {
    BigDecimal number = decimal(u"-1.25");
    BigDecimal taken(std::move(number));
    EXPECT_EQ(parts(taken), u"-125 2");
    number = 3;
    taken = std::move(number);
    EXPECT_EQ(parts(taken), u"3 0");
}

TEST(BigDecimalTest, TextIsDigitsAndAPoint) {
    EXPECT_EQ(read(u"1.50"), u"15 1");
    EXPECT_EQ(read(u"1."), u"1 0");
    EXPECT_EQ(read(u".5"), u"5 1");
    EXPECT_EQ(read(u"12"), u"12 0");
    EXPECT_EQ(read(u"-1.25"), u"-125 2");
    EXPECT_EQ(read(u"1.000"), u"1 0");
    EXPECT_EQ(read(u"100"), u"100 0");
    EXPECT_EQ(read(u"0.05"), u"5 2");
    EXPECT_EQ(read(u"123456789012345678901234567890.123"), u"123456789012345678901234567890123 3");
}

TEST(BigDecimalTest, TextWithoutDigitsIsRefused) {
    const auto refused = [](const char16_t* text) {
        return support::thrownText<Exception>([&] { decimal(text); });
    };
    EXPECT_EQ(refused(u""), "Number Format Exception");
    EXPECT_EQ(refused(u"."), "Number Format Exception");
    EXPECT_EQ(refused(u".0"), "Number Format Exception");
    EXPECT_EQ(refused(u"1.-5"), "Number Format Exception");
}

TEST(BigDecimalTest, KeptNoExponentIsUnderstood) {
    EXPECT_EQ(read(u"1e5"), u"1 0");
    EXPECT_EQ(read(u"1.5e3"), u"1005 3");
    EXPECT_EQ(read(u"1.2.3"), u"1002 3");
}

TEST(BigDecimalTest, KeptManyLeadingZerosCostTheLastGroups) {
    EXPECT_EQ(read(u"0.001234"), u"1 6");
    EXPECT_EQ(read(u"0.0005"), u"5 4");
    EXPECT_EQ(read(u"0.01234"), u"1234 5");
}

TEST(BigDecimalTest, RealNumbersHaveSixDecimals) {
    EXPECT_EQ(parts(BigDecimal(0.1)), u"1 1");
    EXPECT_EQ(parts(BigDecimal(0.1f)), u"1 1");
    EXPECT_EQ(parts(BigDecimal(-2.5)), u"-25 1");
    EXPECT_EQ(parts(BigDecimal(1.23456789)), u"1234568 6");
    EXPECT_EQ(parts(BigDecimal(100.0)), u"100 0");
    EXPECT_EQ(parts(BigDecimal(1e-7)), u"0 0");
    EXPECT_EQ(parts(BigDecimal(1e22)), u"10000000000000000000000 0");
    EXPECT_EQ(BigDecimal(std::numeric_limits<double>::max()).toString().getLength(), 309);
}

TEST(BigDecimalTest, RealNumbersThatAreNotFiniteAreZero) {
    EXPECT_EQ(BigDecimal(std::numeric_limits<double>::infinity()).toString(), u"0");
    EXPECT_EQ(BigDecimal(-std::numeric_limits<double>::infinity()).toString(), u"0");
    EXPECT_EQ(BigDecimal(std::numeric_limits<double>::quiet_NaN()).toString(), u"0");
    EXPECT_EQ(BigDecimal(std::numeric_limits<float>::infinity()).toString(), u"0");
}

TEST(BigDecimalTest, AParsedTextReplacesValueAndScale) {
    class Open : public BigDecimal {
    public:
        using BigDecimal::parseDecimal;
    } number;
    number.parseDecimal(u"1.25");
    EXPECT_EQ(parts(number), u"125 2");
    number.parseDecimal(u"7");
    EXPECT_EQ(parts(number), u"7 0");
    EXPECT_THROW(number.parseDecimal(u""), Exception);
    EXPECT_EQ(parts(number), u"7 0");
}

// --- Text ---

TEST(BigDecimalTest, ThePointStandsInFrontOfTheLastDigits) {
    EXPECT_EQ(written(123, 3), u"0.123");
    EXPECT_EQ(written(123, 4), u"0.0123");
    EXPECT_EQ(written(123, 2), u"1.23");
    EXPECT_EQ(written(123, 0), u"123");
    EXPECT_EQ(written(0, 2), u"0.00");
    EXPECT_EQ(written(0, 1), u"0.0");
    EXPECT_EQ(written(0, 0), u"0");
    EXPECT_EQ(written(-123, 2), u"-1.23");
}

TEST(BigDecimalTest, ANegativeScaleWritesTheValue) {
    EXPECT_EQ(written(123, -2), u"123");
    EXPECT_EQ(written(-1, std::numeric_limits<int>::min()), u"-1");
}

TEST(BigDecimalTest, KeptTheMinusSignCountsAsADigit) {
    EXPECT_EQ(written(-5, 2), u"0.-5");
    EXPECT_EQ(written(-5, 1), u"-.5");
    EXPECT_EQ(written(-5, 3), u"0.0-5");
    EXPECT_EQ(written(-123, 3), u"-.123");
}

TEST(BigDecimalTest, AnEndlessTextIsRefused) {
    EXPECT_THROW(static_cast<void>(written(1, std::numeric_limits<int>::max())), std::bad_alloc);
}

// --- Arithmetic ---

TEST(BigDecimalTest, SumsWithOneScaleAreExact) {
    EXPECT_EQ(sum(u"1.5", u"2.7"), u"4.2");
    EXPECT_EQ(sum(u"-1.5", u"1.5"), u"0.0");
    EXPECT_EQ(difference(u"1.5", u"2.7"), u"-1.2");
}

TEST(BigDecimalTest, KeptSumsWithTwoScalesTakeTheValuesAsTheyAre) {
    EXPECT_EQ(sum(u"1.5", u"1"), u"1.6");
    EXPECT_EQ(sum(u"1", u"1.5"), u"1.6");
    EXPECT_EQ(difference(u"1.5", u"1"), u"1.4");
    EXPECT_EQ(difference(u"1", u"0.25"), u"-.24");
}

TEST(BigDecimalTest, ProductsAddTheScales) {
    EXPECT_EQ(product(u"1.5", u"0.25"), u"0.375");
    EXPECT_EQ(product(u"-1.5", u"2"), u"-3.0");
}

TEST(BigDecimalTest, ScalesBeyondAnIntWrapAround) {
    BigDecimal number(1, std::numeric_limits<int>::max());
    number.multiply(BigDecimal(1, 1));
    EXPECT_EQ(number.getScale(), std::numeric_limits<int>::min());
}

TEST(BigDecimalTest, QuotientsHaveTheScaleAskedFor) {
    EXPECT_EQ(quotient(u"1", u"3", 2), u"33 2");
    EXPECT_EQ(quotient(u"2", u"3", 2), u"67 2");
    EXPECT_EQ(quotient(u"1.5", u"0.5", 0), u"3 0");
    EXPECT_EQ(quotient(u"1", u"8", 3), u"125 3");
    EXPECT_EQ(quotient(u"90", u"3", -1), u"3 -1");
    EXPECT_EQ(quotient(u"0", u"3", 2), u"0 2");
}

TEST(BigDecimalTest, HalvesAreRoundedAwayFromZero) {
    EXPECT_EQ(quotient(u"1", u"8", 2), u"13 2");
    EXPECT_EQ(quotient(u"-1", u"8", 2), u"-13 2");
    EXPECT_EQ(quotient(u"1", u"2", 0), u"1 0");
    EXPECT_EQ(quotient(u"-1", u"2", 0), u"-1 0");
    EXPECT_EQ(quotient(u"-2", u"3", 2), u"-67 2");
    EXPECT_EQ(quotient(u"-7", u"2", 0), u"-4 0");
    EXPECT_EQ(quotient(u"7", u"-2", 0), u"-4 0");
    EXPECT_EQ(quotient(u"-7", u"-2", 0), u"4 0");
}

TEST(BigDecimalTest, KeptANegativeDivisorRoundsUpEveryRest) {
    EXPECT_EQ(quotient(u"1", u"-3", 2), u"-34 2");
    EXPECT_EQ(quotient(u"-1", u"-3", 2), u"34 2");
    EXPECT_EQ(quotient(u"6", u"-3", 2), u"-200 2");
}

TEST(BigDecimalTest, KeptADivisorThatWasShiftedIsAskedAsItWasGiven) {
    EXPECT_EQ(quotient(u"1.2345", u"1", 2), u"124 2");
    EXPECT_EQ(quotient(u"100", u"3", -1), u"4 -1");
}

TEST(BigDecimalTest, DivisionByZeroIsRefusedAndChangesNothing) {
    BigDecimal number = decimal(u"1.25");
    EXPECT_EQ(support::thrownText<Exception>([&] { number.divide(BigDecimal(), 10); }),
              "Divide by zero.");
    EXPECT_EQ(parts(number), u"125 2");
}

TEST(BigDecimalTest, ScaleIsChangedWithTheValue) {
    EXPECT_EQ(rescaled(decimal(u"1.25"), 1), u"12 1");
    EXPECT_EQ(rescaled(decimal(u"-1.25"), 1), u"-12 1");
    EXPECT_EQ(rescaled(decimal(u"1.25"), 2), u"125 2");
    EXPECT_EQ(rescaled(decimal(u"1.25"), 3), u"1250 3");
    EXPECT_EQ(rescaled(decimal(u"1.25"), 5), u"125000 5");
    EXPECT_EQ(rescaled(decimal(u"1.25"), 0), u"1 0");
    EXPECT_EQ(rescaled(decimal(u"125"), -1), u"12 -1");
    EXPECT_EQ(rescaled(decimal(u"1.25"), -5), u"0 -5");
}

TEST(BigDecimalTest, ScalesFarApartTakeNoTimeWhereNothingIsLeft) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    EXPECT_EQ(rescaled(BigDecimal(123, most), least), String(u"0 ") + String::valueOf(least));
    EXPECT_EQ(rescaled(BigDecimal(0, least), most), String(u"0 ") + String::valueOf(most));
    BigDecimal number(1, 0);
    EXPECT_THROW(number.setScale(most), std::bad_alloc);
    EXPECT_EQ(parts(number), u"1 0");
}

TEST(BigDecimalTest, NegationAndAbsoluteValueAreThoseOfTheValue) {
    BigDecimal number = decimal(u"1.25");
    number.negate();
    EXPECT_TRUE(number.isNegative());
    EXPECT_EQ(number.abs().toString(), u"125");
    EXPECT_TRUE(number.isNegative());
    EXPECT_EQ(number.getSize(), 1);
    EXPECT_EQ(number.getData()[0], 125);
}

TEST(BigDecimalTest, AnArgumentMayBeTheObjectItself) {
    BigDecimal number = decimal(u"1.5");
    number.add(number);
    EXPECT_EQ(number.toString(), u"3.0");
    number.multiply(number);
    EXPECT_EQ(number.toString(), u"9.00");
    number.divide(number, 3);
    EXPECT_EQ(number.toString(), u"1.000");
    number.subtract(number);
    EXPECT_EQ(number.toString(), u"0.000");
    EXPECT_EQ(number.compareTo(number), 0);
}

// --- Comparison and conversions ---

TEST(BigDecimalTest, ComparisonIsASign) {
    EXPECT_EQ(compare(u"1.5", u"1.4"), 1);
    EXPECT_EQ(compare(u"1.4", u"1.5"), -1);
    EXPECT_EQ(compare(u"1.5", u"1.5"), 0);
    EXPECT_EQ(compare(u"-1.5", u"1.5"), -1);
}

TEST(BigDecimalTest, KeptComparisonTakesTheValuesAsTheyAre) {
    EXPECT_EQ(compare(u"1.5", u"2"), 1);
    EXPECT_EQ(compare(u"1.5", u"15"), 0);
}

TEST(BigDecimalTest, KeptANegativeZeroIsBelowZeroFromItsOwnSideAlone) {
    EXPECT_EQ(compare(u"-0", u"0"), -1);
    EXPECT_EQ(compare(u"0", u"-0"), 0);
}

TEST(BigDecimalTest, AnObjectIsComparedAsABigDecimal) {
    const auto object = [](const BigDecimal& number, const Object& other) {
        return number.compareTo(other);
    };
    EXPECT_EQ(object(decimal(u"1.5"), Double(1.5)), 0);
    EXPECT_EQ(object(decimal(u"3"), Integer8(4)), -1);
    EXPECT_EQ(object(decimal(u"3"), BigInteger(2)), 1);
    const BigDecimal number(1);
    EXPECT_EQ(object(number, number), 0);
    EXPECT_TRUE(number.equals(Integer32(1)));
    EXPECT_THROW(object(number, String(u"1")), CastFailedException);
}

TEST(BigDecimalTest, ConversionsCutTheFraction) {
    EXPECT_EQ(decimal(u"1.75").toBigInteger().toString(), u"1");
    EXPECT_EQ(decimal(u"-1.75").toBigInteger().toString(), u"-1");
    EXPECT_EQ(decimal(u"-1.75").toInt64(), -1);
    EXPECT_EQ(decimal(u"1.75").toInt32(), 1);
    EXPECT_EQ(decimal(u"1.75").toDouble(), 1.75);
    EXPECT_EQ(decimal(u"1.75").toFloat(), 1.75f);
    EXPECT_EQ(decimal(u"1.75").hashCode(), 1u);
    EXPECT_EQ(parts(decimal(u"1.75").toBigDecimal()), u"175 2");
    EXPECT_EQ(BigDecimal(5, -2).toBigInteger().toString(), u"500");
    EXPECT_EQ(decimal(u"-0.5").toDouble(), -0.5);
}

TEST(BigDecimalTest, KeptRealValueIsThatOfTheText) {
    EXPECT_EQ(BigDecimal(-5, 2).toDouble(), 0.0);
    EXPECT_EQ(BigDecimal(5, -2).toDouble(), 5.0);
}

TEST(BigDecimalTest, KeptRealValueReads255Characters) {
    BigInteger great(10);
    great.pow(300);
    EXPECT_EQ(BigDecimal(great, 0).toDouble(), 1e254);
    great = 10;
    great.pow(254);
    EXPECT_EQ(BigDecimal(great, 0).toDouble(), 1e254);
    EXPECT_EQ(BigDecimal(great, 0).toInt64(), std::numeric_limits<std::int64_t>::min());
}

} // namespace
