#pragma once

#include "qv/text/charset/detail/Conversion.h"

#include <span>

namespace qv::text::charset::detail {

/// Bytes that a decoding kernel looks at together.
inline constexpr int utf8BlockBytes = 64;
/// Units that an encoding kernel looks at together.
inline constexpr int utf8BlockUnits = 16;

/// The vector kernels of UTF-8 for one kind of processor.
///
/// A kernel converts blocks as long as the input is of the plainest sort, and moves the
/// conversion's pointers behind what it converted, always between two characters. It stops at
/// anything that needs a decision: a bad byte, a surrogate on either side, a character beyond
/// U+FFFF, less room than the largest result of a block and a vector more. It reads and writes
/// nothing outside the two ranges, and leaves the room behind what it wrote as it was.
struct Utf8Blocks {
    void (*decode)(Decoding& decoding) noexcept;
    void (*encode)(Encoding& encoding) noexcept;
    bool (*isSupported)() noexcept;
};

/// The kernels for all processors, the fastest first; the last one runs everywhere.
std::span<const Utf8Blocks> allUtf8Blocks() noexcept;

/// The fastest kernels that this processor supports. Usable from static constructors.
/// Thread safety: internally locked.
const Utf8Blocks& utf8Blocks() noexcept;

} // namespace qv::text::charset::detail
