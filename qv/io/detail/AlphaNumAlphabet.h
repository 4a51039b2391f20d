#pragma once

#include <array>
#include <cstdint>

namespace qv::io::detail {

/// The 32 letters of an AlphaNum stream, as a table in each direction. A letter is one byte: of a
/// unit beyond U+00FF its low byte is written, and no byte is read as it.
class AlphaNumAlphabet {
public:
    static constexpr int letterCount = 32;
    static constexpr std::int16_t noValue = -1;

    /// Null is the default: the capital letters without I and O, then the digits from 2 on.
    /// @throws ResultException QV_E_INVALIDARG for a text that has not 32 units.
    explicit AlphaNumAlphabet(const char16_t* text);

    /// Of a value below 32.
    unsigned char letter(unsigned value) const noexcept { return letters_[value]; }
    /// The first place of a letter, or noValue.
    std::int16_t value(unsigned char letter) const noexcept { return values_[letter]; }

private:
    std::array<unsigned char, letterCount> letters_;
    std::array<std::int16_t, 256> values_;
};

} // namespace qv::io::detail
