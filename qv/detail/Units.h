#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <emmintrin.h>

/// Comparison and search over counted runs of UTF-16 units, eight at a time.
namespace qv::detail {

inline __m128i loadUnits(const char16_t* units) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}

/// One bit pair for each of eight units that are equal in both.
inline unsigned equalMask(__m128i left, __m128i right) noexcept {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(left, right)));
}

inline int maskIndex(unsigned mask) noexcept { return std::countr_zero(mask) / 2; }

inline bool equalUnits(const char16_t* left, const char16_t* right, int count) noexcept {
    return count == 0 ||
           std::memcmp(left, right, static_cast<std::size_t>(count) * sizeof(char16_t)) == 0;
}

/// -1, 0 or 1 at the first unit that differs.
inline int compareUnits(const char16_t* left, const char16_t* right, int count) noexcept {
    int i = 0;
    for (; i <= count - 8; i += 8) {
        const unsigned different = 0xFFFFu & ~equalMask(loadUnits(left + i), loadUnits(right + i));
        if (different != 0) {
            i += maskIndex(different);
            return left[i] < right[i] ? -1 : 1;
        }
    }
    for (; i < count; ++i) {
        if (left[i] != right[i]) {
            return left[i] < right[i] ? -1 : 1;
        }
    }
    return 0;
}

/// The first index of `unit`, or -1.
inline int findUnit(const char16_t* text, int length, char16_t unit) noexcept {
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    int i = 0;
    for (; i <= length - 8; i += 8) {
        if (const unsigned equal = equalMask(loadUnits(text + i), wanted)) {
            return i + maskIndex(equal);
        }
    }
    for (; i < length; ++i) {
        if (text[i] == unit) {
            return i;
        }
    }
    return -1;
}

/// The first index of either unit, or -1.
inline int findEither(const char16_t* text, int length, char16_t first, char16_t second) noexcept {
    const __m128i wantedFirst = _mm_set1_epi16(static_cast<short>(first));
    const __m128i wantedSecond = _mm_set1_epi16(static_cast<short>(second));
    int i = 0;
    for (; i <= length - 8; i += 8) {
        const __m128i units = loadUnits(text + i);
        if (const unsigned equal = equalMask(units, wantedFirst) | equalMask(units, wantedSecond)) {
            return i + maskIndex(equal);
        }
    }
    for (; i < length; ++i) {
        if (text[i] == first || text[i] == second) {
            return i;
        }
    }
    return -1;
}

/// The first index of a surrogate, or -1.
inline int findSurrogate(const char16_t* text, int length) noexcept {
    const __m128i kind = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(0xD800));
    int i = 0;
    for (; i <= length - 8; i += 8) {
        if (const unsigned equal = equalMask(_mm_and_si128(loadUnits(text + i), kind), wanted)) {
            return i + maskIndex(equal);
        }
    }
    for (; i < length; ++i) {
        if ((text[i] & 0xF800) == 0xD800) {
            return i;
        }
    }
    return -1;
}

/// The last index of `unit`, or -1.
inline int findUnitBackward(const char16_t* text, int length, char16_t unit) noexcept {
    for (int i = length - 1; i >= 0; --i) {
        if (text[i] == unit) {
            return i;
        }
    }
    return -1;
}

/// The first index of a needle of at least one unit, or -1. Looks at its first and its last unit
/// together, and compares the rest only where both stand.
inline int findUnits(const char16_t* text, int length, const char16_t* needle,
                     int needleLength) noexcept {
    if (needleLength == 1) {
        return findUnit(text, length, needle[0]);
    }
    const int last = needleLength - 1;
    const int positions = length - last;
    const __m128i firstUnit = _mm_set1_epi16(static_cast<short>(needle[0]));
    const __m128i lastUnit = _mm_set1_epi16(static_cast<short>(needle[last]));
    int i = 0;
    for (; i <= positions - 8; i += 8) {
        unsigned candidates = equalMask(loadUnits(text + i), firstUnit) &
                              equalMask(loadUnits(text + i + last), lastUnit);
        while (candidates != 0) {
            const int index = maskIndex(candidates);
            if (equalUnits(text + i + index, needle, needleLength)) {
                return i + index;
            }
            candidates &= ~(3u << (2 * index));
        }
    }
    for (; i < positions; ++i) {
        if (text[i] == needle[0] && equalUnits(text + i, needle, needleLength)) {
            return i;
        }
    }
    return -1;
}

} // namespace qv::detail
