#pragma once

#include <bit>
#include <cstdint>

#include <emmintrin.h>

/// Eight UTF-16 units taken at a time. Every x86-64 processor has the instructions.
namespace qv::core {

class Units8 {
public:
    static constexpr int count = 8;

    static Units8 load(const char16_t* text) noexcept {
        return Units8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text)));
    }
    static Units8 repeat(char16_t unit) noexcept {
        return Units8(_mm_set1_epi16(static_cast<short>(unit)));
    }
    void store(char16_t* text) const noexcept {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(text), value_);
    }

    /// True if no unit is above 0x7F.
    bool isAscii() const noexcept {
        const Units8 high(_mm_and_si128(value_, repeat(0xFF80).value_));
        return high.equals(Units8(_mm_setzero_si128())).all();
    }
    /// The lower-case forms. Requires: isAscii().
    Units8 toLowerAscii() const noexcept { return flipCase(u'A', u'Z'); }
    /// The upper-case forms. Requires: isAscii().
    Units8 toUpperAscii() const noexcept { return flipCase(u'a', u'z'); }

    /// Units of all ones where both are the same.
    Units8 equals(Units8 other) const noexcept {
        return Units8(_mm_cmpeq_epi16(value_, other.value_));
    }
    Units8 operator|(Units8 other) const noexcept {
        return Units8(_mm_or_si128(value_, other.value_));
    }
    Units8 operator&(Units8 other) const noexcept {
        return Units8(_mm_and_si128(value_, other.value_));
    }

    /// Of a comparison: true if it holds for all units.
    bool all() const noexcept { return mask() == 0xFFFFu; }
    /// Of a comparison: two bits a unit, the first unit lowest.
    std::uint32_t mask() const noexcept {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(value_));
    }
    /// The first unit of a mask. Requires: a mask other than 0.
    static int firstOf(std::uint32_t mask) noexcept { return std::countr_zero(mask) / 2; }
    /// The mask without its first unit.
    static std::uint32_t withoutFirst(std::uint32_t mask) noexcept {
        return mask & ~(std::uint32_t{3} << (2 * firstOf(mask)));
    }

private:
    explicit Units8(__m128i value) noexcept : value_(value) {}

    /// Turns the bit between the cases in the units from `first` to `last`.
    Units8 flipCase(char16_t first, char16_t last) const noexcept {
        const __m128i above =
            _mm_cmpgt_epi16(value_, _mm_set1_epi16(static_cast<short>(first - 1)));
        const __m128i below = _mm_cmplt_epi16(value_, _mm_set1_epi16(static_cast<short>(last + 1)));
        const __m128i bit = _mm_and_si128(_mm_and_si128(above, below), _mm_set1_epi16(0x20));
        return Units8(_mm_xor_si128(value_, bit));
    }

    __m128i value_;
};

} // namespace qv::core
