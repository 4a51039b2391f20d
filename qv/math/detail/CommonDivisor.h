#pragma once

#include "qv/math/detail/Words.h"

namespace qv::math::detail {

/// r = the greatest common divisor of `a` and `b`, in up to `bCount` words.
/// Requires: `a` is not below `b`; neither is 0; the top words are not 0.
/// @return the words of the divisor. @throws std::bad_alloc.
std::size_t commonDivisor(Word* r, const Word* a, std::size_t aCount, const Word* b,
                          std::size_t bCount);

} // namespace qv::math::detail
