#pragma once

#include <array>
#include <cstdint>

/// The simple case mapping of the Unicode basic multilingual plane, out of a generated table.
///
/// Thread safety: immutable.
namespace qv::core {

namespace casemap {

/// A unit whose lower form is `form`, beside the form itself and its upper form.
struct ExtraSource {
    char16_t form;
    char16_t unit;
};

#include "qvcore/common/CaseMap.inc"

template <typename Blocks, typename Distances>
constexpr char16_t map(char16_t unit, const Blocks& blocks, const Distances& distances) noexcept {
    const std::size_t block = blocks[unit >> blockBits];
    const std::size_t place = unit & ((1u << blockBits) - 1);
    return static_cast<char16_t>(unit + distances[(block << blockBits) | place]);
}

} // namespace casemap

constexpr char16_t toLower(char16_t unit) noexcept {
    return casemap::map(unit, casemap::lowerBlocks, casemap::lowerDistances);
}

constexpr char16_t toUpper(char16_t unit) noexcept {
    return casemap::map(unit, casemap::upperBlocks, casemap::upperDistances);
}

/// All units whose lower form is the lower form of `unit`. Never more than three; the last one is
/// repeated to fill the array.
constexpr std::array<char16_t, 3> caseVariants(char16_t unit) noexcept {
    const char16_t lower = toLower(unit);
    const char16_t upper = toUpper(lower);
    std::array<char16_t, 3> variants = {lower, lower, lower};
    if (toLower(upper) == lower) {
        variants[1] = upper;
        variants[2] = upper;
    }
    for (const casemap::ExtraSource& source : casemap::extraSources) {
        if (source.form == lower) {
            variants[2] = source.unit;
        }
    }
    return variants;
}

} // namespace qv::core
