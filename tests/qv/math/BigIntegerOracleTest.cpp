// Big integers against slow and against foreign ones, at random and where the methods change.

#include "qv/Exceptions.h"
#include "qv/math/BigInteger.h"
#include "tests/reference/BigNumber.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>
#include <random>

#ifdef QVCL_TEST_GMP
#    include <gmp.h>
#endif

using namespace qv;
using math::BigInteger;

namespace {

using Bytes = std::vector<signed char>;

/// Bytes of one of the kinds that arithmetic finds hard.
Bytes randomBytes(std::mt19937& random, std::size_t greatest) {
    Bytes bytes(random() % (greatest + 1));
    const auto kind = random() % 6;
    for (signed char& byte : bytes) {
        switch (kind) {
        case 0:
            byte = -1;
            break;
        case 1:
            byte = 0;
            break;
        case 2:
            byte = static_cast<signed char>(random() % 8 == 0 ? random() : 0);
            break;
        case 3:
            byte = static_cast<signed char>(random() % 8 == 0 ? random() : 255);
            break;
        default:
            byte = static_cast<signed char>(random());
        }
    }
    if (!bytes.empty()) {
        static constexpr int tops[] = {1, 0x7F, 0x80, 0xFF};
        bytes.back() = static_cast<signed char>(tops[random() % 4]);
    }
    return bytes;
}

BigInteger randomNumber(std::mt19937& random, std::size_t greatest) {
    const Bytes bytes = randomBytes(random, greatest);
    return {bytes.data(), static_cast<int>(bytes.size()), random() % 2 == 0};
}

std::string hex(const BigInteger& number) {
    const std::string digits = number.toString(16).getBytes(u"UTF-8");
    return number.isZero() && number.isNegative() ? "-0" : digits;
}

// --- Against the slow one, with all that is kept ---

reference::BigNumber slow(const BigInteger& number) {
    reference::BigNumber result;
    result.negative = number.isNegative();
    result.bytes.assign(number.getData(), number.getData() + number.getSize());
    return result;
}

std::string hex(const reference::BigNumber& number) {
    const std::u16string digits = number.toString(16);
    return number.isZero() && number.negative ? "-0" : std::string(digits.begin(), digits.end());
}

/// The result of an operation of either kind, or what it refuses.
template <class Number, class Operation, class... Arguments>
std::string outcome(Number number, Operation operation, const Arguments&... arguments) {
    try {
        (number.*operation)(arguments...);
        return hex(number);
    } catch (const Exception& exception) {
        return exception.getDescription().getBytes(u"UTF-8");
    } catch (const reference::Refusal& refusal) {
        return refusal.what();
    }
}

using Slow = reference::BigNumber;

template <std::size_t greatestBytes>
void compareAll(unsigned seed, int rounds) {
    std::mt19937 random(seed);
    for (int i = 0; i < rounds; ++i) {
        const BigInteger a = randomNumber(random, greatestBytes);
        const BigInteger b = i % 10 == 0 ? a : randomNumber(random, greatestBytes);
        const std::string operands = hex(a) + ", " + hex(b);
        EXPECT_EQ(outcome(a, &BigInteger::add, b), outcome(slow(a), &Slow::add, slow(b)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::subtract, b), outcome(slow(a), &Slow::subtract, slow(b)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::multiply, b), outcome(slow(a), &Slow::multiply, slow(b)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::mod, b), outcome(slow(a), &Slow::mod, slow(b)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::gcd, b), outcome(slow(a), &Slow::gcd, slow(b)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::modInverse, b),
                  outcome(slow(a), &Slow::modInverse, slow(b)))
            << operands;
        EXPECT_EQ(a.compareTo(b), slow(a).compareTo(slow(b))) << operands;
        BigInteger remainder;
        Slow slowRemainder;
        BigInteger quotient(a);
        Slow slowQuotient(slow(a));
        if (!b.isZero()) {
            quotient.divide(b, remainder);
            slowQuotient.divide(slow(b), slowRemainder);
            EXPECT_EQ(hex(quotient), hex(slowQuotient)) << operands;
            EXPECT_EQ(hex(remainder), hex(slowRemainder)) << operands;
        }
    }
}

TEST(BigIntegerOracleTest, SmallNumbersAgreeWithTheSlowOnes) { compareAll<3>(1, 3000); }

TEST(BigIntegerOracleTest, NumbersOfSomeWordsAgreeWithTheSlowOnes) { compareAll<40>(2, 300); }

TEST(BigIntegerOracleTest, PowersAgreeWithTheSlowOnes) {
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        const BigInteger a = randomNumber(random, 5);
        const BigInteger m = randomNumber(random, 4);
        const BigInteger e(static_cast<int>(random() % 40) - 8);
        const std::string operands = hex(a) + ", " + hex(e) + ", " + hex(m);
        EXPECT_EQ(outcome(a, &BigInteger::pow, e), outcome(slow(a), &Slow::pow, slow(e)))
            << operands;
        EXPECT_EQ(outcome(a, &BigInteger::modPow, e, m),
                  outcome(slow(a), &Slow::modPow, slow(e), slow(m)))
            << operands;
    }
}

TEST(BigIntegerOracleTest, GreatProductsAndQuotientsAreOneAnothersInverse) {
    std::mt19937 random(4);
    for (int i = 0; i < 200; ++i) {
        const BigInteger a = randomNumber(random, 6000);
        BigInteger b = randomNumber(random, i % 2 == 0 ? 6000 : 1200);
        b.setBit(0);
        BigInteger rest = randomNumber(random, 6000);
        rest.abs();
        rest.mod(b.isNegative() ? BigInteger(1) : b);
        BigInteger number(a);
        number.multiply(b);
        number.isNegative() ? number.subtract(rest) : number.add(rest);
        BigInteger remainder;
        number.divide(b, remainder);
        if (!a.isZero()) {
            EXPECT_EQ(number.compareTo(a), 0) << i;
            EXPECT_EQ(remainder.compareTo(rest), 0) << i;
        }
    }
}

// --- Against a foreign one ---

#ifdef QVCL_TEST_GMP

class Foreign {
public:
    Foreign() { mpz_init(value); }
    explicit Foreign(const BigInteger& number) : Foreign() {
        mpz_import(value, static_cast<std::size_t>(number.getSize()), -1, 1, 0, 0,
                   number.getData());
        if (number.isNegative()) {
            mpz_neg(value, value);
        }
    }
    Foreign(const Foreign&) = delete;
    Foreign& operator=(const Foreign&) = delete;
    ~Foreign() { mpz_clear(value); }

    mpz_t value;
};

testing::AssertionResult same(const BigInteger& number, const Foreign& foreign) {
    if (mpz_cmp(Foreign(number).value, foreign.value) == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "0x" << hex(number);
}

/// Compares every operation on one pair. A zero's sign and what is kept for it is tested elsewhere.
void comparePair(const BigInteger& a, const BigInteger& b) {
    SCOPED_TRACE("0x" + hex(a) + ", 0x" + hex(b));
    const Foreign x(a);
    const Foreign y(b);
    Foreign expected;
    BigInteger number(a);
    number.add(b);
    mpz_add(expected.value, x.value, y.value);
    EXPECT_TRUE(same(number, expected));
    number = a;
    number.subtract(b);
    mpz_sub(expected.value, x.value, y.value);
    EXPECT_TRUE(same(number, expected));
    number = a;
    number.multiply(b);
    mpz_mul(expected.value, x.value, y.value);
    EXPECT_TRUE(same(number, expected));
    number = a;
    number.multiply(number);
    mpz_mul(expected.value, x.value, x.value);
    EXPECT_TRUE(same(number, expected));
    const int order = mpz_cmp(x.value, y.value);
    if (!a.isZero() || !b.isZero()) {
        EXPECT_EQ(a.compareTo(b), (order > 0) - (order < 0));
    }
    if (b.isZero()) {
        return;
    }
    BigInteger remainder;
    number = a;
    number.divide(b, remainder);
    Foreign rest;
    mpz_tdiv_qr(expected.value, rest.value, x.value, y.value);
    mpz_abs(rest.value, rest.value); // the remainder of the magnitudes
    EXPECT_TRUE(same(number, expected));
    EXPECT_TRUE(same(remainder, rest));
    number = a;
    number.gcd(b);
    number.abs();
    mpz_gcd(expected.value, x.value, y.value);
    EXPECT_TRUE(same(number, expected));
}

TEST(BigIntegerOracleTest, RandomNumbersAgreeWithTheForeignOnes) {
    std::mt19937 random(5);
    for (int i = 0; i < 6000; ++i) {
        const BigInteger a = randomNumber(random, i % 3 == 0 ? 24 : 375);
        comparePair(a, i % 20 == 0 ? a : randomNumber(random, i % 2 == 0 ? 24 : 375));
    }
}

TEST(BigIntegerOracleTest, GreatNumbersAgreeWithTheForeignOnes) {
    std::mt19937 random(6);
    for (int i = 0; i < 150; ++i) {
        comparePair(randomNumber(random, 5000), randomNumber(random, i % 3 == 0 ? 5000 : 1500));
    }
}

TEST(BigIntegerOracleTest, NumbersAtTheEdgesOfWordsAgreeWithTheForeignOnes) {
    std::vector<BigInteger> numbers;
    for (const int bits : {0, 1, 63, 64, 65, 127, 128, 129, 191, 192, 256, 3072}) {
        for (const int more : {-2, -1, 0, 1, 2}) {
            BigInteger number;
            number.setBit(bits);
            number.add(more);
            numbers.push_back(number);
            number.negate();
            numbers.push_back(number);
        }
    }
    for (const BigInteger& a : numbers) {
        for (const BigInteger& b : numbers) {
            comparePair(a, b);
        }
    }
}

/// Divisors just above a power, and numbers just below their multiples: a word of the quotient is
/// guessed too great as often as can be.
TEST(BigIntegerOracleTest, RareBranchesOfDivisionAgreeWithTheForeignOnes) {
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        BigInteger divisor;
        divisor.setBit(static_cast<int>(random() % 64) +
                       64 * (1 + static_cast<int>(random() % 60)));
        BigInteger little = randomNumber(random, 1 + random() % 20);
        little.abs();
        random() % 2 == 0 ? divisor.add(little) : divisor.subtract(little);
        BigInteger number = randomNumber(random, 500);
        number.abs();
        number.multiply(divisor);
        number.subtract(static_cast<int>(random() % 3));
        divisor.abs();
        comparePair(number, divisor);
    }
}

void compareModularPower(const BigInteger& a, const BigInteger& e, const BigInteger& m) {
    Foreign expected;
    mpz_powm(expected.value, Foreign(a).value, Foreign(e).value, Foreign(m).value);
    BigInteger number(a);
    number.modPow(e, m);
    EXPECT_TRUE(same(number, expected)) << hex(a) << " " << hex(e) << " " << hex(m);
}

TEST(BigIntegerOracleTest, ModularPowersAgreeWithTheForeignOnes) {
    std::mt19937 random(8);
    for (int i = 0; i < 400; ++i) {
        BigInteger a = randomNumber(random, 100);
        BigInteger e = randomNumber(random, 40);
        BigInteger m = randomNumber(random, i % 8 == 0 ? 8 : 100);
        a.abs();
        e.abs();
        m.abs();
        if (m.isZero() || e.isZero()) {
            continue;
        }
        compareModularPower(a, e, m);
    }
}

/// Of the sizes that keys have.
TEST(BigIntegerOracleTest, GreatModularPowersAgreeWithTheForeignOnes) {
    std::mt19937 random(11);
    for (int i = 0; i < 30; ++i) {
        BigInteger a = randomNumber(random, 600);
        BigInteger e = randomNumber(random, 90);
        BigInteger m = randomNumber(random, 240);
        a.abs();
        e.abs();
        m.abs();
        e.setBit(800 + static_cast<int>(random() % 1600));
        m.setBit(2000 + static_cast<int>(random() % 2000)); // odd or even
        compareModularPower(a, e, m);
    }
}

TEST(BigIntegerOracleTest, InversesAgreeWithTheForeignOnes) {
    std::mt19937 random(9);
    for (int i = 0; i < 300; ++i) {
        BigInteger a = randomNumber(random, 60);
        BigInteger m = randomNumber(random, 60);
        a.abs();
        m.abs();
        if (a.isZero() || m.compareTo(1) <= 0) {
            continue;
        }
        Foreign expected;
        const bool exists = mpz_invert(expected.value, Foreign(a).value, Foreign(m).value) != 0;
        BigInteger number(a);
        if (exists) {
            number.modInverse(m);
            EXPECT_TRUE(same(number, expected)) << hex(a) << " " << hex(m);
        } else {
            EXPECT_THROW(number.modInverse(m), Exception);
        }
    }
}

TEST(BigIntegerOracleTest, TextsAgreeWithTheForeignOnes) {
    std::mt19937 random(10);
    for (int i = 0; i < 400; ++i) {
        const BigInteger number = randomNumber(random, i % 10 == 0 ? 5000 : 200);
        const int radix = i % 2 == 0 ? 10 : 2 + static_cast<int>(random() % 35);
        const Foreign foreign(number);
        std::string digits(mpz_sizeinbase(foreign.value, radix) + 2, 0);
        mpz_get_str(digits.data(), radix, foreign.value);
        digits.resize(digits.find('\0'));
        EXPECT_EQ(number.toString(radix).getBytes(u"UTF-8"), digits);
        const String text(number.toString(radix));
        EXPECT_TRUE(same(BigInteger(text, radix), foreign));
    }
}

#else

TEST(BigIntegerOracleTest, RandomNumbersAgreeWithTheForeignOnes) {
    GTEST_SKIP() << "GMP, whose results these are compared with, is not installed";
}

#endif

} // namespace
