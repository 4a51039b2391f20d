#pragma once

#include "qv/math/detail/Words.h"

namespace qv::math::detail {

/// A divisor of one word, made ready to divide many numbers by it.
/// Source: Möller and Granlund, Improved division by invariant integers, 2011.
class WordDivisor {
public:
    /// Requires: not 0.
    explicit WordDivisor(Word divisor) noexcept;

    /// q = a / divisor, where `q` may be `a`. @return the remainder.
    Word divide(Word* q, const Word* a, std::size_t count) const noexcept;

private:
    int shift_;
    Word divisor_; ///< shifted up until its top bit is set
    Word inverse_;
};

/// q = a / b, r = a modulo b. The quotient has `aCount - bCount + 1` words, the remainder `bCount`;
/// they stand apart from the operands, and `q` may be null where only the remainder is wanted.
/// Requires: `a` is not the shorter; the top word of `b` is not zero.
/// @throws std::bad_alloc.
void divide(Word* q, Word* r, const Word* a, std::size_t aCount, const Word* b, std::size_t bCount);

} // namespace qv::math::detail
