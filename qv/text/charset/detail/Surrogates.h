#pragma once

#include <cstdint>

namespace qv::text::charset::detail {

inline constexpr char16_t replacementChar = u'\uFFFD';

constexpr bool isLeading(std::uint32_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isTrailing(std::uint32_t unit) noexcept { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr bool isSurrogate(std::uint32_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDFFF; }

constexpr std::uint32_t combine(char16_t lead, char16_t trail) noexcept {
    return (std::uint32_t{lead} << 10) + trail - 0x35FDC00;
}
constexpr char16_t leadOf(std::uint32_t codePoint) noexcept {
    return static_cast<char16_t>(((codePoint - 0x10000) >> 10) + 0xD800);
}
constexpr char16_t trailOf(std::uint32_t codePoint) noexcept {
    return static_cast<char16_t>((codePoint & 0x3FF) + 0xDC00);
}

/// @throws InvalidCharacterException.
[[noreturn]] void throwLeadWithoutTrail();
/// @throws InvalidCharacterException.
[[noreturn]] void throwTrailWithoutLead();

/// The leading surrogate that an encoder keeps from one unit, or one call, to the next.
class PendingLead {
public:
    bool isSet() const noexcept { return lead_ != 0; }
    void set(char16_t lead) noexcept { lead_ = lead; }
    void clear() noexcept { lead_ = 0; }

    /// The code point that it makes with `unit`. Clears nothing.
    /// @throws InvalidCharacterException where `unit` is no trailing surrogate.
    std::uint32_t combineWith(char16_t unit) const {
        if (!isTrailing(unit)) {
            throwLeadWithoutTrail();
        }
        return combine(lead_, unit);
    }

    /// What `flush` has to say: nothing is written.
    /// @throws InvalidCharacterException where a surrogate is set.
    std::int32_t flush() const {
        if (isSet()) {
            throwLeadWithoutTrail();
        }
        return 0;
    }

private:
    char16_t lead_ = 0;
};

} // namespace qv::text::charset::detail
