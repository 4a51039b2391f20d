#pragma once

#include "qv/math/detail/Words.h"

namespace qv::math::detail {

/// r = a to the power of e modulo m, in `mCount` words that stand apart from the others.
/// Requires: `a` is below `m`; none of them is 0; the top words are not 0.
/// @throws std::bad_alloc.
void modularPower(Word* r, const Word* a, std::size_t aCount, const Word* e, std::size_t eCount,
                  const Word* m, std::size_t mCount);

} // namespace qv::math::detail
