#include "qv/math/detail/Radix.h"

#include "qv/math/detail/Division.h"
#include "qv/math/detail/Multiplication.h"

#include <array>
#include <cmath>
#include <cstring>

namespace qv::math::detail {

namespace {

/// Numbers of fewer words than this are put together, and taken apart, a word's digits at a time.
constexpr std::size_t fromDigitsSize = 60;
constexpr std::size_t toDigitsSize = 24;

constexpr char16_t digitUnits[] = u"0123456789abcdefghijklmnopqrstuvwxyz";

constexpr unsigned int greatestRadix = 36;

struct WordPower {
    std::size_t digits;
    Word power;
};

/// For each radix the most digits that fit in a word.
constexpr std::array<WordPower, greatestRadix + 1> wordPowers = [] {
    std::array<WordPower, greatestRadix + 1> powers{};
    for (unsigned int radix = 2; radix <= greatestRadix; ++radix) {
        powers[radix] = {1, radix};
        while (high(product(powers[radix].power, radix)) == 0) {
            powers[radix].power *= radix;
            ++powers[radix].digits;
        }
    }
    return powers;
}();

} // namespace

// --- Radix ---

Radix::Radix(unsigned int radix) noexcept
    : value_(radix), digitsPerWord_(wordPowers[radix].digits), wordPower_(wordPowers[radix].power) {
}

int Radix::bitsPerDigit() const noexcept {
    return std::has_single_bit(value_) ? std::countr_zero(value_) : 0;
}

const Radix::Power& Radix::power(std::size_t index) {
    if (powers_.empty()) {
        powers_.push_back({digitsPerWord_, {wordPower_}});
    }
    while (powers_.size() <= index) {
        const Power& last = powers_.back();
        const std::size_t count = last.words.size();
        Power next{2 * last.digits, std::vector<Word>(2 * count)};
        multiply(next.words.data(), last.words.data(), count, last.words.data(), count);
        next.words.resize(significant(next.words.data(), 2 * count));
        powers_.push_back(std::move(next));
    }
    return powers_[index];
}

std::size_t Radix::indexAround(std::size_t digits) const noexcept {
    return static_cast<std::size_t>(std::bit_width(digits * 2 / 3 / digitsPerWord_)) - 1;
}

std::size_t Radix::wordsFor(std::size_t digits) const noexcept {
    return digits / digitsPerWord_ + 2;
}

std::size_t Radix::digitsFor(std::size_t bits) const noexcept {
    return static_cast<std::size_t>(static_cast<double>(bits) / std::log2(value_)) + 2;
}

// --- From digits ---

namespace {

std::size_t fromBits(Word* r, const unsigned char* digits, std::size_t count, int bits) noexcept {
    std::size_t words = 0;
    Word word = 0;
    int filled = 0;
    for (std::size_t i = count; i-- > 0;) {
        const Word digit = digits[i];
        word |= digit << filled;
        filled += bits;
        if (filled >= wordBits) {
            r[words++] = word;
            filled -= wordBits;
            word = digit >> (bits - filled);
        }
    }
    r[words++] = word;
    return significant(r, words);
}

/// Eight digits at once: neighbours become one number, three times.
Word fromEightDigits(const unsigned char* digits, Word radix) noexcept {
    constexpr Word oddBytes = 0x00FF00FF00FF00FF;
    constexpr Word oddPairs = 0x0000FFFF0000FFFF;
    constexpr Word oddHalf = 0x00000000FFFFFFFF;
    const Word square = radix * radix;
    Word word = 0;
    std::memcpy(&word, digits, sizeof word);
    word = (word & oddBytes) * radix + (word >> 8 & oddBytes);
    word = (word & oddPairs) * square + (word >> 16 & oddPairs);
    return (word & oddHalf) * (square * square) + (word >> 32);
}

/// Requires: no more digits than a word has.
Word wordFrom(const unsigned char* digits, std::size_t count, Word radix) noexcept {
    Word word = 0;
    std::size_t i = 0;
    for (; i < count % 8; ++i) {
        word = word * radix + digits[i];
    }
    const Word square = radix * radix;
    const Word eighth = square * square * square * square;
    for (; i < count; i += 8) {
        word = word * eighth + fromEightDigits(digits + i, radix);
    }
    return word;
}

/// A word's digits at a time.
std::size_t fromFewDigits(Word* r, const unsigned char* digits, std::size_t count,
                          const Radix& radix) noexcept {
    const std::size_t perWord = radix.digitsPerWord();
    const std::size_t first = count % perWord;
    std::size_t words = 0;
    if (const Word word = wordFrom(digits, first, radix.value())) {
        r[words++] = word;
    }
    for (std::size_t i = first; i < count; i += perWord) {
        const Word word = wordFrom(digits + i, perWord, radix.value());
        if (const Word carry = multiplyWord(r, r, words, radix.wordPower(), word)) {
            r[words++] = carry;
        }
    }
    return words;
}

} // namespace

std::size_t fromDigits(Word* r, const unsigned char* digits, std::size_t count, Radix& radix) {
    if (const int bits = radix.bitsPerDigit()) {
        return fromBits(r, digits, count, bits);
    }
    if (count <= fromDigitsSize * radix.digitsPerWord()) {
        return fromFewDigits(r, digits, count, radix);
    }
    // The upper digits times a power, and the lower ones, which have as many as it has zeros.
    const Radix::Power& power = radix.power(radix.indexAround(count));
    const std::size_t lower = power.digits;
    Scratch scratch(radix.wordsFor(count - lower) + radix.wordsFor(lower));
    Word* const upperWords = scratch.data();
    const std::size_t upperCount = fromDigits(upperWords, digits, count - lower, radix);
    Word* const lowerWords = upperWords + upperCount;
    const std::size_t lowerCount = fromDigits(lowerWords, digits + (count - lower), lower, radix);
    if (upperCount == 0) {
        std::copy_n(lowerWords, lowerCount, r);
        return lowerCount;
    }
    const std::size_t words = upperCount + power.words.size();
    multiply(r, upperWords, upperCount, power.words.data(), power.words.size());
    add(r, r, words, lowerWords, lowerCount);
    return significant(r, words);
}

// --- To digits ---

namespace {

char16_t* writeBits(char16_t* text, const Word* a, std::size_t count, int bits) noexcept {
    const std::size_t length = bitLength(a, count);
    const auto step = static_cast<std::size_t>(bits);
    const Word mask = (Word{1} << bits) - 1;
    for (std::size_t digit = (length + step - 1) / step; digit-- > 0;) {
        const std::size_t position = digit * step;
        const std::size_t word = position / wordBits;
        const std::size_t shift = position % wordBits;
        Word value = a[word] >> shift;
        if (shift + step > wordBits && word + 1 < count) {
            value |= a[word + 1] << (wordBits - shift);
        }
        *text++ = digitUnits[value & mask];
    }
    return text;
}

/// Writes `count` digits that end at `end`, zeros in front included. @return their start.
char16_t* writeWord(char16_t* end, Word word, std::size_t count, unsigned int radix) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        *--end = digitUnits[word % radix];
        word /= radix;
    }
    return end;
}

/// Decimal digits go in pairs, by half words.
char16_t* writeDecimalWord(char16_t* end, Word word, std::size_t count) noexcept {
    for (; count >= 2; count -= 2) {
        const Word pair = word % 100;
        word /= 100;
        *--end = digitUnits[pair % 10];
        *--end = digitUnits[pair / 10];
    }
    return writeWord(end, word, count, 10);
}

/// Writes exactly `digits` digits that begin at `text`, a word's digits at a time. `a` is used up.
void writeFewDigits(char16_t* text, std::size_t digits, Word* a, std::size_t count,
                    const Radix& radix) noexcept {
    const WordDivisor divisor(radix.wordPower());
    char16_t* end = text + digits;
    while (end > text) {
        const Word word = divisor.divide(a, a, count);
        count = significant(a, count);
        const std::size_t few =
            std::min(radix.digitsPerWord(), static_cast<std::size_t>(end - text));
        end = radix.value() == 10 ? writeDecimalWord(end, word, few)
                                  : writeWord(end, word, few, radix.value());
    }
}

/// Writes exactly `digits` digits that begin at `text`. `a` is used up.
void writeDigits(char16_t* text, std::size_t digits, Word* a, std::size_t count, Radix& radix) {
    if (count <= toDigitsSize) {
        writeFewDigits(text, digits, a, count, radix);
        return;
    }
    // The quotient and the remainder by a power, which have the upper and the lower digits.
    const Radix::Power& power = radix.power(radix.indexAround(digits));
    const std::size_t upper = digits - power.digits;
    const std::size_t powerCount = power.words.size();
    if (compare(a, count, power.words.data(), powerCount) < 0) {
        std::fill_n(text, upper, u'0');
        writeDigits(text + upper, power.digits, a, count, radix);
        return;
    }
    const std::size_t quotientCount = count - powerCount + 1;
    Scratch scratch(quotientCount + powerCount);
    Word* const quotient = scratch.data();
    Word* const remainder = quotient + quotientCount;
    divide(quotient, remainder, a, count, power.words.data(), powerCount);
    writeDigits(text, upper, quotient, significant(quotient, quotientCount), radix);
    writeDigits(text + upper, power.digits, remainder, significant(remainder, powerCount), radix);
}

} // namespace

char16_t* toDigits(char16_t* text, const Word* a, std::size_t count, Radix& radix) {
    if (count == 0) {
        *text = u'0';
        return text + 1;
    }
    if (const int bits = radix.bitsPerDigit()) {
        return writeBits(text, a, count, bits);
    }
    const std::size_t digits = radix.digitsFor(bitLength(a, count));
    Scratch number(count);
    std::copy_n(a, count, number.data());
    writeDigits(text, digits, number.data(), count, radix);
    char16_t* const first =
        std::find_if(text, text + digits, [](char16_t unit) { return unit != u'0'; });
    return std::copy(first, text + digits, text);
}

} // namespace qv::math::detail
