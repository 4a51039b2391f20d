#pragma once

#include <algorithm>
#include <cstdint>

namespace qv::io::detail {

/// Reads `count` units of a byte or character source in pieces of at most 256 and drops them, until
/// they are gone or the source ends. A read that gives nothing does not end it. @return units
/// dropped.
template <class Unit, class Source>
std::int32_t skipByReading(Source& source, std::int32_t count) {
    constexpr std::int32_t pieceLength = 256;
    Unit scratch[pieceLength];
    std::int32_t skipped = 0;
    while (skipped < count) {
        const std::int32_t read = source.read(scratch, std::min(count - skipped, pieceLength));
        if (read == -1) {
            break;
        }
        skipped += read;
    }
    return skipped;
}

} // namespace qv::io::detail
