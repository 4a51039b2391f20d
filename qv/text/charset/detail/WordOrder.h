#pragma once

#include <cstdint>
#include <cstring>

namespace qv::text::charset {
class ByteToCharUTF;
class CharToByteUTF;
} // namespace qv::text::charset

/// The byte order of the converters that work word by word.
namespace qv::text::charset::detail {

enum class WordOrder {
    host,    ///< words stand as they are
    swapped, ///< the bytes of a word stand in reverse
    custom   ///< only the converter's own virtual step knows
};

/// The order of a converter whose dynamic type is one of the library's leaves: its words need no
/// virtual step. A class derived from a leaf may have overridden that step, so its order is custom.
WordOrder wordOrderOf(const ByteToCharUTF& decoder) noexcept;
WordOrder wordOrderOf(const CharToByteUTF& encoder) noexcept;

/// Words to move: the fewer of the two, and none where a range is reversed.
constexpr std::int32_t wordCount(std::int32_t available, std::int32_t room) noexcept {
    const std::int32_t count = available < room ? available : room;
    return count < 0 ? 0 : count;
}

/// Moves 16-bit words as they are.
inline void copyWords(const void* in, void* out, std::int32_t count) noexcept {
    if (count > 0) {
        std::memmove(out, in, static_cast<std::size_t>(count) * 2);
    }
}
/// Moves 16-bit words and swaps their bytes.
void swapWords(const void* in, void* out, std::int32_t count) noexcept;

} // namespace qv::text::charset::detail
