#include "qv/math/detail/ModularPower.h"

#include "qv/math/detail/Division.h"
#include "qv/math/detail/Multiplication.h"

namespace qv::math::detail {

namespace {

/// Numbers modulo any number, as they are.
class PlainModulus {
public:
    PlainModulus(const Word* words, std::size_t count)
        : words_(words), count_(count), scratch_(2 * count) {}

    std::size_t count() const noexcept { return count_; }

    /// The form in which the numbers are multiplied. Requires: `a` is below the modulus.
    void enter(Word* r, const Word* a, std::size_t aCount) {
        std::fill(std::copy_n(a, aCount, r), r + count_, Word{0});
    }
    void leave(Word*) const noexcept {}
    /// r = a * b. All may be the same.
    void multiply(Word* r, const Word* a, const Word* b) {
        detail::multiply(scratch_.data(), a, count_, b, count_);
        divide(nullptr, r, scratch_.data(), 2 * count_, words_, count_);
    }

private:
    const Word* words_;
    std::size_t count_;
    Scratch scratch_;
};

/// Numbers modulo an odd number, times a power of 2: a product is reduced from below, by multiples
/// of the modulus that make its lower words 0.
/// Source: Montgomery, Modular multiplication without trial division, 1985.
class OddModulus {
public:
    OddModulus(const Word* words, std::size_t count)
        : words_(words), count_(count), inverse_(negativeInverse(words[0])), scratch_(2 * count) {}

    std::size_t count() const noexcept { return count_; }

    void enter(Word* r, const Word* a, std::size_t aCount) {
        Scratch shifted(aCount + count_);
        std::fill_n(shifted.data(), count_, Word{0});
        std::copy_n(a, aCount, shifted.data() + count_);
        divide(nullptr, r, shifted.data(), aCount + count_, words_, count_);
    }
    void leave(Word* r) noexcept {
        std::fill(std::copy_n(r, count_, scratch_.data()), scratch_.data() + 2 * count_, Word{0});
        reduce(r);
    }
    void multiply(Word* r, const Word* a, const Word* b) {
        detail::multiply(scratch_.data(), a, count_, b, count_);
        reduce(r);
    }

private:
    /// By Newton's method: each step doubles the bits that are right, from three on.
    static Word negativeInverse(Word odd) noexcept {
        Word inverse = odd;
        for (int bits = 3; bits < wordBits; bits *= 2) {
            inverse *= 2 - odd * inverse;
        }
        return 0 - inverse;
    }

    void reduce(Word* r) noexcept {
        Word* const number = scratch_.data();
        for (std::size_t i = 0; i < count_; ++i) {
            // The word becomes 0, and its place takes what is carried past the multiple's end.
            number[i] = addProduct(number + i, words_, count_, number[i] * inverse_);
        }
        const Word carry = addSame(r, number + count_, number, count_);
        if (carry != 0 || compare(r, words_, count_) >= 0) {
            subtractSame(r, r, words_, count_);
        }
    }

    const Word* words_;
    std::size_t count_;
    Word inverse_;
    Scratch scratch_;
};

/// So many bits of the exponent are taken at a time: the more there are, the more powers pay.
constexpr std::size_t windowFor(std::size_t bits) noexcept {
    return bits < 24 ? 1 : bits < 160 ? 3 : bits < 800 ? 4 : 5;
}

/// The bits of a number from `position` on.
std::size_t bitsAt(const Word* e, std::size_t count, std::size_t position,
                   std::size_t bits) noexcept {
    const std::size_t word = position / wordBits;
    const std::size_t shift = position % wordBits;
    Word value = e[word] >> shift;
    if (shift + bits > wordBits && word + 1 < count) {
        value |= e[word + 1] << (wordBits - shift);
    }
    return static_cast<std::size_t>(value & ((Word{1} << bits) - 1));
}

/// Squares, and at the end of each window a product with the power that it stands for.
/// Source: Knuth, The Art of Computer Programming 2, 4.6.3.
template <class Modulus>
void powerBy(Modulus&& modulus, Word* r, const Word* a, std::size_t aCount, const Word* e,
             std::size_t eCount) {
    const std::size_t count = modulus.count();
    const std::size_t bits = bitLength(e, eCount);
    const std::size_t window = windowFor(bits);
    Scratch scratch(count << window);
    const auto power = [&](std::size_t exponent) { return scratch.data() + exponent * count; };
    modulus.enter(power(1), a, aCount);
    for (std::size_t i = 2; i < std::size_t{1} << window; ++i) {
        modulus.multiply(power(i), power(i / 2), power(i - i / 2));
    }
    std::size_t position = (bits - 1) / window * window;
    std::copy_n(power(bitsAt(e, eCount, position, window)), count, r);
    while (position > 0) {
        position -= window;
        for (std::size_t i = 0; i < window; ++i) {
            modulus.multiply(r, r, r);
        }
        if (const std::size_t exponent = bitsAt(e, eCount, position, window)) {
            modulus.multiply(r, r, power(exponent));
        }
    }
    modulus.leave(r);
}

} // namespace

void modularPower(Word* r, const Word* a, std::size_t aCount, const Word* e, std::size_t eCount,
                  const Word* m, std::size_t mCount) {
    if ((m[0] & 1) != 0) {
        powerBy(OddModulus(m, mCount), r, a, aCount, e, eCount);
    } else {
        powerBy(PlainModulus(m, mCount), r, a, aCount, e, eCount);
    }
}

} // namespace qv::math::detail
