#include "qv/text/charset/BTCSingleByte.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/detail/Surrogates.h"
#include "qv/text/charset/detail/UnitRuns.h"

#include <algorithm>

namespace qv::text::charset {

namespace {

/// Runs that a table is used for before runs without one are looked for again.
constexpr int tableRuns = 4;

/// The characters of eight bytes.
__m128i lookUp(const signed char* in, const char16_t* table) noexcept {
    const auto unit = [in, table](int index) {
        return static_cast<short>(table[static_cast<unsigned char>(in[index])]);
    };
    return _mm_setr_epi16(unit(0), unit(1), unit(2), unit(3), unit(4), unit(5), unit(6), unit(7));
}

/// Decodes runs in which every byte has a character.
void decodeRunsByTable(detail::Decoding& decoding, const char16_t* table) noexcept {
    const __m128i none = detail::splat16(detail::replacementChar);
    detail::Decoding runs = decoding;
    for (int run = 0; run < tableRuns; ++run) {
        if (std::min(runs.available(), runs.room()) < detail::unitsPerRun) {
            break;
        }
        const __m128i first = lookUp(runs.in, table);
        const __m128i second = lookUp(runs.in + 8, table);
        if (detail::hasAny(
                _mm_or_si128(_mm_cmpeq_epi16(first, none), _mm_cmpeq_epi16(second, none)))) {
            break;
        }
        detail::storeVector(runs.out, first);
        detail::storeVector(runs.out + 8, second);
        runs.in += detail::unitsPerRun;
        runs.out += detail::unitsPerRun;
    }
    decoding.follow(runs);
}

} // namespace

std::int32_t BTCSingleByte::convert(const signed char* src, std::int32_t* srcPos,
                                    std::int32_t srcEnd, char16_t* dst, std::int32_t* dstPos,
                                    std::int32_t dstEnd) {
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    while (decoding.available() > 0 && writeUnit(decoding, convertByte(*decoding.in))) {
    }
    return decoding.commit();
}

std::int32_t BTCSingleByte::flush(char16_t*, std::int32_t*, std::int32_t) { return 0; }

void BTCSingleByte::reset() {}

int BTCSingleByte::getMaxBytesPerChar() { return 1; }

int BTCSingleByte::getMaxCharsPerByte() { return 1; }

void BTCSingleByte::convertByTable(detail::Decoding& decoding, const char16_t* table,
                                   void (*takeRun)(detail::Decoding&) noexcept) const {
    bool goesOn = true;
    while (goesOn && decoding.available() > 0) {
        takeRun(decoding);
        decodeRunsByTable(decoding, table);
        const signed char* const next =
            decoding.in + std::min<std::ptrdiff_t>(decoding.available(), detail::unitsBetweenRuns);
        while (goesOn && decoding.in < next) {
            goesOn = writeUnit(decoding, table[static_cast<unsigned char>(*decoding.in)]);
        }
    }
}

/// Decodes one byte whose character is `unit`.
/// @return false where the call must stop in front of the byte.
inline bool BTCSingleByte::writeUnit(detail::Decoding& decoding, char16_t unit) const {
    if (unit == detail::replacementChar) {
        if (!substitutionMode_) {
            throw UnmappableCharacterException();
        }
        if (substitutionCount_ != 1) {
            ++decoding.in;
            return true;
        }
        unit = substitutionChars_[0];
    }
    if (decoding.room() < 1) {
        return false;
    }
    *decoding.out++ = unit;
    ++decoding.in;
    return true;
}

} // namespace qv::text::charset
