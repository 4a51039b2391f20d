#include "qv/text/charset/BTCUTF8.h"

#include "qv/text/charset/detail/Surrogates.h"
#include "qv/text/charset/detail/UnitRuns.h"
#include "qv/text/charset/detail/Utf8Blocks.h"

#include <algorithm>
#include <array>

namespace qv::text::charset {

using namespace literals;

namespace {

constexpr STRUCT_QV_STR_LIT_INFO surrogateMessage =
    u"Invalid UTF-8 sequence (decoded chars in surrogate range)"_lit;

/// Bytes of a sequence by its first byte; 0 for a byte that begins none.
constexpr std::array<unsigned char, 256> makeLengths() {
    constexpr struct {
        int first, last, length;
    } rows[] = {
        {0x00, 0x7F, 1}, {0x80, 0xC1, 0}, {0xC2, 0xDF, 2},
        {0xE0, 0xEF, 3}, {0xF0, 0xF4, 4}, {0xF5, 0xFF, 0},
    };
    std::array<unsigned char, 256> lengths{};
    for (const auto& row : rows) {
        for (int byte = row.first; byte <= row.last; ++byte) {
            lengths[static_cast<std::size_t>(byte)] = static_cast<unsigned char>(row.length);
        }
    }
    return lengths;
}

constexpr auto lengths = makeLengths();

struct Sequence {
    std::uint32_t value;
    int bytes;
};

constexpr Sequence badSequence = {detail::replacementChar, 1};

constexpr bool isContinuation(std::uint32_t byte) noexcept { return (byte & 0xC0) == 0x80; }
/// Kept: not up to 0xBF, see the class.
constexpr bool isSecondOfFour(std::uint32_t byte) noexcept { return byte >= 0x80 && byte <= 0xAF; }

/// Reads a sequence of `length` bytes that are all there.
Sequence readSequence(const signed char* in, int length) noexcept {
    const auto byte = [in](int index) -> std::uint32_t {
        return static_cast<unsigned char>(in[index]);
    };
    const auto payload = [&byte](int index) { return byte(index) & 0x3F; };
    switch (length) {
    case 1:
        return {byte(0), 1};
    case 2:
        if (!isContinuation(byte(1))) {
            return badSequence;
        }
        return {(byte(0) & 0x1F) << 6 | payload(1), 2};
    case 3:
        if (!isContinuation(byte(1)) || !isContinuation(byte(2))) {
            return badSequence;
        }
        return {(byte(0) & 0x0F) << 12 | payload(1) << 6 | payload(2), 3};
    case 4:
        if (!isSecondOfFour(byte(1)) || !isContinuation(byte(2)) || !isContinuation(byte(3))) {
            return badSequence;
        }
        return {(byte(0) & 0x07) << 18 | payload(1) << 12 | payload(2) << 6 | payload(3), 4};
    default:
        return badSequence;
    }
}

} // namespace

std::int32_t BTCUTF8::convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                              char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    const detail::Utf8Blocks& blocks = detail::utf8Blocks();
    bool goesOn = true;
    while (goesOn && decoding.available() > 0) {
        blocks.decode(decoding);
        detail::widenRun<detail::AsciiRun>(decoding);
        const signed char* const next =
            decoding.in + std::min<std::ptrdiff_t>(decoding.available(), detail::utf8BlockBytes);
        while (goesOn && decoding.in < next) {
            goesOn = convertSequence(decoding);
        }
    }
    return decoding.commit();
}

/// @return false where the call must stop in front of the sequence.
inline bool BTCUTF8::convertSequence(detail::Decoding& decoding) const {
    const int length = lengths[static_cast<unsigned char>(*decoding.in)];
    if (length > decoding.available()) {
        return false;
    }
    const Sequence sequence = readSequence(decoding.in, length);
    if (decoding.room() < 1 || !writeCodePoint(decoding, sequence.value, 1, surrogateMessage)) {
        return false;
    }
    decoding.in += sequence.bytes;
    return true;
}

std::int32_t BTCUTF8::flush(char16_t*, std::int32_t*, std::int32_t) { return 0; }

void BTCUTF8::reset() {}

const char16_t* BTCUTF8::getEncodingName() { return u"UTF-8"; }

int BTCUTF8::getMaxBytesPerChar() { return 6; }

int BTCUTF8::getMaxCharsPerByte() { return 4; }

} // namespace qv::text::charset
