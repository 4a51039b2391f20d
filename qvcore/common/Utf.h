#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// UTF-8 and UTF-16, character by character.
///
/// Thread safety: immutable.
namespace qv::core {

constexpr char32_t replacementCharacter = 0xFFFD;

constexpr bool isSurrogate(char32_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDFFF; }

/// What was read: a character and the units that it took. Bad input gives `bad`.
struct Decoded {
    static constexpr char32_t bad = 0xFFFFFFFF;

    char32_t character;
    std::size_t units;
};

/// A character's code units, at most four.
template <typename Unit>
struct Encoded {
    Unit units[4];
    std::size_t count;

    std::basic_string_view<Unit> view() const noexcept { return {units, count}; }
};

/// Reads the first character. An unpaired surrogate is bad and takes one unit.
/// Requires: text that is not empty.
Decoded decodeUtf16(std::u16string_view text) noexcept;
/// Reads the first character. Of a bad sequence the longest part that could have begun a character
/// is taken, at least one byte. Source: the Unicode Standard, "U+FFFD Substitution of Maximal
/// Subparts". Requires: text that is not empty.
Decoded decodeUtf8(std::string_view text) noexcept;

/// Requires: a character that is no surrogate.
Encoded<char16_t> encodeUtf16(char32_t character) noexcept;
Encoded<char> encodeUtf8(char32_t character) noexcept;

} // namespace qv::core
