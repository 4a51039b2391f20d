// Products, quotients, and what is made of them.

#include "qv/Exceptions.h"
#include "qv/OwningArray.h"
#include "qv/math/BigInteger.h"
#include "qv/math/detail/CommonDivisor.h"
#include "qv/math/detail/Division.h"
#include "qv/math/detail/ModularPower.h"
#include "qv/math/detail/Multiplication.h"

#include <new>
#include <utility>

namespace qv::math {

using detail::Scratch;

namespace {

/// More bits than any number may have.
constexpr std::int64_t tooManyBits = std::int64_t{1} << 31;

void checkDivisor(const BigInteger& divisor) {
    if (divisor.isZero()) {
        throw Exception(u"Divide by zero.");
    }
}

void checkModulus(const BigInteger& modulus) {
    checkDivisor(modulus);
    if (modulus.isNegative()) {
        throw Exception(u"Modulus can't be negative.");
    }
}

bool isOdd(const BigInteger& number) noexcept {
    return number.getSize() > 0 && (number.getData()[0] & 1) != 0;
}

/// True where a negative number is negative after `pow` too.
/// Kept: so it is with an exponent of 0, which leaves the number as it stands.
bool keepsSign(const BigInteger& exponent) noexcept { return exponent.isZero() || isOdd(exponent); }

} // namespace

// --- Products ---

void BigInteger::multiply(const BigInteger& x) {
    const bool negative = negative_ != x.negative_;
    const std::size_t mine = wordCount();
    const std::size_t theirs = x.wordCount();
    const std::size_t count = mine == 0 || theirs == 0 ? 0 : mine + theirs;
    if (count > greatestWords) {
        throw std::bad_alloc();
    }
    if (count <= wordCapacity() && count <= Scratch::few) {
        Scratch result(count);
        if (count > 0) {
            detail::multiply(result.data(), words(), mine, x.words(), theirs);
        }
        setWords(result.data(), count);
    } else {
        OwningArray<Word> result(new Word[count]);
        detail::multiply(result, words(), mine, x.words(), theirs);
        adoptWords(result.detach(), count, count);
    }
    negative_ = negative;
}

void BigInteger::pow(const BigInteger& e) {
    if (e.isNegative()) {
        throw Exception(u"Negative Exponent");
    }
    const bool negative = negative_ && keepsSign(e);
    const std::size_t bits = detail::bitLength(words(), wordCount());
    if (!e.isZero() && bits > 1) {
        // A number of 2 or more: the exponent is small, or there is no room for the result.
        const Word exponent = e.words()[0];
        if (e.wordCount() > 1 || exponent >= static_cast<Word>(tooManyBits) ||
            static_cast<Word>(bits - 1) * exponent >= static_cast<Word>(tooManyBits)) {
            throw std::bad_alloc();
        }
        BigInteger power(*this);
        for (auto bit = static_cast<int>(std::bit_width(exponent)) - 2; bit >= 0; --bit) {
            power.multiply(power);
            if ((exponent >> bit & 1) != 0) {
                power.multiply(*this);
            }
        }
        *this = std::move(power);
    }
    negative_ = negative;
}

// --- Quotients ---

void BigInteger::divide(const BigInteger& d, BigInteger& remainder) {
    checkDivisor(d);
    const bool negative = negative_ != d.negative_;
    const std::size_t mine = wordCount();
    const std::size_t theirs = d.wordCount();
    const int order = compareMagnitudes(*this, d);
    if (order < 0) {
        if (&remainder != this) {
            remainder.setWords(words(), mine);
            remainder.negative_ = false;
        }
        setZero();
        return;
    }
    const std::size_t count = mine - theirs + 1;
    Scratch quotient(count + theirs);
    Word* const rest = quotient.data() + count;
    detail::divide(quotient.data(), rest, words(), mine, d.words(), theirs);
    remainder.setWords(rest, theirs);
    remainder.negative_ = false;
    setWords(quotient.data(), count); // no longer than the number was
    negative_ = negative;
}

void BigInteger::reduceMagnitude(const BigInteger& m) {
    const std::size_t mine = wordCount();
    const std::size_t theirs = m.wordCount();
    if (compareMagnitudes(*this, m) >= 0) {
        Scratch rest(theirs);
        detail::divide(nullptr, rest.data(), words(), mine, m.words(), theirs);
        setWords(rest.data(), theirs);
    }
    negative_ = false;
}

void BigInteger::mod(const BigInteger& m) {
    checkModulus(m);
    if (!negative_) {
        reduceMagnitude(m);
        return;
    }
    BigInteger rest(*this);
    rest.reduceMagnitude(m);
    // Kept: a rest of 0 gives the modulus itself.
    BigInteger result(m);
    result.subtract(rest);
    *this = std::move(result);
}

// --- Modular arithmetic ---

void BigInteger::modPow(const BigInteger& e, const BigInteger& m) {
    if (e.isNegative()) {
        BigInteger power(*this);
        power.modInverse(m);
        BigInteger exponent(e);
        exponent.negate();
        power.pow(exponent);
        *this = std::move(power);
        return;
    }
    checkModulus(m);
    const bool negative = negative_ && keepsSign(e);
    BigInteger power(*this);
    power.reduceMagnitude(m);
    if (!e.isZero() && !power.isZero()) {
        const std::size_t count = m.wordCount();
        Scratch result(count);
        detail::modularPower(result.data(), power.words(), power.wordCount(), e.words(),
                             e.wordCount(), m.words(), count);
        power.setWords(result.data(), count);
    }
    if (negative) {
        power.negate();
        power.mod(m);
    }
    *this = std::move(power);
}

void BigInteger::modInverse(const BigInteger& m) {
    BigInteger a(m);
    BigInteger b(*this);
    BigInteger x0;
    BigInteger x1(1);
    BigInteger quotient(a);
    BigInteger rest;
    quotient.divide(b, rest);
    while (!rest.isZero()) {
        // x0 and x1 become x1 and the rest of x0 - quotient * x1.
        quotient.multiply(x1);
        x0.subtract(quotient);
        x0.mod(m);
        std::swap(x0, x1);
        std::swap(a, b);
        std::swap(b, rest);
        quotient = a;
        quotient.divide(b, rest);
    }
    if (b.compareTo(ONE) != 0) {
        throw Exception(u"Not invertible.");
    }
    x1.mod(m);
    *this = std::move(x1);
}

void BigInteger::gcd(const BigInteger& x) {
    checkDivisor(x);
    BigInteger rest(*this);
    rest.reduceMagnitude(x);
    BigInteger divisor(x);
    if (!rest.isZero()) {
        const std::size_t count = rest.wordCount();
        Scratch result(count);
        divisor.setWords(result.data(), detail::commonDivisor(result.data(), x.words(),
                                                              x.wordCount(), rest.words(), count));
        divisor.negative_ = false;
    }
    *this = std::move(divisor);
}

} // namespace qv::math
