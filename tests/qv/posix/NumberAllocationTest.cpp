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

/// Sizes at which each method has its turn.
TEST_P(BigIntegerAllocationTest, FailureAtEveryAllocationLosesNothing) {
    for (const int exponent : {1, 40, 500, 5000}) {
        const BigInteger before = powerOf(-7, exponent);
        BigInteger other = powerOf(3, 2 * exponent / 3);
        BigInteger number(before);
        const BigInteger otherBefore(other);
        failEach([&] { GetParam().run(number, other); },
                 [&] {
                     EXPECT_EQ(number.compareTo(before), 0);
                     EXPECT_EQ(other.compareTo(otherBefore), 0);
                 });
        BigInteger expected(before);
        GetParam().run(expected, other);
        EXPECT_EQ(number.compareTo(expected), 0);
    }
}

constexpr Case cases[] = {
    {"Add", [](BigInteger& number, const BigInteger& other) { number.subtract(other); }},
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
    {"ModInverse",
     [](BigInteger& number, const BigInteger& other) {
         BigInteger small(other);
         small.modInverse(13);
         number = small;
     }},
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

TEST(NumberAllocationTest, DecimalsStayAsTheyWere) {
    BigDecimal number(powerOf(7, 600), 100);
    const BigDecimal other(powerOf(-3, 500), 30);
    const auto isUnchanged = [&] {
        EXPECT_EQ(number.compareTo(BigDecimal(powerOf(7, 600), 100)), 0);
        EXPECT_EQ(number.getScale(), 100);
    };
    EXPECT_GT(failEach([&] { BigDecimal(number).divide(other, 400); }, isUnchanged), 3u);
    failEach([&] { BigDecimal(number).multiply(other); }, isUnchanged);
    EXPECT_GT(failEach([&] { static_cast<void>(BigDecimal(number.toString())); }, isUnchanged), 0u);
    const BigDecimal scaled(number);
    EXPECT_GT(failEach([&] { number.setScale(900); }, isUnchanged), 1u);
    EXPECT_EQ(number.getScale(), 900);
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
