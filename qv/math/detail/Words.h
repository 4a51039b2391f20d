#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <immintrin.h>
#include <memory>

/// Natural numbers as arrays of 64-bit words, least significant first: the operations that take one
/// pass. A result may stand in the place of an operand.
namespace qv::math::detail {

using Word = unsigned long long;
__extension__ using DoubleWord = unsigned __int128;

inline constexpr int wordBits = 64;

constexpr Word low(DoubleWord value) noexcept { return static_cast<Word>(value); }
constexpr Word high(DoubleWord value) noexcept { return static_cast<Word>(value >> wordBits); }
constexpr DoubleWord joined(Word high, Word low) noexcept {
    return static_cast<DoubleWord>(high) << wordBits | low;
}
constexpr DoubleWord product(Word a, Word b) noexcept { return static_cast<DoubleWord>(a) * b; }

/// Words or other units for one operation: few of them need no memory. They begin as they are
/// found.
/// @throws std::bad_alloc.
template <class Unit>
class ScratchOf {
public:
    static constexpr std::size_t few = 768 / sizeof(Unit);

    explicit ScratchOf(std::size_t count)
        : many_(count > few ? new Unit[count] : nullptr),
          data_(count > few ? many_.get() : place_) {}
    ScratchOf(const ScratchOf&) = delete;
    ScratchOf& operator=(const ScratchOf&) = delete;
    ~ScratchOf() = default;

    Unit* data() noexcept { return data_; }

private:
    std::unique_ptr<Unit[]> many_;
    Unit* data_;
    Unit place_[few];
};

using Scratch = ScratchOf<Word>;

// --- Measuring and comparing ---

/// How many words are left without the zeros on top.
inline std::size_t significant(const Word* a, std::size_t count) noexcept {
    while (count > 0 && a[count - 1] == 0) {
        --count;
    }
    return count;
}

/// The bits of a number whose top word is not zero.
inline std::size_t bitLength(const Word* a, std::size_t count) noexcept {
    return count == 0 ? 0
                      : count * wordBits - static_cast<std::size_t>(std::countl_zero(a[count - 1]));
}

/// -1, 0 or 1.
inline int compare(const Word* a, const Word* b, std::size_t count) noexcept {
    while (count > 0) {
        --count;
        if (a[count] != b[count]) {
            return a[count] < b[count] ? -1 : 1;
        }
    }
    return 0;
}

/// -1, 0 or 1, for numbers whose top words are not zero.
inline int compare(const Word* a, std::size_t aCount, const Word* b, std::size_t bCount) noexcept {
    if (aCount != bCount) {
        return aCount < bCount ? -1 : 1;
    }
    return compare(a, b, aCount);
}

// --- Sums and differences: what they return is the carry or the borrow ---

/// r = a + carry.
inline Word addCarry(Word* r, const Word* a, std::size_t count, Word carry) noexcept {
    std::size_t i = 0;
    for (; carry != 0 && i < count; ++i) {
        r[i] = a[i] + carry;
        carry = r[i] < carry ? 1 : 0;
    }
    if (r != a) {
        std::copy(a + i, a + count, r + i);
    }
    return carry;
}

/// r = a - borrow.
inline Word subtractBorrow(Word* r, const Word* a, std::size_t count, Word borrow) noexcept {
    std::size_t i = 0;
    for (; borrow != 0 && i < count; ++i) {
        const Word difference = a[i] - borrow;
        borrow = a[i] < borrow ? 1 : 0;
        r[i] = difference;
    }
    if (r != a) {
        std::copy(a + i, a + count, r + i);
    }
    return borrow;
}

/// r = a + b, of one length.
inline Word addSame(Word* r, const Word* a, const Word* b, std::size_t count) noexcept {
    unsigned char carry = 0;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) { // the carry stays in the processor's flag
        carry = _addcarry_u64(carry, a[i], b[i], r + i);
        carry = _addcarry_u64(carry, a[i + 1], b[i + 1], r + i + 1);
        carry = _addcarry_u64(carry, a[i + 2], b[i + 2], r + i + 2);
        carry = _addcarry_u64(carry, a[i + 3], b[i + 3], r + i + 3);
    }
    for (; i < count; ++i) {
        carry = _addcarry_u64(carry, a[i], b[i], r + i);
    }
    return carry;
}

/// r = a - b, of one length.
inline Word subtractSame(Word* r, const Word* a, const Word* b, std::size_t count) noexcept {
    unsigned char borrow = 0;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        borrow = _subborrow_u64(borrow, a[i], b[i], r + i);
        borrow = _subborrow_u64(borrow, a[i + 1], b[i + 1], r + i + 1);
        borrow = _subborrow_u64(borrow, a[i + 2], b[i + 2], r + i + 2);
        borrow = _subborrow_u64(borrow, a[i + 3], b[i + 3], r + i + 3);
    }
    for (; i < count; ++i) {
        borrow = _subborrow_u64(borrow, a[i], b[i], r + i);
    }
    return borrow;
}

/// r = a + b. Requires: `a` is not the shorter.
inline Word add(Word* r, const Word* a, std::size_t aCount, const Word* b,
                std::size_t bCount) noexcept {
    const Word carry = addSame(r, a, b, bCount);
    return addCarry(r + bCount, a + bCount, aCount - bCount, carry);
}

/// r = a - b. Requires: `a` is not the shorter.
inline Word subtract(Word* r, const Word* a, std::size_t aCount, const Word* b,
                     std::size_t bCount) noexcept {
    const Word borrow = subtractSame(r, a, b, bCount);
    return subtractBorrow(r + bCount, a + bCount, aCount - bCount, borrow);
}

// --- One word against many: what they return goes into the next word, or out of it ---

/// r = a * factor + carry.
inline Word multiplyWord(Word* r, const Word* a, std::size_t count, Word factor,
                         Word carry = 0) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const DoubleWord sum = product(a[i], factor) + carry;
        r[i] = low(sum);
        carry = high(sum);
    }
    return carry;
}

/// r += a * factor.
inline Word addProduct(Word* r, const Word* a, std::size_t count, Word factor) noexcept {
    Word carry = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const DoubleWord sum = product(a[i], factor) + r[i] + carry;
        r[i] = low(sum);
        carry = high(sum);
    }
    return carry;
}

/// r -= a * factor.
inline Word subtractProduct(Word* r, const Word* a, std::size_t count, Word factor) noexcept {
    Word borrow = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const DoubleWord sum = product(a[i], factor) + borrow;
        const Word difference = r[i] - low(sum);
        borrow = high(sum) + (r[i] < low(sum) ? 1 : 0);
        r[i] = difference;
    }
    return borrow;
}

// --- Shifts by less than a word: what they return is what falls out ---

/// Requires: `r` is `a` or above it.
inline Word shiftLeft(Word* r, const Word* a, std::size_t count, int bits) noexcept {
    if (bits == 0) {
        std::copy_backward(a, a + count, r + count);
        return 0;
    }
    if (count == 0) {
        return 0;
    }
    const Word above = a[count - 1] >> (wordBits - bits);
    for (std::size_t i = count - 1; i > 0; --i) {
        r[i] = a[i] << bits | a[i - 1] >> (wordBits - bits);
    }
    r[0] = a[0] << bits;
    return above;
}

/// Requires: `r` is `a` or below it.
inline void shiftRight(Word* r, const Word* a, std::size_t count, int bits) noexcept {
    if (bits == 0) {
        std::copy(a, a + count, r);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const Word above = i + 1 < count ? a[i + 1] << (wordBits - bits) : 0;
        r[i] = a[i] >> bits | above;
    }
}

} // namespace qv::math::detail
