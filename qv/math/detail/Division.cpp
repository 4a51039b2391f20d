#include "qv/math/detail/Division.h"

#include "qv/math/detail/Multiplication.h"

namespace qv::math::detail {

namespace {

/// A quotient of so many words or more is made in halves.
constexpr std::size_t recursiveSize = 48;

/// The word above the point of the inverse of a number whose top bit is set, less 2 to the 64.
Word inverseOf(Word divisor) noexcept { return low(joined(~divisor, ~Word{0}) / divisor); }

struct WordResult {
    Word quotient;
    Word remainder;
};

/// Two words by one, the upper below the divisor. Source: as WordDivisor, algorithm 4.
WordResult divideTwo(Word high1, Word low1, Word divisor, Word inverse) noexcept {
    const DoubleWord estimate = product(inverse, high1) + joined(high1, low1);
    Word quotient = high(estimate) + 1;
    Word remainder = low1 - quotient * divisor;
    if (remainder > low(estimate)) {
        --quotient;
        remainder += divisor;
    }
    if (remainder >= divisor) {
        ++quotient;
        remainder -= divisor;
    }
    return {quotient, remainder};
}

/// The top two words of a divisor whose top bit is set, as what estimates a word of the quotient.
/// Source: as WordDivisor, algorithms 5 and 6.
class TopDivisor {
public:
    TopDivisor(Word top, Word next) noexcept : top_(top), next_(next), inverse_(inverseOf(top)) {
        Word rest = top * inverse_ + next;
        if (rest < next) {
            --inverse_;
            if (rest >= top) {
                --inverse_;
                rest -= top;
            }
            rest -= top;
        }
        const DoubleWord more = product(inverse_, next);
        rest += high(more);
        if (rest < high(more)) {
            --inverse_;
            if (joined(rest, low(more)) >= joined(top, next)) {
                --inverse_;
            }
        }
    }

    /// Three words by these two, as far as a word holds the quotient. It is the quotient by the
    /// whole divisor, or 1 more.
    Word quotient(Word a2, Word a1, Word a0) const noexcept {
        const DoubleWord divisor = joined(top_, next_);
        if (joined(a2, a1) >= divisor) {
            return ~Word{0};
        }
        const DoubleWord estimate = product(inverse_, a2) + joined(a2, a1);
        Word result = high(estimate);
        const Word rest = a1 - result * top_;
        DoubleWord remainder = joined(rest, a0) - divisor - product(result, next_);
        ++result;
        if (high(remainder) >= low(estimate)) {
            --result;
            remainder += divisor;
        }
        return remainder >= divisor ? result + 1 : result;
    }

private:
    Word top_;
    Word next_;
    Word inverse_;
};

/// The divisor of the functions below: its top bit is set, and it has two words or more.
struct Divisor {
    const Word* words;
    std::size_t count;
    const TopDivisor& top;

    /// Its upper `part` words, which have the same top.
    Divisor upper(std::size_t part) const noexcept { return {words + count - part, part, top}; }
};

/// Divides `a`, of `b.count + qCount` words, in place: the remainder is left in its lower words.
/// @return the quotient's word above `q`, 0 or 1.
/// Source: Knuth, The Art of Computer Programming 2, 4.3.1, algorithm D.
Word dividePlain(Word* q, std::size_t qCount, Word* a, const Divisor& b) noexcept {
    Word* const upper = a + qCount;
    const Word above = compare(upper, b.words, b.count) >= 0 ? 1 : 0;
    if (above != 0) {
        subtractSame(upper, upper, b.words, b.count);
    }
    for (std::size_t i = qCount; i-- > 0;) {
        Word* const part = a + i;
        Word& top = part[b.count];
        Word quotient = b.top.quotient(top, part[b.count - 1], part[b.count - 2]);
        const Word borrow = subtractProduct(part, b.words, b.count, quotient);
        const bool isTooGreat = top < borrow;
        top -= borrow;
        if (isTooGreat) {
            --quotient;
            top += addSame(part, part, b.words, b.count);
        }
        q[i] = quotient;
    }
    return above;
}

Word divideHalves(Word* q, std::size_t qCount, Word* a, const Divisor& b, Word* scratch);

/// As `dividePlain`, for a quotient that is not longer than the divisor: it is found by the upper
/// words alone, and then what the lower ones of the divisor add to the product is taken off.
Word divideUpper(Word* q, std::size_t qCount, Word* a, const Divisor& b, Word* scratch) {
    const std::size_t rest = b.count - qCount;
    if (qCount < recursiveSize) {
        return dividePlain(q, qCount, a, b);
    }
    Word above = divideHalves(q, qCount, a + rest, b.upper(qCount), scratch);
    if (rest == 0) {
        return above;
    }
    multiply(scratch, q, qCount, b.words, rest);
    Word borrow = subtractSame(a, a, scratch, b.count);
    if (above != 0) {
        borrow += subtractSame(a + qCount, a + qCount, b.words, rest);
    }
    while (borrow != 0) {
        above -= subtractBorrow(q, q, qCount, 1);
        borrow -= addSame(a, a, b.words, b.count);
    }
    return above;
}

/// As `dividePlain`, for a quotient as long as the divisor: its upper half and then its lower one.
/// Source: Burnikel and Ziegler, Fast recursive division, 1998.
Word divideHalves(Word* q, std::size_t qCount, Word* a, const Divisor& b, Word* scratch) {
    if (qCount < recursiveSize) {
        return dividePlain(q, qCount, a, b);
    }
    const std::size_t lower = qCount / 2;
    const Word above = divideUpper(q + lower, qCount - lower, a + lower, b, scratch);
    divideUpper(q, lower, a, b, scratch);
    return above;
}

/// As `dividePlain`, for any quotient: from its top down in pieces as long as the divisor.
void divideWhole(Word* q, std::size_t qCount, Word* a, const Divisor& b) {
    if (qCount < recursiveSize || b.count < recursiveSize) {
        dividePlain(q, qCount, a, b);
        return;
    }
    Scratch scratch(b.count);
    for (std::size_t left = qCount; left > 0;) {
        const std::size_t count = left % b.count == 0 ? b.count : left % b.count;
        left -= count;
        if (count == b.count) {
            divideHalves(q + left, count, a + left, b, scratch.data());
        } else {
            divideUpper(q + left, count, a + left, b, scratch.data());
        }
    }
}

} // namespace

WordDivisor::WordDivisor(Word divisor) noexcept
    : shift_(std::countl_zero(divisor)), divisor_(divisor << shift_),
      inverse_(inverseOf(divisor_)) {}

Word WordDivisor::divide(Word* q, const Word* a, std::size_t count) const noexcept {
    Word remainder = 0;
    if (shift_ == 0) {
        for (std::size_t i = count; i-- > 0;) {
            const WordResult result = divideTwo(remainder, a[i], divisor_, inverse_);
            q[i] = result.quotient;
            remainder = result.remainder;
        }
        return remainder;
    }
    // The number is shifted as the divisor was, on the way.
    if (count > 0) {
        remainder = a[count - 1] >> (wordBits - shift_);
    }
    for (std::size_t i = count; i-- > 0;) {
        const Word below = i > 0 ? a[i - 1] >> (wordBits - shift_) : 0;
        const WordResult result = divideTwo(remainder, a[i] << shift_ | below, divisor_, inverse_);
        q[i] = result.quotient;
        remainder = result.remainder;
    }
    return remainder >> shift_;
}

void divide(Word* q, Word* r, const Word* a, std::size_t aCount, const Word* b,
            std::size_t bCount) {
    const std::size_t qCount = aCount - bCount + 1;
    if (bCount == 1) {
        Scratch quotient(q == nullptr ? qCount : 0);
        r[0] = WordDivisor(b[0]).divide(q == nullptr ? quotient.data() : q, a, aCount);
        return;
    }
    // Divisor and number are shifted up until the divisor's top bit is set.
    const int shift = std::countl_zero(b[bCount - 1]);
    Scratch scratch(aCount + 1 + bCount + (q == nullptr ? qCount : 0));
    Word* const number = scratch.data();
    Word* const divisor = number + aCount + 1;
    Word* const quotient = q == nullptr ? divisor + bCount : q;
    number[aCount] = shiftLeft(number, a, aCount, shift);
    shiftLeft(divisor, b, bCount, shift);
    const TopDivisor top(divisor[bCount - 1], divisor[bCount - 2]);
    divideWhole(quotient, qCount, number, {divisor, bCount, top});
    shiftRight(r, number, bCount, shift);
}

} // namespace qv::math::detail
