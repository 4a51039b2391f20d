#pragma once

#include "qv/Results.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace qv::core {

/// Copies a path and its terminator into an area of `capacity` units.
/// @return QV_E_PATHTOOLONG if it does not fit.
template <typename Unit>
std::int32_t copyPath(std::basic_string_view<Unit> path, char16_t* buffer,
                      std::int32_t capacity) noexcept {
    if (buffer == nullptr) {
        return QV_E_POINTER;
    }
    if (capacity < 0 || path.size() >= static_cast<std::size_t>(capacity)) {
        return QV_E_PATHTOOLONG;
    }
    *std::copy(path.begin(), path.end(), buffer) = 0;
    return QV_S_OK;
}

} // namespace qv::core
