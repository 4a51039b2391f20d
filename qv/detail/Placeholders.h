#pragma once

#include <cstddef>
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
    std::size_t count = 0;
    for (bool found = true; found;) {
        found = false;
        forEachPlaceholder(pattern, [&](const Placeholder& placeholder) {
            found = found || placeholder.index == count;
        });
        count += found ? 1 : 0;
    }
    return count;
}

} // namespace qv::detail
