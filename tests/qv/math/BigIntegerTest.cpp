#include "qv/math/BigInteger.h"

#include "qv/Double.h"
#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "qv/math/BigDecimal.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <limits>
#include <utility>

using namespace qv;
using math::BigInteger;

namespace {

BigInteger big(const char16_t* text, int radix = 10) { return BigInteger(text, radix); }

BigInteger negativeZero() {
    BigInteger zero;
    zero.negate();
    return zero;
}

/// The text of an operation's result, "-0" for a negative zero.
String after(BigInteger number, void (BigInteger::*operation)(const BigInteger&),
             const BigInteger& x) {
    (number.*operation)(x);
    return number.isZero() && number.isNegative() ? String(u"-0") : number.toString();
}

String sum(const BigInteger& a, const BigInteger& b) { return after(a, &BigInteger::add, b); }
String difference(const BigInteger& a, const BigInteger& b) {
    return after(a, &BigInteger::subtract, b);
}
String product(const BigInteger& a, const BigInteger& b) {
    return after(a, &BigInteger::multiply, b);
}
String modulo(const BigInteger& a, const BigInteger& b) { return after(a, &BigInteger::mod, b); }
String power(const BigInteger& a, const BigInteger& b) { return after(a, &BigInteger::pow, b); }
String inverse(const BigInteger& a, const BigInteger& b) {
    return after(a, &BigInteger::modInverse, b);
}
String commonDivisor(const BigInteger& a, const BigInteger& b) {
    return after(a, &BigInteger::gcd, b);
}

/// Quotient, blank, remainder.
String quotient(BigInteger a, const BigInteger& b) {
    BigInteger remainder(99);
    a.divide(b, remainder);
    EXPECT_FALSE(remainder.isNegative());
    return a.toString() + u" " + remainder.toString();
}

template <class Work>
std::string refused(Work work) {
    return support::thrownText<Exception>(work);
}

// --- Construction and storage ---

TEST(BigIntegerTest, ANewNumberIsZeroWithoutMemory) {
    BigInteger number;
    EXPECT_TRUE(number.isZero());
    EXPECT_FALSE(number.isNegative());
    EXPECT_EQ(number.getSize(), 0);
    EXPECT_EQ(number.getBitCount(), 0);
    EXPECT_EQ(number.getData(), nullptr);
}

TEST(BigIntegerTest, MachineIntegersOfAllKindsAreTaken) {
    EXPECT_EQ(BigInteger(std::numeric_limits<int>::min()).toString(), u"-2147483648");
    EXPECT_EQ(BigInteger(4294967295u).toString(), u"4294967295");
    EXPECT_EQ(BigInteger(-5L).toString(), u"-5");
    EXPECT_EQ(BigInteger(5UL).toString(), u"5");
    EXPECT_EQ(BigInteger(std::numeric_limits<std::int64_t>::min()).toString(),
              u"-9223372036854775808");
    EXPECT_EQ(BigInteger(std::numeric_limits<std::uint64_t>::max()).toString(),
              u"18446744073709551615");
    BigInteger number(u"123456789012345678901234567890");
    number = -7;
    EXPECT_EQ(number.toString(), u"-7");
    number = 7u;
    EXPECT_EQ(number.toString(), u"7");
    number = -8L;
    EXPECT_EQ(number.toString(), u"-8");
    number = 8UL;
    EXPECT_EQ(number.toString(), u"8");
    number = -9LL;
    EXPECT_EQ(number.toString(), u"-9");
    number = 9ULL;
    EXPECT_EQ(number.toString(), u"9");
    number = 0;
    EXPECT_EQ(number.getSize(), 0);
}

TEST(BigIntegerTest, BytesAreTakenLeastSignificantFirstWithoutHighZeros) {
    const signed char bytes[] = {1, 2, -1, 0, 0};
    BigInteger number(bytes, 5, true);
    EXPECT_EQ(number.toString(16), u"-ff0201");
    EXPECT_EQ(number.getSize(), 3);
    EXPECT_EQ(number.getData()[2], -1);
    EXPECT_TRUE(BigInteger(bytes + 3, 2, false).isZero());
    EXPECT_TRUE(BigInteger(nullptr, 0, true).isNegative());
}

TEST(BigIntegerTest, CopiesAreIndependent) {
    BigInteger number(5);
    BigInteger copy(number);
    number.add(1);
    EXPECT_EQ(copy.toString(), u"5");
    copy = number;
    copy = copy;
    number.negate();
    EXPECT_EQ(copy.toString(), u"6");
}

TEST(BigIntegerTest, AMoveLeavesZero) {
    BigInteger number(-5);
    const BigInteger taken(std::move(number));
    EXPECT_EQ(taken.toString(), u"-5");
    EXPECT_TRUE(number.isZero());
    EXPECT_FALSE(number.isNegative());
}

TEST(BigIntegerTest, ConstantsAreZeroAndOne) {
    EXPECT_TRUE(BigInteger::ZERO.isZero());
    EXPECT_EQ(BigInteger::ONE.toString(), u"1");
}

TEST(BigIntegerTest, SizeIsThatOfTheMagnitudeInBytes) {
    BigInteger number(255);
    EXPECT_EQ(number.getSize(), 1);
    number.add(1);
    EXPECT_EQ(number.getBitCount(), 9);
    EXPECT_EQ(number.getSize(), 2);
    number.subtract(1);
    EXPECT_EQ(number.getSize(), 1);
    EXPECT_EQ(number.getBitCount(), 8);
}

/// Shows the protected operations.
class Open : public BigInteger {
public:
    using BigInteger::BigInteger;
    using BigInteger::ensureCapacity;
    using BigInteger::setByteArray;
    using BigInteger::setSize;
};

TEST(BigIntegerTest, AGreaterSizeIsFilledWithZeros) {
    Open number(0x1234);
    number.setSize(20);
    EXPECT_EQ(number.getSize(), 20);
    EXPECT_EQ(number.toString(16), u"1234");
    for (int i = 2; i < 20; ++i) {
        EXPECT_EQ(number.getData()[i], 0);
    }
    EXPECT_EQ(number.compareTo(BigInteger(0x1234)), 0);
}

TEST(BigIntegerTest, ASmallerSizeDropsTheBytesForGood) {
    Open number(0x123456);
    number.setSize(1);
    EXPECT_EQ(number.toString(16), u"56");
    number.setSize(3);
    EXPECT_EQ(number.toString(16), u"56");
    number.setSize(-1);
    EXPECT_EQ(number.getSize(), 0);
}

TEST(BigIntegerTest, CapacityKeepsTheBytes) {
    Open number(0x1234);
    number.ensureCapacity(1000);
    EXPECT_EQ(number.getSize(), 2);
    EXPECT_EQ(number.toString(16), u"1234");
}

TEST(BigIntegerTest, ItsOwnBytesCanBeTaken) {
    Open number(0x123456);
    number.setByteArray(number.getData() + 1, 2, true);
    EXPECT_EQ(number.toString(16), u"-1234");
}

// --- Sums, differences, products ---

TEST(BigIntegerTest, SumsOfAllSigns) {
    EXPECT_EQ(sum(5, 3), u"8");
    EXPECT_EQ(sum(5, -3), u"2");
    EXPECT_EQ(sum(-5, 3), u"-2");
    EXPECT_EQ(sum(-5, -3), u"-8");
    EXPECT_EQ(sum(3, -5), u"-2");
    EXPECT_EQ(sum(5, -5), u"0");
    EXPECT_EQ(sum(0, -5), u"-5");
    EXPECT_EQ(sum(big(u"ffffffffffffffffffffffffffffffff", 16), 1),
              big(u"100000000000000000000000000000000", 16).toString());
}

TEST(BigIntegerTest, DifferencesOfAllSigns) {
    EXPECT_EQ(difference(5, 3), u"2");
    EXPECT_EQ(difference(3, 5), u"-2");
    EXPECT_EQ(difference(-5, -3), u"-2");
    EXPECT_EQ(difference(-3, -5), u"2");
    EXPECT_EQ(difference(5, -3), u"8");
    EXPECT_EQ(difference(-5, 3), u"-8");
    EXPECT_EQ(difference(-5, -5), u"0");
    EXPECT_EQ(difference(0, 5), u"-5");
    EXPECT_EQ(difference(big(u"100000000000000000000000000000000", 16), 1),
              big(u"ffffffffffffffffffffffffffffffff", 16).toString());
}

TEST(BigIntegerTest, ProductsOfAllSigns) {
    EXPECT_EQ(product(5, 3), u"15");
    EXPECT_EQ(product(5, -3), u"-15");
    EXPECT_EQ(product(-5, -3), u"15");
    EXPECT_EQ(product(big(u"18446744073709551615"), big(u"18446744073709551615")),
              u"340282366920938463426481119284349108225");
}

TEST(BigIntegerTest, KeptZeroHasASign) {
    BigInteger zero;
    zero.negate();
    EXPECT_TRUE(zero.isZero());
    EXPECT_TRUE(zero.isNegative());
    EXPECT_EQ(zero.compareTo(BigInteger::ZERO), -1);
    EXPECT_EQ(BigInteger::ZERO.compareTo(zero), 1);
    EXPECT_EQ(zero.compareTo(negativeZero()), 0);
    EXPECT_EQ(zero.toString(), u"0");
    zero.abs();
    EXPECT_EQ(zero.compareTo(BigInteger::ZERO), 0);
}

TEST(BigIntegerTest, KeptSignsOfZerosInSumsAndProducts) {
    EXPECT_EQ(sum(negativeZero(), negativeZero()), u"-0");
    EXPECT_EQ(sum(negativeZero(), 0), u"0");
    EXPECT_EQ(sum(0, negativeZero()), u"0");
    EXPECT_EQ(difference(negativeZero(), 0), u"-0");
    EXPECT_EQ(difference(0, negativeZero()), u"0");
    EXPECT_EQ(difference(negativeZero(), negativeZero()), u"0");
    EXPECT_EQ(product(0, -5), u"-0");
    EXPECT_EQ(product(negativeZero(), -5), u"0");
    EXPECT_EQ(sum(negativeZero(), 5), u"5");
    EXPECT_EQ(sum(-5, 0), u"-5");
}

// --- Quotients ---

TEST(BigIntegerTest, QuotientsAreCutTowardZero) {
    EXPECT_EQ(quotient(7, 2), u"3 1");
    EXPECT_EQ(quotient(-7, 2), u"-3 1");
    EXPECT_EQ(quotient(7, -2), u"-3 1");
    EXPECT_EQ(quotient(-7, -2), u"3 1");
    EXPECT_EQ(quotient(6, 3), u"2 0");
    EXPECT_EQ(
        quotient(big(u"340282366920938463463374607431768211456"), big(u"18446744073709551616")),
        u"18446744073709551616 0");
}

TEST(BigIntegerTest, KeptTheRemainderIsNeverNegative) {
    EXPECT_EQ(quotient(-3, 7), u"0 3");
    EXPECT_EQ(quotient(-3, -7), u"0 3");
    EXPECT_EQ(quotient(-7, 7), u"-1 0");
    EXPECT_EQ(quotient(0, -7), u"0 0");
}

TEST(BigIntegerTest, AQuotientOfZeroIsPositive) {
    BigInteger number(-3);
    BigInteger remainder;
    number.divide(7, remainder);
    EXPECT_FALSE(number.isNegative());
    BigInteger zero = negativeZero();
    zero.divide(7, remainder);
    EXPECT_FALSE(zero.isNegative());
    EXPECT_FALSE(remainder.isNegative());
}

TEST(BigIntegerTest, DivisionByZeroIsRefused) {
    BigInteger number(5);
    BigInteger remainder(9);
    EXPECT_EQ(refused([&] { number.divide(0, remainder); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { number.divide(negativeZero(), remainder); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { number.mod(0); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { number.mod(negativeZero()); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { number.gcd(0); }), "Divide by zero.");
    EXPECT_EQ(number.toString(), u"5");
    EXPECT_EQ(remainder.toString(), u"9");
}

TEST(BigIntegerTest, ModulusMustNotBeNegative) {
    BigInteger number(5);
    EXPECT_EQ(refused([&] { number.mod(-3); }), "Modulus can't be negative.");
    EXPECT_EQ(refused([&] { number.modPow(2, -3); }), "Modulus can't be negative.");
    EXPECT_EQ(refused([&] { number.modInverse(-3); }), "Modulus can't be negative.");
    EXPECT_EQ(number.toString(), u"5");
}

TEST(BigIntegerTest, ModGivesTheRest) {
    EXPECT_EQ(modulo(7, 3), u"1");
    EXPECT_EQ(modulo(-7, 3), u"2");
    EXPECT_EQ(modulo(2, 3), u"2");
    EXPECT_EQ(modulo(-1, 3), u"2");
    EXPECT_EQ(modulo(6, 3), u"0");
}

TEST(BigIntegerTest, KeptANegativeMultipleGivesTheModulus) {
    EXPECT_EQ(modulo(-6, 3), u"3");
    EXPECT_EQ(modulo(-3, 3), u"3");
    EXPECT_EQ(modulo(negativeZero(), 3), u"3");
}

// --- Powers ---

TEST(BigIntegerTest, Powers) {
    EXPECT_EQ(power(2, 10), u"1024");
    EXPECT_EQ(power(-3, 3), u"-27");
    EXPECT_EQ(power(-3, 4), u"81");
    EXPECT_EQ(power(0, 5), u"0");
    EXPECT_EQ(power(10, 40), u"10000000000000000000000000000000000000000");
    EXPECT_EQ(power(7, 1), u"7");
}

TEST(BigIntegerTest, KeptTheExponentZeroLeavesTheValue) {
    EXPECT_EQ(power(7, 0), u"7");
    EXPECT_EQ(power(-7, 0), u"-7");
    EXPECT_EQ(power(0, 0), u"0");
    EXPECT_EQ(power(negativeZero(), 0), u"-0");
}

TEST(BigIntegerTest, GreatExponentsOfZeroAndOneTakeNoTime) {
    const BigInteger exponent(u"123456789012345678901234567891");
    EXPECT_EQ(power(1, exponent), u"1");
    EXPECT_EQ(power(-1, exponent), u"-1");
    EXPECT_EQ(power(0, exponent), u"0");
    EXPECT_EQ(power(negativeZero(), exponent), u"-0");
}

TEST(BigIntegerTest, APowerWithoutRoomIsRefusedAtOnce) {
    BigInteger number(2);
    EXPECT_THROW(number.pow(BigInteger(u"123456789012345678901234567891")), std::bad_alloc);
    EXPECT_THROW(number.pow(std::numeric_limits<std::uint32_t>::max()), std::bad_alloc);
    EXPECT_EQ(number.toString(), u"2");
}

TEST(BigIntegerTest, NegativeExponentsAreRefused) {
    BigInteger number(2);
    EXPECT_EQ(refused([&] { number.pow(-1); }), "Negative Exponent");
    EXPECT_EQ(refused([&] { number.pow(negativeZero()); }), "Negative Exponent");
    EXPECT_EQ(number.toString(), u"2");
}

String modularPower(BigInteger number, const BigInteger& e, const BigInteger& m) {
    number.modPow(e, m);
    return number.toString();
}

TEST(BigIntegerTest, ModularPowers) {
    EXPECT_EQ(modularPower(3, 200, 13), u"9");
    EXPECT_EQ(modularPower(-3, 3, 7), u"1");
    EXPECT_EQ(modularPower(-3, 4, 7), u"4");
    EXPECT_EQ(modularPower(5, 3, 1), u"0");
    EXPECT_EQ(modularPower(12, 5, 6), u"0");
    EXPECT_EQ(modularPower(12, 5, 64), u"0");
    EXPECT_EQ(modularPower(7, 1000003, big(u"340282366920938463463374607431768211456")),
              modularPower(7, 1000003, big(u"100000000000000000000000000000000", 16)));
}

TEST(BigIntegerTest, KeptAModularPowerWithExponentZeroReducesTheValue) {
    EXPECT_EQ(modularPower(10, 0, 7), u"3");
    EXPECT_EQ(modularPower(-10, 0, 7), u"4");
}

TEST(BigIntegerTest, KeptANegativeModularPowerThatIsAMultipleGivesTheModulus) {
    EXPECT_EQ(modularPower(-6, 3, 9), u"9");
    EXPECT_EQ(modularPower(-6, 4, 9), u"0");
    EXPECT_EQ(modularPower(negativeZero(), 3, 9), u"9");
    EXPECT_EQ(modularPower(-5, 3, 1), u"1");
}

TEST(BigIntegerTest, KeptAModularPowerWithANegativeExponentIsNotReduced) {
    EXPECT_EQ(modularPower(3, -2, 7), u"25");
    EXPECT_EQ(modularPower(3, -1, 7), u"5");
    EXPECT_EQ(modularPower(3, negativeZero(), 7), u"5");
}

TEST(BigIntegerTest, ModularPowersRefuseWhatTheirPartsRefuse) {
    BigInteger number(2);
    EXPECT_EQ(refused([&] { number.modPow(2, 0); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { number.modPow(-2, 4); }), "Not invertible.");
    EXPECT_EQ(number.toString(), u"2");
}

TEST(BigIntegerTest, Inverses) {
    EXPECT_EQ(inverse(3, 7), u"5");
    EXPECT_EQ(inverse(10, 7), u"5");
    EXPECT_EQ(inverse(1, 7), u"1");
    EXPECT_EQ(inverse(1, 1), u"0");
    EXPECT_EQ(inverse(big(u"12345678901234567890"), big(u"1000000000000000000000007")),
              u"776044878128641747620982");
}

TEST(BigIntegerTest, KeptTheInverseOfANegativeNumberMayBeThatOfItsNegative) {
    EXPECT_EQ(inverse(-3, 7), u"2");
    EXPECT_EQ(inverse(-5, 7), u"3");
}

TEST(BigIntegerTest, NumbersWithoutInverseAreRefused) {
    BigInteger number(2);
    EXPECT_EQ(refused([&] { number.modInverse(4); }), "Not invertible.");
    EXPECT_EQ(refused([&] { number.modInverse(0); }), "Not invertible.");
    EXPECT_EQ(refused([&] { BigInteger(-1).modInverse(7); }), "Not invertible.");
    EXPECT_EQ(refused([&] { BigInteger(0).modInverse(7); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { BigInteger(1).modInverse(0); }), "Divide by zero.");
    EXPECT_EQ(refused([&] { BigInteger(2).modInverse(-4); }), "Not invertible.");
    EXPECT_EQ(number.toString(), u"2");
}

TEST(BigIntegerTest, CommonDivisors) {
    EXPECT_EQ(commonDivisor(12, 18), u"6");
    EXPECT_EQ(commonDivisor(18, 12), u"6");
    EXPECT_EQ(commonDivisor(-12, 18), u"6");
    EXPECT_EQ(commonDivisor(12, -18), u"6");
    EXPECT_EQ(commonDivisor(7, 13), u"1");
    EXPECT_EQ(commonDivisor(0, 5), u"5");
}

TEST(BigIntegerTest, KeptACommonDivisorHasTheSignOfTheLastDivisor) {
    EXPECT_EQ(commonDivisor(12, -4), u"-4");
    EXPECT_EQ(commonDivisor(0, -5), u"-5");
}

// --- Operations on the object itself ---

TEST(BigIntegerAliasTest, AnArgumentMayBeTheObjectItself) {
    const auto onItself = [](BigInteger number, void (BigInteger::*operation)(const BigInteger&)) {
        (number.*operation)(number);
        return number.toString();
    };
    const BigInteger number(u"123456789012345678901234567890");
    EXPECT_EQ(onItself(number, &BigInteger::add), u"246913578024691357802469135780");
    EXPECT_EQ(onItself(number, &BigInteger::subtract), u"0");
    EXPECT_EQ(onItself(number, &BigInteger::multiply),
              u"15241578753238836750495351562536198787501905199875019052100");
    EXPECT_EQ(onItself(number, &BigInteger::mod), u"0");
    EXPECT_EQ(onItself(number, &BigInteger::gcd), number.toString());
    EXPECT_EQ(onItself(4, &BigInteger::pow), u"256");
    EXPECT_EQ(onItself(-4, &BigInteger::gcd), u"-4");
    EXPECT_EQ(onItself(1, &BigInteger::modInverse), u"0");
    EXPECT_EQ(onItself(big(u"8000000000000000", 16), &BigInteger::add), u"18446744073709551616");
}

TEST(BigIntegerAliasTest, ModularPowerTakesTheObjectInEveryPlace) {
    BigInteger number(7);
    number.modPow(number, 100);
    EXPECT_EQ(number.toString(), u"43");
    number.modPow(3, number);
    EXPECT_EQ(number.toString(), u"0");
}

TEST(BigIntegerAliasTest, TheQuotientPrevailsWhereTheRemainderIsTheObject) {
    BigInteger number(17);
    number.divide(5, number);
    EXPECT_EQ(number.toString(), u"3");
    number.divide(5, number);
    EXPECT_EQ(number.toString(), u"0");
}

TEST(BigIntegerAliasTest, TheRemainderMayBeTheDivisor) {
    BigInteger number(17);
    BigInteger divisor(5);
    number.divide(divisor, divisor);
    EXPECT_EQ(number.toString(), u"3");
    EXPECT_EQ(divisor.toString(), u"2");
    number.divide(divisor = 100, divisor);
    EXPECT_EQ(divisor.toString(), u"3");
}

TEST(BigIntegerAliasTest, ANumberDividedByItselfIsOne) {
    BigInteger number(-17);
    BigInteger remainder(1);
    number.divide(number, remainder);
    EXPECT_EQ(number.toString(), u"1");
    EXPECT_TRUE(remainder.isZero());
    number = 17;
    number.divide(number, number);
    EXPECT_EQ(number.toString(), u"1");
}

// --- Bits ---

TEST(BigIntegerTest, SetBitGrowsTheNumber) {
    BigInteger number;
    number.setBit(0);
    number.setBit(100);
    EXPECT_EQ(number.getBitCount(), 101);
    EXPECT_EQ(number.getSize(), 13);
    EXPECT_EQ(number.toString(16), u"10000000000000000000000001");
    number.setBit(0);
    number.setBit(-1);
    EXPECT_EQ(number.toString(16), u"10000000000000000000000001");
}

TEST(BigIntegerTest, ABitWithoutRoomIsRefused) {
    BigInteger number(1);
    EXPECT_THROW(number.setBit(std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(number.toString(), u"1");
}

TEST(BigIntegerTest, KeptClearBitTakesTheLowerBitsOfItsByteAlong) {
    BigInteger number(0xFF);
    number.clearBit(3);
    EXPECT_EQ(number.toString(16), u"f0");
    BigInteger three(3);
    three.clearBit(1);
    EXPECT_TRUE(three.isZero());
    BigInteger wide(0xFFFF);
    wide.clearBit(9);
    EXPECT_EQ(wide.toString(16), u"fcff");
    wide.clearBit(7);
    EXPECT_EQ(wide.toString(16), u"fc00");
}

TEST(BigIntegerTest, ClearBitPastTheSizeDoesNothing) {
    BigInteger number(0xFF);
    number.clearBit(8);
    number.clearBit(std::numeric_limits<int>::max());
    number.clearBit(-1);
    EXPECT_EQ(number.toString(16), u"ff");
    BigInteger().clearBit(0);
}

TEST(BigIntegerTest, KeptClearBitLeavesTheSize) {
    BigInteger number(0x1FF);
    number.clearBit(8);
    EXPECT_EQ(number.getSize(), 2);
    EXPECT_EQ(number.getBitCount(), 8);
    EXPECT_EQ(number.toString(16), u"ff");
}

TEST(BigIntegerTest, AZeroByteOnTopChangesNoResult) {
    BigInteger number(u"100000000000000000000000000000005", 16);
    number.clearBit(128);
    EXPECT_EQ(number.getSize(), 17);
    EXPECT_EQ(number.compareTo(BigInteger(5)), 0);
    EXPECT_EQ(sum(number, 1), u"6");
    EXPECT_EQ(difference(3, number), u"-2");
    EXPECT_EQ(product(number, number), u"25");
    EXPECT_EQ(quotient(17, number), u"3 2");
    EXPECT_EQ(quotient(number, 3), u"1 2");
    EXPECT_EQ(number.toString(), u"5");
    EXPECT_EQ(number.toInt64(), 5);
    BigInteger zero(u"100000000000000000000000000000000", 16);
    zero.clearBit(128);
    EXPECT_TRUE(zero.isZero());
    EXPECT_EQ(refused([&] { number.mod(zero); }), "Divide by zero.");
    EXPECT_EQ(sum(zero, zero), u"0");
}

// --- Comparison and conversions ---

TEST(BigIntegerTest, ComparisonIsExactlyASign) {
    EXPECT_EQ(BigInteger(5).compareTo(BigInteger(3)), 1);
    EXPECT_EQ(BigInteger(3).compareTo(BigInteger(5)), -1);
    EXPECT_EQ(BigInteger(-5).compareTo(BigInteger(3)), -1);
    EXPECT_EQ(BigInteger(-5).compareTo(BigInteger(-3)), -1);
    EXPECT_EQ(BigInteger(-3).compareTo(BigInteger(-5)), 1);
    EXPECT_EQ(BigInteger(-3).compareTo(BigInteger(-3)), 0);
    EXPECT_EQ(BigInteger(256).compareTo(BigInteger(255)), 1);
    EXPECT_EQ(BigInteger(-256).compareTo(BigInteger(-255)), -1);
}

TEST(BigIntegerTest, AnObjectIsComparedAsABigInteger) {
    const auto compare = [](const BigInteger& number, const Object& other) {
        return number.compareTo(other);
    };
    EXPECT_EQ(compare(5, Double(4.9)), 1);
    EXPECT_EQ(compare(4, Double(4.9)), 0);
    EXPECT_EQ(compare(5, Integer64(5)), 0);
    EXPECT_EQ(compare(5, BigInteger(6)), -1);
    const BigInteger number(1);
    EXPECT_EQ(compare(number, number), 0);
    EXPECT_THROW(compare(5, String(u"5")), CastFailedException);
    EXPECT_TRUE(number.equals(Integer8(1)));
}

TEST(BigIntegerTest, ConversionsTakeTheLow63Bits) {
    EXPECT_EQ(BigInteger(std::numeric_limits<std::int64_t>::max()).toInt64(),
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(BigInteger(-5).toInt64(), -5);
    EXPECT_EQ(BigInteger().toInt64(), 0);
    EXPECT_EQ(big(u"10000000000000007", 16).toInt64(), 7);
    EXPECT_EQ(BigInteger(-5).toInt32(), -5);
    EXPECT_EQ(BigInteger(-5).hashCode(), 0xFFFFFFFBu);
    EXPECT_EQ(BigInteger(5).toDouble(), 5.0);
    EXPECT_EQ(BigInteger(5).toBigInteger().toString(), u"5");
    EXPECT_EQ(BigInteger(-5).toBigDecimal().toString(), u"-5");
    EXPECT_EQ(big(u"18446744073709551617").toBigDecimal().toString(), u"18446744073709551617");
}

TEST(BigIntegerTest, KeptTheTopBitIsMaskedOff) {
    EXPECT_EQ(big(u"9223372036854775808").toInt64(), 0);
    EXPECT_EQ(big(u"-9223372036854775808").toInt64(), 0);
    EXPECT_EQ(big(u"-9223372036854775813").toInt64(), -5);
    EXPECT_EQ(big(u"18446744073709551616").toDouble(), 0.0);
}

TEST(BigIntegerTest, WhatCannotBeInvertedStaysAsItWas) {
    constexpr std::pair<int, int> pairs[] = {{2, 4}, {4, 6}, {6, 15}, {10, 24}};
    for (const auto& [value, modulus] : pairs) {
        BigInteger number(value);
        EXPECT_EQ(refused([&] { number.modInverse(modulus); }), "Not invertible.");
        EXPECT_EQ(number.compareTo(value), 0) << value << " modulo " << modulus;
    }
}

} // namespace
