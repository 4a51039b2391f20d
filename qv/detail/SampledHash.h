#pragma once

#include "qvcore/Text.h"

#include <cstdint>

namespace qv::detail {

/// The text hash of the library: multiplier 37 over at most about 32 sampled units, so that long
/// keys hash in constant time. Texts of up to 63 units are hashed whole; the step grows by one for
/// every 32 units more.
inline std::uint32_t sampledHash(const char16_t* text, int length, bool ignoreCase) noexcept {
    const auto end = static_cast<std::uint32_t>(length); // the step behind the last may be no `int`
    const auto step = static_cast<std::uint32_t>((length - 32) / 32 + 1);
    std::uint32_t hash = 0;
    if (ignoreCase) {
        for (std::uint32_t i = 0; i < end; i += step) {
            hash = hash * 37 + QVToLowerW(text[i]);
        }
    } else {
        for (std::uint32_t i = 0; i < end; i += step) {
            hash = hash * 37 + text[i];
        }
    }
    return hash;
}

} // namespace qv::detail
