#pragma once

#include <cstdint>
#include <limits>

namespace qv::detail {

/// A real number cut toward zero; what 64 bits do not hold, and a not-a-number, give the smallest
/// of them, as the processor has it.
constexpr std::int64_t truncated(double value) noexcept {
    constexpr double limit = 0x1p63;
    return value >= -limit && value < limit ? static_cast<std::int64_t>(value)
                                            : std::numeric_limits<std::int64_t>::min();
}

} // namespace qv::detail
