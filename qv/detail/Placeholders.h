#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qv::detail {

/// A numbered placeholder of a pattern, "{0}", "{1}" and so on: its index and the range where it
/// stands.
struct Placeholder {
    std::size_t index;
    std::size_t start;
    std::size_t end;
};

/// Reads the placeholder that opens at `start`: a brace, a decimal index without leading zeros, a
/// brace.
/// @return false if what stands there is none.
inline bool readPlaceholder(std::u16string_view pattern, std::size_t start,
                            Placeholder& placeholder) noexcept {
    constexpr std::size_t greatestDigits = 9;
    std::size_t index = 0;
    std::size_t i = start + 1;
    while (i < pattern.size() && pattern[i] >= u'0' && pattern[i] <= u'9') {
        index = index * 10 + (pattern[i] - u'0');
        ++i;
    }
    const std::size_t digits = i - start - 1;
    const bool leadingZero = digits > 1 && pattern[start + 1] == u'0';
    if (digits == 0 || digits > greatestDigits || leadingZero || i >= pattern.size() ||
        pattern[i] != u'}') {
        return false;
    }
    placeholder = {index, start, i + 1};
    return true;
}

/// Calls `visit` for each placeholder of the pattern, from the first.
template <class Visit>
void forEachPlaceholder(std::u16string_view pattern, Visit visit) {
    std::size_t i = pattern.find(u'{');
    while (i != std::u16string_view::npos) {
        Placeholder placeholder{};
        if (readPlaceholder(pattern, i, placeholder)) {
            visit(placeholder);
            i = pattern.find(u'{', placeholder.end);
        } else {
            i = pattern.find(u'{', i + 1);
        }
    }
}

/// How many indices occur, counted from 0 up to the first that does not.
inline std::size_t consecutivePlaceholders(std::u16string_view pattern) {
    // A scan notes which of 64 indices occur; patterns with more than that are scanned again.
    constexpr std::size_t window = 64;
    std::size_t count = 0;
    std::size_t found = window;
    while (found == window) {
        std::uint64_t occurs = 0;
        forEachPlaceholder(pattern, [&](const Placeholder& placeholder) {
            if (placeholder.index - count < window) {
                occurs |= std::uint64_t{1} << (placeholder.index - count);
            }
        });
        found = static_cast<std::size_t>(std::countr_one(occurs));
        count += found;
    }
    return count;
}

} // namespace qv::detail
