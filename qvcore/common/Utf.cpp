#include "qvcore/common/Utf.h"

#include <algorithm>

namespace qv::core {

namespace {

/// A lead byte's form: how many bytes follow, and what the first of them may be.
struct Lead {
    std::uint8_t first;
    std::uint8_t last;
    std::uint8_t followers;
    std::uint8_t lowestSecond;
    std::uint8_t highestSecond;
};

/// Source: the Unicode Standard, table "Well-Formed UTF-8 Byte Sequences".
constexpr Lead leads[] = {
    {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF}, {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF}, {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

const Lead* findLead(std::uint8_t byte) noexcept {
    const Lead* found = std::find_if(std::begin(leads), std::end(leads), [byte](const Lead& lead) {
        return byte >= lead.first && byte <= lead.last;
    });
    return found == std::end(leads) ? nullptr : found;
}

Decoded decodeSequence(const Lead& lead, std::string_view text) noexcept {
    std::uint8_t lowest = lead.lowestSecond;
    std::uint8_t highest = lead.highestSecond;
    char32_t character = static_cast<std::uint8_t>(text[0]) & (0x3Fu >> lead.followers);
    for (std::size_t at = 1; at <= lead.followers; ++at) {
        const auto byte = at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t{0};
        if (byte < lowest || byte > highest) {
            return {Decoded::bad, at};
        }
        character = (character << 6) | (byte & 0x3Fu);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {character, lead.followers + std::size_t{1}};
}

constexpr char trailing(char32_t bits) noexcept { return static_cast<char>(0x80 | (bits & 0x3F)); }

} // namespace

Decoded decodeUtf16(std::u16string_view text) noexcept {
    const char32_t first = text[0];
    if (!isSurrogate(first)) {
        return {first, 1};
    }
    if (first >= 0xDC00 || text.size() < 2 || text[1] < 0xDC00 || text[1] > 0xDFFF) {
        return {Decoded::bad, 1};
    }
    return {0x10000 + ((first - 0xD800) << 10) + (text[1] - 0xDC00u), 2};
}

Decoded decodeUtf8(std::string_view text) noexcept {
    const auto first = static_cast<std::uint8_t>(text[0]);
    if (first < 0x80) {
        return {first, 1};
    }
    const Lead* lead = findLead(first);
    return lead == nullptr ? Decoded{Decoded::bad, 1} : decodeSequence(*lead, text);
}

Encoded<char16_t> encodeUtf16(char32_t character) noexcept {
    if (character < 0x10000) {
        return {{static_cast<char16_t>(character)}, 1};
    }
    const char32_t bits = character - 0x10000;
    return {{static_cast<char16_t>(0xD800 + (bits >> 10)),
             static_cast<char16_t>(0xDC00 + (bits & 0x3FF))},
            2};
}

Encoded<char> encodeUtf8(char32_t character) noexcept {
    if (character < 0x80) {
        return {{static_cast<char>(character)}, 1};
    }
    if (character < 0x800) {
        return {{static_cast<char>(0xC0 | (character >> 6)), trailing(character)}, 2};
    }
    if (character < 0x10000) {
        return {{static_cast<char>(0xE0 | (character >> 12)), trailing(character >> 6),
                 trailing(character)},
                3};
    }
    return {{static_cast<char>(0xF0 | (character >> 18)), trailing(character >> 12),
             trailing(character >> 6), trailing(character)},
            4};
}

} // namespace qv::core
