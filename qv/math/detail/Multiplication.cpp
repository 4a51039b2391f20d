#include "qv/math/detail/Multiplication.h"

#include <utility>

namespace qv::math::detail {

namespace {

/// From so many words on, three products of half the size cost less than the four of the plain
/// method.
constexpr std::size_t karatsubaSize = 28;

/// The plain method. Source: Knuth, The Art of Computer Programming 2, 4.3.1, algorithm M.
void multiplyPlain(Word* r, const Word* a, std::size_t aCount, const Word* b,
                   std::size_t bCount) noexcept {
    r[aCount] = multiplyWord(r, a, aCount, b[0]);
    for (std::size_t i = 1; i < bCount; ++i) {
        r[aCount + i] = addProduct(r + i, a, aCount, b[i]);
    }
}

/// The plain method for a square: each product of two words that differ once, doubled, and then the
/// squares of the words.
void squarePlain(Word* r, const Word* a, std::size_t count) noexcept {
    r[0] = 0;
    r[count] = multiplyWord(r + 1, a + 1, count - 1, a[0]);
    for (std::size_t i = 1; i + 1 < count; ++i) {
        r[count + i] = addProduct(r + 2 * i + 1, a + i + 1, count - i - 1, a[i]);
    }
    r[2 * count - 1] = 0;
    Word shifted = 0;
    unsigned char carry = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const DoubleWord square = product(a[i], a[i]);
        const Word first = r[2 * i] << 1 | shifted;
        const Word second = r[2 * i + 1] << 1 | r[2 * i] >> (wordBits - 1);
        shifted = r[2 * i + 1] >> (wordBits - 1);
        carry = _addcarry_u64(carry, first, low(square), r + 2 * i);
        carry = _addcarry_u64(carry, second, high(square), r + 2 * i + 1);
    }
}

/// r = |a - b|. Requires: `a` is not the shorter, and the words of `r` are as many as its.
/// @return true where `b` is the greater.
bool distance(Word* r, const Word* a, std::size_t aCount, const Word* b,
              std::size_t bCount) noexcept {
    if (significant(a, aCount) <= bCount && compare(a, b, bCount) < 0) {
        subtractSame(r, b, a, bCount);
        std::fill(r + bCount, r + aCount, Word{0});
        return true;
    }
    subtract(r, a, aCount, b, bCount);
    return false;
}

/// True where `multiplyBalanced` can cut both numbers.
constexpr bool isBalanced(std::size_t aCount, std::size_t bCount) noexcept {
    return bCount > (aCount + 1) / 2;
}

/// How many words of scratch `multiplyBalanced` needs.
constexpr std::size_t scratchSize(std::size_t count) noexcept { return 3 * count + 4 * wordBits; }

/// Three products of half the size. Source: Karatsuba and Ofman, Multiplication of many-digital
/// numbers by automatic computers, 1962, in the form with differences, which have no carry.
/// Requires: `isBalanced`, and `a` is not the shorter.
void multiplyBalanced(Word* r, const Word* a, std::size_t aCount, const Word* b, std::size_t bCount,
                      Word* scratch) noexcept {
    const bool isSquare = a == b && aCount == bCount;
    if (bCount < karatsubaSize) {
        isSquare ? squarePlain(r, a, aCount) : multiplyPlain(r, a, aCount, b, bCount);
        return;
    }
    const std::size_t half = (aCount + 1) / 2;
    const std::size_t aHigh = aCount - half;
    const std::size_t bHigh = bCount - half;

    // The differences stand where the result will, their product in the scratch.
    Word* const middle = scratch;
    Word* const more = scratch + 2 * half;
    const bool aFlipped = distance(r, a, half, a + half, aHigh);
    const bool bFlipped = isSquare ? aFlipped : distance(r + half, b, half, b + half, bHigh);
    multiplyBalanced(middle, r, half, isSquare ? r : r + half, half, more);

    multiplyBalanced(r, a, half, b, half, more);
    Word* const top = r + 2 * half;
    const std::size_t topCount = aHigh + bHigh;
    if (isBalanced(aHigh, bHigh)) {
        multiplyBalanced(top, a + half, aHigh, b + half, bHigh, more);
    } else {
        multiplyPlain(top, a + half, aHigh, b + half, bHigh);
    }

    // The two products less or plus the middle one are what belongs between them.
    Word* const sum = more;
    Word carry = add(sum, r, 2 * half, top, topCount);
    if (aFlipped == bFlipped) {
        carry -= subtractSame(sum, sum, middle, 2 * half);
    } else {
        carry += addSame(sum, sum, middle, 2 * half);
    }
    carry += addSame(r + half, r + half, sum, 2 * half);
    addCarry(r + 3 * half, r + 3 * half, topCount - half, carry);
}

/// Cuts the longer number into pieces of the length of the shorter.
void multiplyPieces(Word* r, const Word* a, std::size_t aCount, const Word* b, std::size_t bCount) {
    Scratch scratch(2 * bCount);
    Word* const piece = scratch.data();
    std::fill(r, r + bCount, Word{0});
    for (std::size_t i = 0; i < aCount; i += bCount) {
        const std::size_t count = std::min(bCount, aCount - i);
        multiply(piece, b, bCount, a + i, count);
        const Word carry = addSame(r + i, r + i, piece, bCount);
        addCarry(r + i + bCount, piece + bCount, count, carry);
    }
}

} // namespace

void multiply(Word* r, const Word* a, std::size_t aCount, const Word* b, std::size_t bCount) {
    if (aCount < bCount) {
        std::swap(a, b);
        std::swap(aCount, bCount);
    }
    if (bCount < karatsubaSize) {
        a == b&& aCount == bCount ? squarePlain(r, a, aCount)
                                  : multiplyPlain(r, a, aCount, b, bCount);
    } else if (4 * bCount > 3 * aCount) {
        Scratch scratch(scratchSize(aCount));
        multiplyBalanced(r, a, aCount, b, bCount, scratch.data());
    } else {
        multiplyPieces(r, a, aCount, b, bCount);
    }
}

} // namespace qv::math::detail
