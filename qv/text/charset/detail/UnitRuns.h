#pragma once

#include "qv/text/charset/detail/Conversion.h"

#include <algorithm>
#include <cstddef>
#include <emmintrin.h>

/// Bulk loops over runs of units that need no decision, sixteen at a time.
///
/// Each converts the longest run at the start of the two ranges of a conversion that it can, moves
/// the conversion's pointers behind it, and touches nothing outside the ranges.
namespace qv::text::charset::detail {

/// Bytes or units that are converted one by one before the next run is looked for.
inline constexpr int unitsBetweenRuns = 16;

inline __m128i loadVector(const void* from) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
inline void storeVector(void* to, __m128i vector) noexcept {
    _mm_storeu_si128(static_cast<__m128i*>(to), vector);
}

/// True where none of sixteen bytes is above 0x7F.
inline bool isAscii(__m128i bytes) noexcept { return _mm_movemask_epi8(bytes) == 0; }

/// Stores sixteen bytes as sixteen units.
inline void storeWidened(char16_t* out, __m128i bytes) noexcept {
    const __m128i zero = _mm_setzero_si128();
    storeVector(out, _mm_unpacklo_epi8(bytes, zero));
    storeVector(out + 8, _mm_unpackhi_epi8(bytes, zero));
}

/// Widens bytes up to 0x7F.
inline void widenAscii(Decoding& run) noexcept {
    std::ptrdiff_t count = std::min(run.available(), run.room());
    for (; count >= 16; count -= 16, run.in += 16, run.out += 16) {
        const __m128i bytes = loadVector(run.in);
        if (!isAscii(bytes)) {
            break;
        }
        storeWidened(run.out, bytes);
    }
    for (; count > 0 && *run.in >= 0; --count) {
        *run.out++ = static_cast<char16_t>(*run.in++);
    }
}

/// Narrows units up to `limit`, which is 0x7F or 0xFF.
template <int limit>
void narrowUnits(Encoding& run) noexcept {
    static_assert(limit == 0x7F || limit == 0xFF);
    std::ptrdiff_t count = std::min(run.available(), run.room());
    const __m128i above = _mm_set1_epi16(static_cast<short>(~limit));
    for (; count >= 16; count -= 16, run.in += 16, run.out += 16) {
        const __m128i first = loadVector(run.in);
        const __m128i second = loadVector(run.in + 8);
        const __m128i odd = _mm_and_si128(_mm_or_si128(first, second), above);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(odd, _mm_setzero_si128())) != 0xFFFF) {
            break;
        }
        storeVector(run.out, _mm_packus_epi16(first, second));
    }
    for (; count > 0 && *run.in <= limit; --count) {
        *run.out++ = static_cast<signed char>(*run.in++);
    }
}

} // namespace qv::text::charset::detail
