#include "qv/text/charset/BTCSingleByte.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/detail/Surrogates.h"
#include "qv/text/charset/detail/UnitRuns.h"

#include <algorithm>

namespace qv::text::charset {

namespace {

/// Runs that a table is used for before runs without one are looked for again.
constexpr int tableRuns = 4;

/// Decodes runs in which every byte has a character.
void decodeRunByTable(detail::Decoding& decoding, const char16_t* table) noexcept {
    for (int run = 0; run < tableRuns; ++run) {
        if (std::min(decoding.available(), decoding.room()) < detail::unitsPerRun) {
            return;
        }
        bool isWhole = true;
        for (int i = 0; i < detail::unitsPerRun; ++i) {
            decoding.out[i] = table[static_cast<unsigned char>(decoding.in[i])];
            isWhole &= decoding.out[i] != detail::replacementChar;
        }
        if (!isWhole) {
            return;
        }
        decoding.in += detail::unitsPerRun;
        decoding.out += detail::unitsPerRun;
    }
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
        decodeRunByTable(decoding, table);
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
