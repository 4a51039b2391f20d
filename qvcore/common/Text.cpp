#include "qvcore/Text.h"

#include "qvcore/common/CaseMap.h"
#include "qvcore/common/Units8.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

using qv::core::Units8;

constexpr std::int32_t maxLength = std::numeric_limits<std::int32_t>::max();

constexpr std::int32_t order(char16_t left, char16_t right) noexcept {
    return left < right ? -1 : left > right ? 1 : 0;
}

/// Units in front of the terminator. Whole aligned blocks are read: such a block lies in one page
/// with the terminator, but may reach past the end of the object, which the sanitizers cannot know
/// to be harmless.
__attribute__((no_sanitize("address", "thread", "undefined"))) std::size_t
unitsBeforeTerminator(const char16_t* text) noexcept {
    const char16_t* unit = text;
    for (; reinterpret_cast<std::uintptr_t>(unit) % sizeof(__m128i) != 0; ++unit) {
        if (*unit == 0) {
            return static_cast<std::size_t>(unit - text);
        }
    }
    const __m128i zero = _mm_setzero_si128();
    for (;; unit += Units8::count) {
        const __m128i block = *reinterpret_cast<const __m128i*>(unit);
        const auto mask =
            static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(block, zero)));
        if (mask != 0) {
            return static_cast<std::size_t>(unit - text) +
                   static_cast<std::size_t>(Units8::firstOf(mask));
        }
    }
}

/// True if a block that begins here ends in the same page of memory, so that it can be read even if
/// the text ends in it.
bool isBlockInOnePage(const char16_t* text) noexcept {
    constexpr std::uintptr_t pageSize = 4096;
    return reinterpret_cast<std::uintptr_t>(text) % pageSize <= pageSize - sizeof(__m128i);
}

/// How many units at the fronts of both texts are surely the same, and no terminators. Reads whole
/// blocks like `unitsBeforeTerminator`, and stops where it may not.
__attribute__((no_sanitize("address", "thread", "undefined"))) std::size_t
sameBlocks(const char16_t* left, const char16_t* right) noexcept {
    const __m128i zero = _mm_setzero_si128();
    std::size_t at = 0;
    while (isBlockInOnePage(left + at) && isBlockInOnePage(right + at)) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(left + at));
        const __m128i other = _mm_loadu_si128(reinterpret_cast<const __m128i*>(right + at));
        const __m128i differs = _mm_xor_si128(_mm_cmpeq_epi16(block, other), _mm_set1_epi16(-1));
        const __m128i stops = _mm_or_si128(differs, _mm_cmpeq_epi16(block, zero));
        if (_mm_movemask_epi8(stops) != 0) {
            break;
        }
        at += Units8::count;
    }
    return at;
}

bool equalIgnoringCase(const char16_t* left, const char16_t* right, std::int32_t count) noexcept {
    return QVStrNICmpW(left, right, count) == 0;
}

/// Looks for a text without regard to case: the places where the needle's first and last unit stand
/// in any of their cases are found in blocks, and only there the whole is compared.
class CaselessSearch {
public:
    /// Requires: a needle that is not empty.
    CaselessSearch(const char16_t* needle, std::int32_t needleLength) noexcept
        : needle_(needle), last_(needleLength - 1), first_(needle[0]), end_(needle[last_]) {}

    std::int32_t find(const char16_t* text, std::int32_t textLength) const noexcept {
        const std::int32_t places = textLength - last_;
        std::int32_t place = 0;
        for (; place <= places - Units8::count; place += Units8::count) {
            const std::int32_t found = findInBlock(text + place);
            if (found >= 0) {
                return place + found;
            }
        }
        for (; place < places; ++place) {
            if (equalIgnoringCase(text + place, needle_, last_ + 1)) {
                return place;
            }
        }
        return -1;
    }

private:
    /// One unit in all its cases.
    class Variants {
    public:
        explicit Variants(char16_t unit) noexcept : Variants(qv::core::caseVariants(unit)) {}
        Units8 in(Units8 block) const noexcept {
            return block.equals(first_) | block.equals(second_) | block.equals(third_);
        }

    private:
        explicit Variants(const std::array<char16_t, 3>& units) noexcept
            : first_(Units8::repeat(units[0])), second_(Units8::repeat(units[1])),
              third_(Units8::repeat(units[2])) {}

        Units8 first_;
        Units8 second_;
        Units8 third_;
    };

    std::int32_t findInBlock(const char16_t* text) const noexcept {
        const Units8 candidates =
            first_.in(Units8::load(text)) & end_.in(Units8::load(text + last_));
        for (std::uint32_t mask = candidates.mask(); mask != 0; mask = Units8::withoutFirst(mask)) {
            const int place = Units8::firstOf(mask);
            if (equalIgnoringCase(text + place, needle_, last_)) {
                return place;
            }
        }
        return -1;
    }

    const char16_t* needle_;
    std::int32_t last_;
    Variants first_;
    Variants end_;
};

template <typename BlockMap, typename UnitMap>
void mapInPlace(char16_t* text, std::int32_t count, BlockMap mapBlock, UnitMap mapUnit) noexcept {
    std::int32_t at = 0;
    for (; at <= count - Units8::count; at += Units8::count) {
        const Units8 block = Units8::load(text + at);
        if (block.isAscii()) {
            mapBlock(block).store(text + at);
        } else {
            std::transform(text + at, text + at + Units8::count, text + at, mapUnit);
        }
    }
    std::transform(text + at, text + std::max(at, count), text + at, mapUnit);
}

} // namespace

std::int32_t QVStrLenW_32(const char16_t* text) noexcept {
    if (text == nullptr) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::min(unitsBeforeTerminator(text), static_cast<std::size_t>(maxLength)));
}

std::int32_t QVStrLenA_32(const char* text) noexcept {
    if (text == nullptr) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::min(std::strlen(text), static_cast<std::size_t>(maxLength)));
}

std::int32_t QVStrCmpW(const char16_t* left, const char16_t* right) noexcept {
    for (;;) {
        const std::size_t same = sameBlocks(left, right);
        left += same;
        right += same;
        // What stopped the blocks is a difference, an end, or a page that ends.
        for (int unit = 0; unit < Units8::count; ++unit, ++left, ++right) {
            if (*left != *right || *left == 0) {
                return order(*left, *right);
            }
        }
    }
}

std::int32_t QVStrICmpW(const char16_t* left, const char16_t* right) noexcept {
    for (;; ++left, ++right) {
        if (*left != *right) {
            const std::int32_t result = order(QVToLowerW(*left), QVToLowerW(*right));
            if (result != 0) {
                return result;
            }
        } else if (*left == 0) {
            return 0;
        }
    }
}

std::int32_t QVStrNICmpW(const char16_t* left, const char16_t* right, std::int32_t count) noexcept {
    std::int32_t at = 0;
    for (; at <= count - Units8::count; at += Units8::count) {
        const Units8 leftBlock = Units8::load(left + at);
        const Units8 rightBlock = Units8::load(right + at);
        if (leftBlock.equals(rightBlock).all()) {
            continue;
        }
        if ((leftBlock | rightBlock).isAscii() &&
            leftBlock.toLowerAscii().equals(rightBlock.toLowerAscii()).all()) {
            continue;
        }
        for (std::int32_t unit = at; unit < at + Units8::count; ++unit) {
            const std::int32_t result = order(QVToLowerW(left[unit]), QVToLowerW(right[unit]));
            if (result != 0) {
                return result;
            }
        }
    }
    for (; at < count; ++at) {
        const std::int32_t result = order(QVToLowerW(left[at]), QVToLowerW(right[at]));
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

std::int32_t QVStrNIFindW(const char16_t* text, std::int32_t length, const char16_t* needle,
                          std::int32_t needleLength) noexcept {
    if (needleLength <= 0) {
        return 0;
    }
    if (needleLength > length) {
        return -1;
    }
    return CaselessSearch(needle, needleLength).find(text, length);
}

const char16_t* QVStrChrW(const char16_t* text, char16_t unit) noexcept {
    for (; *text != unit; ++text) {
        if (*text == 0) {
            return nullptr;
        }
    }
    return text;
}

char16_t* QVStrTokW(char16_t** cursor, const char16_t* delimiters) noexcept {
    const auto isDelimiter = [delimiters](char16_t unit) {
        return unit != 0 && QVStrChrW(delimiters, unit) != nullptr;
    };
    if (*cursor == nullptr) {
        return nullptr;
    }
    char16_t* start = *cursor;
    while (isDelimiter(*start)) {
        ++start;
    }
    char16_t* end = start;
    while (*end != 0 && !isDelimiter(*end)) {
        ++end;
    }
    *cursor = end;
    if (end == start) {
        return nullptr;
    }
    if (*end != 0) {
        *end = 0;
        ++*cursor;
    }
    return start;
}

char16_t QVToLowerW(char16_t unit) noexcept { return qv::core::toLower(unit); }

char16_t QVToUpperW(char16_t unit) noexcept { return qv::core::toUpper(unit); }

void QVStrToLowerW(char16_t* text, std::int32_t length) noexcept {
    const std::int32_t count = length == -1 ? QVStrLenW_32(text) : length;
    mapInPlace(
        text, count, [](Units8 block) { return block.toLowerAscii(); }, qv::core::toLower);
}

void QVStrToUpperW(char16_t* text, std::int32_t length) noexcept {
    const std::int32_t count = length == -1 ? QVStrLenW_32(text) : length;
    mapInPlace(
        text, count, [](Units8 block) { return block.toUpperAscii(); }, qv::core::toUpper);
}
