#include "qv/math/detail/CommonDivisor.h"

#include "qv/math/detail/Division.h"

#include <numeric>
#include <utility>

namespace qv::math::detail {

namespace {

/// What several steps of Euclid's algorithm do to two numbers a and b:
///   a becomes aOfA * a - bOfA * b, and b becomes bOfB * b - aOfB * a
/// after an even number of steps; after an odd one both have the other sign.
struct Steps {
    Word aOfA = 0;
    Word bOfA = 0;
    Word aOfB = 1;
    Word bOfB = 0;
    bool isEven = false;

    bool areNone() const noexcept { return bOfA == 0; }
};

/// The steps that the top words of the numbers settle, whatever is below them.
/// Source: Collins' condition, as in Jebelean, A double-digit Lehmer-Euclid algorithm for finding
/// the GCD of long integers, 1995.
Steps settledSteps(Word a, Word b) noexcept {
    Steps steps;
    Word aOfNext = 0;
    Word bOfNext = 1;
    while (b >= bOfNext && a - b >= steps.bOfB + bOfNext) {
        const Word quotient = a / b;
        a = std::exchange(b, a % b);
        steps.aOfA = std::exchange(steps.aOfB, aOfNext);
        steps.bOfA = std::exchange(steps.bOfB, bOfNext);
        aOfNext = steps.aOfA + quotient * aOfNext;
        bOfNext = steps.bOfA + quotient * bOfNext;
        steps.isEven = !steps.isEven;
    }
    return steps;
}

/// The difference of multiples of two numbers, a word at a time.
class MultiplesDifference {
public:
    MultiplesDifference(Word more, Word less) noexcept : more_(more), less_(less) {}

    Word next(Word a, Word b) noexcept {
        const DoubleWord minuend = product(a, more_) + moreCarry_;
        const DoubleWord subtrahend = product(b, less_) + lessCarry_;
        moreCarry_ = high(minuend);
        lessCarry_ = high(subtrahend);
        Word word = 0;
        borrow_ = _subborrow_u64(borrow_, low(minuend), low(subtrahend), &word);
        return word;
    }

private:
    Word more_;
    Word less_;
    Word moreCarry_ = 0;
    Word lessCarry_ = 0;
    unsigned char borrow_ = 0;
};

/// Two numbers of which the first is not below the second, and room for a third.
class Pair {
public:
    Pair(const Word* a, std::size_t aCount, const Word* b, std::size_t bCount)
        : scratch_(3 * aCount), a_(scratch_.data()), b_(a_ + aCount), rest_(b_ + aCount),
          aCount_(aCount), bCount_(bCount) {
        std::copy_n(a, aCount, a_);
        std::copy_n(b, bCount, b_);
    }

    const Word* a() const noexcept { return a_; }
    const Word* b() const noexcept { return b_; }
    std::size_t aCount() const noexcept { return aCount_; }
    std::size_t bCount() const noexcept { return bCount_; }

    /// Requires: two words of `b`.
    void reduce() {
        const Steps steps = settledSteps(topOf(a_), topOf(b_));
        steps.areNone() ? divide() : apply(steps);
    }

private:
    /// The bits of a number where the first has its top 64.
    Word topOf(const Word* number) const noexcept {
        const auto word = [&](std::size_t index) {
            return number == a_ || index < bCount_ ? number[index] : 0;
        };
        const int shift = std::countl_zero(a_[aCount_ - 1]);
        const Word upper = word(aCount_ - 1) << shift;
        return shift == 0 ? upper : upper | word(aCount_ - 2) >> (wordBits - shift);
    }

    void divide() {
        detail::divide(nullptr, rest_, a_, aCount_, b_, bCount_);
        std::swap(a_, b_);
        std::swap(b_, rest_);
        aCount_ = bCount_;
        bCount_ = significant(b_, bCount_);
    }

    void apply(const Steps& steps) noexcept {
        std::fill(b_ + bCount_, b_ + aCount_, Word{0});
        // After an odd number of steps the two have changed places.
        MultiplesDifference first(steps.isEven ? steps.aOfA : steps.aOfB,
                                  steps.isEven ? steps.bOfA : steps.bOfB);
        MultiplesDifference second(steps.isEven ? steps.bOfB : steps.bOfA,
                                   steps.isEven ? steps.aOfB : steps.aOfA);
        for (std::size_t i = 0; i < aCount_; ++i) {
            const Word a = a_[i];
            const Word b = b_[i];
            a_[i] = first.next(a, b);
            b_[i] = second.next(b, a);
        }
        if (!steps.isEven) {
            std::swap(a_, b_);
        }
        bCount_ = significant(b_, aCount_);
        aCount_ = significant(a_, aCount_);
    }

    Scratch scratch_;
    Word* a_;
    Word* b_;
    Word* rest_;
    std::size_t aCount_;
    std::size_t bCount_;
};

} // namespace

std::size_t commonDivisor(Word* r, const Word* a, std::size_t aCount, const Word* b,
                          std::size_t bCount) {
    Pair pair(a, aCount, b, bCount);
    while (pair.bCount() > 1) {
        pair.reduce();
    }
    if (pair.bCount() == 0) {
        std::copy_n(pair.a(), pair.aCount(), r);
        return pair.aCount();
    }
    Scratch quotient(pair.aCount());
    const Word rest = WordDivisor(pair.b()[0]).divide(quotient.data(), pair.a(), pair.aCount());
    r[0] = std::gcd(pair.b()[0], rest);
    return 1;
}

} // namespace qv::math::detail
