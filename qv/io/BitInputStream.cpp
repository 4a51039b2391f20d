#include "qv/io/BitInputStream.h"

#include "qv/io/detail/OneByteCalls.h"

#include <algorithm>

namespace qv::io {

namespace {

constexpr int byteBits = 8;
constexpr std::uint32_t endOfStream = 0xFFFFFFFF;

} // namespace

BitInputStream::~BitInputStream() = default;

/// Reads bits. At the end of the stream each of them that is missing counts as -1, over whatever
/// stands before it.
int BitInputStream::take(int bits) {
    std::uint32_t result = 0;
    std::int32_t current = current_;
    int left = bitsLeft_;
    while (bits > 0) {
        if (left == 0) {
            const int byte = detail::nextByte(in_.operator->());
            if (byte < 0) {
                result = endOfStream;
                --bits;
                continue;
            }
            current = byte;
            left = byteBits;
        }
        const int taken = std::min(bits, left);
        left -= taken;
        bits -= taken;
        const std::uint32_t field = static_cast<std::uint32_t>(current) >> left;
        result = result << taken | (field & ((1u << taken) - 1));
    }
    current_ = current;
    bitsLeft_ = static_cast<std::uint8_t>(left);
    return static_cast<int>(result);
}

int BitInputStream::readBit() { return take(1); }

int BitInputStream::read(int bits) {
    if (qv::detail::exactly<BitInputStream>(this) != nullptr) {
        return take(bits);
    }
    return readBits(bits);
}

/// Bit by bit, for a derived class may see them.
int BitInputStream::readBits(int bits) {
    const std::int32_t current = current_;
    const std::uint8_t left = bitsLeft_;
    try {
        std::uint32_t result = 0;
        for (; bits > 0; --bits) {
            result = result * 2 | static_cast<std::uint32_t>(readBit());
        }
        return static_cast<int>(result);
    } catch (...) {
        current_ = current;
        bitsLeft_ = left;
        throw;
    }
}

int BitInputStream::read() { return read(byteBits); }

std::int32_t BitInputStream::read(signed char* destination, std::int32_t length) {
    std::int32_t count = 0;
    while (count < length) {
        const int byte = read();
        if (byte < 0) {
            break;
        }
        destination[count++] = static_cast<signed char>(byte);
    }
    return count > 0 ? count : -1;
}

} // namespace qv::io
