#pragma once

#include "qvcore/Text.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>

/// What the lengths that callers give stand for, and the sizes that follow from them.
namespace qv::detail {

/// The number of units that `length` stands for: -1 means up to the terminator, and any other
/// negative one stands for none.
inline int measured(const char16_t* text, int length) noexcept {
    if (length != -1) {
        return std::max(length, 0);
    }
    return text == nullptr ? 0 : QVStrLenW_32(text);
}

inline int measured(const char* bytes, int length) noexcept {
    if (length != -1) {
        return std::max(length, 0);
    }
    return bytes == nullptr ? 0 : QVStrLenA_32(bytes);
}

inline int measured(const wchar_t* text, int length) noexcept {
    if (length != -1) {
        return std::max(length, 0);
    }
    return text == nullptr ? 0 : static_cast<int>(std::char_traits<wchar_t>::length(text));
}

/// Room for `count` characters of `unitSize` at most, as a converter says it, and `more`.
/// @throws std::bad_alloc where that is no `int`.
inline int checkedSize(int unitSize, std::int64_t count, int more = 0) {
    const std::int64_t size = std::max(unitSize, 0) * count + more;
    if (size > std::numeric_limits<int>::max()) {
        throw std::bad_alloc();
    }
    return static_cast<int>(size);
}

} // namespace qv::detail
