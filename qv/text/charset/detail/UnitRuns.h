#pragma once

#include "qv/text/charset/detail/Conversion.h"

#include <algorithm>
#include <cstddef>
#include <emmintrin.h>

/// Bulk loops over runs of units that need no decision, sixteen at a time.
///
/// Each converts the longest run at the start of the two ranges of a conversion that it can, moves
/// the conversion's pointers behind it, and touches nothing outside the ranges. Which units belong
/// to a run is told by a kind: for sixteen bytes or units at once, and for one.
namespace qv::text::charset::detail {

inline constexpr int unitsPerRun = 16;
/// Bytes or units that are converted one by one before the next run is looked for.
inline constexpr int unitsBetweenRuns = 16;

inline __m128i loadVector(const void* from) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
inline void storeVector(void* to, __m128i vector) noexcept {
    _mm_storeu_si128(static_cast<__m128i*>(to), vector);
}
inline __m128i splat8(int byte) noexcept { return _mm_set1_epi8(static_cast<char>(byte)); }
inline __m128i splat16(int word) noexcept { return _mm_set1_epi16(static_cast<short>(word)); }

/// True where any of sixteen bytes is not zero.
inline bool hasAny(__m128i bytes) noexcept {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())) != 0xFFFF;
}
/// True where none of sixteen bytes is above 0x7F.
inline bool isAscii(__m128i bytes) noexcept { return _mm_movemask_epi8(bytes) == 0; }

/// Stores sixteen bytes as sixteen units.
inline void storeWidened(char16_t* out, __m128i bytes) noexcept {
    const __m128i zero = _mm_setzero_si128();
    storeVector(out, _mm_unpacklo_epi8(bytes, zero));
    storeVector(out + 8, _mm_unpackhi_epi8(bytes, zero));
}

// --- Kinds of runs ---

/// Bytes and units up to 0x7F.
struct AsciiRun {
    static bool isWhole(__m128i bytes) noexcept { return isAscii(bytes); }
    static bool isWhole(__m128i first, __m128i second) noexcept {
        return !hasAny(_mm_and_si128(_mm_or_si128(first, second), splat16(0xFF80)));
    }
    static bool has(unsigned unit) noexcept { return unit <= 0x7F; }
};

/// Units up to 0xFF.
struct Latin1Run {
    static bool isWhole(__m128i first, __m128i second) noexcept {
        return !hasAny(_mm_and_si128(_mm_or_si128(first, second), splat16(0xFF00)));
    }
    static bool has(unsigned unit) noexcept { return unit <= 0xFF; }
};

/// Bytes and units up to 0xFF but 0x80 to 0x9F: what Windows-1252 has in common with Unicode.
struct Cp1252Run {
    static bool isWhole(__m128i bytes) noexcept {
        const __m128i high = _mm_and_si128(bytes, splat8(0xE0));
        return !hasAny(_mm_cmpeq_epi8(high, splat8(0x80)));
    }
    static bool isWhole(__m128i first, __m128i second) noexcept {
        return Latin1Run::isWhole(first, second) && isWhole(_mm_packus_epi16(first, second));
    }
    static bool has(unsigned unit) noexcept { return unit <= 0xFF && (unit & 0xE0) != 0x80; }
};

/// Bytes up to 0x7F but the ampersand.
struct PlainByteRun {
    static bool isWhole(__m128i bytes) noexcept {
        const __m128i isAmpersand = _mm_cmpeq_epi8(bytes, splat8('&'));
        return isAscii(_mm_or_si128(bytes, isAmpersand));
    }
    static bool has(unsigned unit) noexcept { return unit <= 0x7F && unit != '&'; }
};

/// Units that AMP-7 writes as they stand: 0x20 to 0x7E but the ampersand, tab, line feed, return.
struct PlainUnitRun {
    static bool isWhole(__m128i first, __m128i second) noexcept {
        // Units above 0xFF become 0x00 or 0xFF, which are not plain either.
        const __m128i bytes = _mm_packus_epi16(first, second);
        const __m128i isPrintable = _mm_andnot_si128(_mm_cmpeq_epi8(bytes, splat8(0x7F)),
                                                     _mm_cmpgt_epi8(bytes, splat8(0x1F)));
        const __m128i isBlank = _mm_or_si128(
            _mm_cmpeq_epi8(bytes, splat8('\t')),
            _mm_or_si128(_mm_cmpeq_epi8(bytes, splat8('\n')), _mm_cmpeq_epi8(bytes, splat8('\r'))));
        const __m128i isPlain = _mm_andnot_si128(_mm_cmpeq_epi8(bytes, splat8('&')),
                                                 _mm_or_si128(isPrintable, isBlank));
        return _mm_movemask_epi8(isPlain) == 0xFFFF;
    }
    static bool has(unsigned unit) noexcept {
        return (unit >= 0x20 && unit <= 0x7E && unit != '&') || unit == '\t' || unit == '\n' ||
               unit == '\r';
    }
};

// --- The loops ---

/// Moves a run of bytes that are their own characters.
template <class Kind>
void widenRun(Decoding& decoding) noexcept {
    Decoding run = decoding;
    std::ptrdiff_t count = std::min(run.available(), run.room());
    for (; count >= unitsPerRun; count -= unitsPerRun, run.in += 16, run.out += 16) {
        const __m128i bytes = loadVector(run.in);
        if (!Kind::isWhole(bytes)) {
            break;
        }
        storeWidened(run.out, bytes);
    }
    for (; count > 0 && Kind::has(static_cast<unsigned char>(*run.in)); --count) {
        *run.out++ = static_cast<unsigned char>(*run.in++);
    }
    decoding.follow(run);
}

/// Moves a run of units that are their own bytes.
template <class Kind>
void narrowRun(Encoding& encoding) noexcept {
    Encoding run = encoding;
    std::ptrdiff_t count = std::min(run.available(), run.room());
    for (; count >= unitsPerRun; count -= unitsPerRun, run.in += 16, run.out += 16) {
        const __m128i first = loadVector(run.in);
        const __m128i second = loadVector(run.in + 8);
        if (!Kind::isWhole(first, second)) {
            break;
        }
        storeVector(run.out, _mm_packus_epi16(first, second));
    }
    for (; count > 0 && Kind::has(*run.in); --count) {
        *run.out++ = static_cast<signed char>(*run.in++);
    }
    encoding.follow(run);
}

} // namespace qv::text::charset::detail
