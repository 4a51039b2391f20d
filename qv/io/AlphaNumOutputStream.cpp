#include "qv/io/AlphaNumOutputStream.h"

#include "qv/io/detail/OneByteCalls.h"

#include <algorithm>

namespace qv::io {

namespace {

constexpr int byteBits = 8;
constexpr int letterBits = 5;
constexpr unsigned letterMask = 31;
constexpr std::int32_t groupBytes = 5;
constexpr std::int32_t groupLetters = 8;
constexpr std::int32_t pieceGroups = 128; // encoded at once for a stream over memory

} // namespace

AlphaNumOutputStream::AlphaNumOutputStream(OutputStream* out, const char16_t* alphabet)
    : FilterOutputStream(out), alphabet_(alphabet) {}

AlphaNumOutputStream::~AlphaNumOutputStream() = default;

/// Stores the letters that the bytes complete: at most two for each. @return behind the last of
/// them.
inline unsigned char* AlphaNumOutputStream::encode(Rest& rest, const signed char* bytes,
                                                   std::int32_t length,
                                                   unsigned char* letters) const noexcept {
    const signed char* const end = bytes + length;
    while (bytes < end) {
        if (rest.count == 0 && end - bytes >= groupBytes) {
            std::uint64_t group = 0;
            for (int i = 0; i < groupBytes; ++i) {
                group = group << byteBits | static_cast<unsigned char>(*bytes++);
            }
            for (int i = groupLetters - 1; i >= 0; --i) {
                const auto value = static_cast<unsigned>(group >> i * letterBits);
                *letters++ = alphabet_.letter(value & letterMask);
            }
            continue;
        }
        rest.bits = rest.bits << byteBits | static_cast<unsigned char>(*bytes++);
        rest.count += byteBits;
        while (rest.count >= letterBits) {
            rest.count -= letterBits;
            *letters++ = alphabet_.letter(rest.bits >> rest.count & letterMask);
        }
    }
    return letters;
}

/// Writes the bytes piece by piece. A piece whose letters were not all written counts for nothing.
inline void AlphaNumOutputStream::writePieces(const signed char* bytes, std::int32_t length,
                                              std::int32_t pieceLength) {
    OutputStream* const out = out_.operator->();
    unsigned char letters[pieceGroups * groupLetters + groupLetters];
    while (length > 0) {
        const std::int32_t count = std::min(pieceLength, length);
        Rest rest = rest_;
        const unsigned char* const end = encode(rest, bytes, count, letters);
        const auto letterCount = static_cast<std::int32_t>(end - letters);
        detail::putBytes(out, letters, letterCount);
        rest_ = rest;
        bytes += count;
        length -= count;
    }
}

void AlphaNumOutputStream::write(const signed char* bytes, std::int32_t length) {
    if (length > 0) {
        const bool isOverMemory = detail::isOverMemory(out_.operator->());
        writePieces(bytes, length, isOverMemory ? pieceGroups * groupBytes : 1);
    }
}

void AlphaNumOutputStream::write(signed char byte) { write(&byte, 1); }

void AlphaNumOutputStream::flush() {
    if (rest_.count > 0) {
        const unsigned value = rest_.bits << (letterBits - rest_.count) & letterMask;
        out_->write(static_cast<signed char>(alphabet_.letter(value)));
    }
    out_->flush();
    rest_ = {};
}

} // namespace qv::io
