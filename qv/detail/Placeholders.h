#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

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

/// The placeholders of a pattern, in the order in which they stand.
class Placeholders {
public:
    explicit Placeholders(std::u16string_view pattern) {
        std::size_t i = pattern.find(u'{');
        while (i != std::u16string_view::npos) {
            Placeholder placeholder{};
            const bool found = readPlaceholder(pattern, i, placeholder);
            if (found) {
                add(placeholder);
            }
            i = pattern.find(u'{', found ? placeholder.end : i + 1);
        }
    }

    std::span<const Placeholder> all() const noexcept {
        return many_.empty() ? std::span<const Placeholder>(few_.data(), count_) : many_;
    }

    /// How many indices occur, counted from 0 up to the first that does not.
    std::size_t consecutive() const {
        // A pass notes which of 64 indices occur; with more than that there is another.
        constexpr std::size_t window = 64;
        std::size_t count = 0;
        std::size_t found = window;
        while (found == window) {
            std::uint64_t occurs = 0;
            for (const Placeholder& placeholder : all()) {
                if (placeholder.index - count < window) {
                    occurs |= std::uint64_t{1} << (placeholder.index - count);
                }
            }
            found = static_cast<std::size_t>(std::countr_one(occurs));
            count += found;
        }
        return count;
    }

private:
    void add(const Placeholder& placeholder) {
        if (many_.empty() && count_ < few_.size()) {
            few_[count_++] = placeholder;
            return;
        }
        if (many_.empty()) {
            many_.assign(few_.begin(), few_.end());
        }
        many_.push_back(placeholder);
    }

    std::array<Placeholder, 8> few_; // as many need no memory
    std::size_t count_ = 0;
    std::vector<Placeholder> many_;
};

} // namespace qv::detail
