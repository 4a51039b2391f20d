#pragma once

#include "qv/math/detail/Words.h"

#include <vector>

/// Natural numbers from and to the digits of a radix from 2 to 36.
namespace qv::math::detail {

/// A radix, and the powers of it by which numbers are taken apart and put together. They are made
/// when they are first asked for.
class Radix {
public:
    /// Requires: 2 to 36.
    explicit Radix(unsigned int radix) noexcept;

    unsigned int value() const noexcept { return value_; }
    /// The digits that fit in a word, and the power of the radix with so many zeros.
    std::size_t digitsPerWord() const noexcept { return digitsPerWord_; }
    Word wordPower() const noexcept { return wordPower_; }
    /// The bits of a digit where the radix is a power of 2, otherwise 0.
    int bitsPerDigit() const noexcept;

    /// A word's power to the power of `2 to the index`.
    struct Power {
        std::size_t digits; ///< its zeros
        std::vector<Word> words;
    };
    const Power& power(std::size_t index);
    /// The power that cuts so many digits in two parts neither of which has more than two thirds.
    /// Requires: digits for two words.
    std::size_t indexAround(std::size_t digits) const noexcept;

    /// More words than this many digits ever take.
    std::size_t wordsFor(std::size_t digits) const noexcept;
    /// More digits than this many bits ever take.
    std::size_t digitsFor(std::size_t bits) const noexcept;

private:
    unsigned int value_;
    std::size_t digitsPerWord_;
    Word wordPower_;
    std::vector<Power> powers_;
};

/// r = the number of `count` digits, most significant first, each below the radix. `r` has room for
/// `wordsFor(count)`. @return the words that it takes. @throws std::bad_alloc.
std::size_t fromDigits(Word* r, const unsigned char* digits, std::size_t count, Radix& radix);

/// Writes the digits of a number, most significant first and without leading zeros, digits above 9
/// in lower case; zero is "0". `text` has room for `digitsFor` its bits.
/// @return the end of the digits. @throws std::bad_alloc.
char16_t* toDigits(char16_t* text, const Word* a, std::size_t count, Radix& radix);

} // namespace qv::math::detail
