#pragma once

#include "qv/math/detail/Words.h"

namespace qv::math::detail {

/// r = a * b, all words of it. The result stands apart from the operands, which may be the same
/// number. Sizes of at least one word.
/// @throws std::bad_alloc.
void multiply(Word* r, const Word* a, std::size_t aCount, const Word* b, std::size_t bCount);

} // namespace qv::math::detail
