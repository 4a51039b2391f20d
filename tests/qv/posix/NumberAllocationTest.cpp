// Where a big number needs memory and there is none, it stays as it was. On this system only: a
// Windows module has operators of its own, which a program cannot take the place of.

#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printing.h"

#include <functional>
#include <gtest/gtest.h>

using namespace qv;
using math::BigDecimal;
using math::BigInteger;
using support::Allocations;

namespace {

/// Runs `work` with its first, second and so on allocation failing, until it needs no more. `check`
/// says that nothing is broken after each failure. @return how often it failed.
std::size_t failEach(const std::function<void()>& work, const std::function<void()>& check) {
    for (std::size_t failing = 1;; ++failing) {
        try {
            const Allocations allocations(failing);
            work();
            return failing - 1;
        } catch (const std::bad_alloc&) {
            check();
        }
    }
}

BigInteger powerOf(int base, int exponent) {
    BigInteger number(base);
    number.pow(exponent);
    return number;
}

struct Case {
    const char* name;
    void (*run)(BigInteger& number, const BigInteger& other);
};

void PrintTo(const Case& tested, std::ostream* out) { *out << tested.name; }

class BigIntegerAllocationTest : public testing::TestWithParam<Case> {};

/// A number whose words have all their bits set: a sum has a carry to go somewhere.
BigInteger allOnes(int words) {
    BigInteger number;
    number.setBit(64 * words);
    number.subtract(BigInteger::ONE);
    return number;
}

/// @return how often an operation on the number failed.
std::size_t failEach(const Case& tested, const BigInteger& before, const BigInteger& otherBefore) {
    BigInteger number(before);
    BigInteger other(otherBefore);
    const std::size_t failures = failEach([&] { tested.run(number, other); },
                                          [&] {
                                              EXPECT_EQ(number.compareTo(before), 0);
                                              EXPECT_EQ(other.compareTo(otherBefore), 0);
                                          });
    BigInteger expected(before);
    tested.run(expected, other);
    EXPECT_EQ(number.compareTo(expected), 0);
    return failures;
}

/// Sizes at which each method has its turn, and operands that are shorter and longer.
TEST_P(BigIntegerAllocationTest, FailureAtEveryAllocationLosesNothing) {
    std::size_t failures = 0;
    for (const int exponent : {1, 40, 500, 5000}) {
        for (const BigInteger& before : {powerOf(-7, exponent), allOnes(exponent / 20 + 1)}) {
            failures += failEach(GetParam(), before, powerOf(3, 2 * exponent / 3));
            failures += failEach(GetParam(), before, powerOf(3, 2 * exponent + 100));
        }
    }
    EXPECT_GT(failures, 0u);
}

constexpr Case cases[] = {
    {"Add", [](BigInteger& number, const BigInteger& other) { number.add(other); }},
    {"Subtract", [](BigInteger& number, const BigInteger& other) { number.subtract(other); }},
    {"AddItself", [](BigInteger& number, const BigInteger&) { number.add(number); }},
    {"Multiply", [](BigInteger& number, const BigInteger& other) { number.multiply(other); }},
    {"MultiplyItself", [](BigInteger& number, const BigInteger&) { number.multiply(number); }},
    {"Divide",
     [](BigInteger& number, const BigInteger& other) {
         BigInteger remainder;
         number.divide(other, remainder);
     }},
    {"Mod", [](BigInteger& number, const BigInteger& other) { number.mod(other); }},
    {"Pow", [](BigInteger& number, const BigInteger&) { number.pow(5); }},
    {"ModPow", [](BigInteger& number, const BigInteger& other) { number.modPow(9, other); }},
    {"Gcd", [](BigInteger& number, const BigInteger& other) { number.gcd(other); }},
    {"SetBit", [](BigInteger& number, const BigInteger&) { number.setBit(100000); }},
    {"Assign", [](BigInteger& number, const BigInteger& other) { number = other; }},
    {"Text", [](BigInteger& number,
                const BigInteger& other) { number = BigInteger(other.toString(10), 10); }},
    {"UnclearText",
     [](BigInteger& number, const BigInteger& other) {
         number = BigInteger(other.toString(10) + u" x", 11);
     }},
};

INSTANTIATE_TEST_SUITE_P(, BigIntegerAllocationTest, testing::ValuesIn(cases),
                         [](const auto& information) { return information.param.name; });

TEST(NumberAllocationTest, ADivisionThatFailsLeavesItsRemainderToo) {
    BigInteger number = powerOf(7, 3000);
    const BigInteger before(number);
    const BigInteger divisor = powerOf(3, 2500);
    BigInteger remainder(5);
    const std::size_t failures = failEach([&] { number.divide(divisor, remainder); },
                                          [&] {
                                              EXPECT_EQ(number.compareTo(before), 0);
                                              EXPECT_EQ(remainder.toString(), u"5");
                                          });
    EXPECT_GT(failures, 1u);
}

TEST(NumberAllocationTest, AnInversionThatFailsLeavesTheNumber) {
    const BigInteger before = powerOf(7, 600);
    BigInteger number(before);
    const BigInteger modulus = powerOf(3, 700);
    const std::size_t failures = failEach([&] { number.modInverse(modulus); },
                                          [&] { EXPECT_EQ(number.compareTo(before), 0); });
    EXPECT_GT(failures, 10u);
    number.multiply(before);
    number.mod(modulus);
    EXPECT_EQ(number.toString(), u"1");
}

TEST(NumberAllocationTest, DecimalsStayAsTheyWere) {
    const BigDecimal before(powerOf(7, 600), 100);
    const BigDecimal other(powerOf(-3, 5000), 130);
    using Operation = void (*)(BigDecimal & number, const BigDecimal& other);
    for (const Operation operation : {
             Operation([](BigDecimal&number, const BigDecimal&x) { number.add(x); }),
             Operation([](BigDecimal&number, const BigDecimal&x) { number.subtract(x); }),
             Operation([](BigDecimal&number, const BigDecimal&x) { number.multiply(x); }),
             Operation([](BigDecimal&number, const BigDecimal&x) { number.divide(x, 3000); }),
             Operation([](BigDecimal&number, const BigDecimal&) { number.setScale(900); }),
             Operation([](BigDecimal&number, const BigDecimal&x) { number = x; }),
         }) {
        BigDecimal number(before);
        const std::size_t failures = failEach([&] { operation(number, other); },
                                              [&] {
                                                  EXPECT_EQ(number.compareTo(before), 0);
                                                  EXPECT_EQ(number.getScale(), 100);
                                              });
        EXPECT_GT(failures, 0u);
        BigDecimal expected(before);
        operation(expected, other);
        EXPECT_EQ(number.toString(), expected.toString());
    }
}

TEST(NumberAllocationTest, FailureOnTheComponentFaceIsItsResult) {
    const BigInteger number = powerOf(7, 3000);
    const BigDecimal other(powerOf(7, 3000), 0);
    std::int32_t order = 9;
    {
        const Allocations allocations(1);
        EXPECT_EQ(static_cast<const IQVComparable&>(number).CompareTo(
                      &static_cast<const ComObject&>(other), &order),
                  QV_E_OUTOFMEMORY);
    }
    EXPECT_EQ(order, 0);
}

TEST(NumberAllocationTest, ZeroAndMachineNumbersCostNone) {
    const Allocations allocations;
    BigInteger zero;
    zero.negate();
    zero.add(BigInteger::ZERO);
    const BigDecimal decimal;
    const Integer32 number(7);
    EXPECT_EQ(number.compareTo(Integer64(7)), 0);
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(NumberAllocationTest, ASumThatFitsCostsNone) {
    BigInteger sum(5);
    const BigInteger more(7);
    const Allocations allocations;
    sum.add(more);
    sum.subtract(more);
    EXPECT_EQ(allocations.count(), 0u);
}

} // namespace
