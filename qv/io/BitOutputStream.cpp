#include "qv/io/BitOutputStream.h"

#include "qv/ErrorRule.h"
#include "qv/io/detail/OneByteCalls.h"

namespace qv::io {

namespace {

constexpr int byteBits = 8;
constexpr int greatestWidth = 32; // bits of a field

} // namespace

BitOutputStream::~BitOutputStream() = default;

/// Puts a value behind the bits that wait, and writes what bytes are full then.
void BitOutputStream::append(std::uint32_t value, int bits) {
    const std::uint64_t gathered = std::uint64_t{current_} << bits | value;
    int count = bitCount_ + bits;
    unsigned char full[greatestWidth / byteBits];
    std::int32_t bytes = 0;
    while (count >= byteBits) {
        count -= byteBits;
        full[bytes++] = static_cast<unsigned char>(gathered >> count);
    }
    if (bytes > 0) {
        detail::putBytes(out_.operator->(), full, bytes);
    }
    current_ = static_cast<std::uint8_t>(gathered & ((1u << count) - 1));
    bitCount_ = count;
}

void BitOutputStream::write(unsigned int value, int bits) {
    if (bits < 1 || bits > greatestWidth) {
        throwResult(QV_E_INVALIDARG);
    }
    const std::uint32_t mask = ~(0xFFFFFFFFu << bits % greatestWidth); // kept: 0 for 32 bits
    if (value > mask) {
        throw RangeErrorException(u"Number out of range");
    }
    if (qv::detail::exactly<BitOutputStream>(this) != nullptr) {
        append(value, bits);
        return;
    }
    writeBits(value, bits);
}

/// Bit by bit, for a derived class may see them.
void BitOutputStream::writeBits(std::uint32_t value, int bits) {
    const std::uint8_t current = current_;
    const int count = bitCount_;
    try {
        for (int bit = bits - 1; bit >= 0; --bit) {
            writeBit((value >> bit & 1) != 0);
        }
    } catch (...) {
        current_ = current;
        bitCount_ = count;
        throw;
    }
}

void BitOutputStream::writeBit(bool bit) { append(bit ? 1 : 0, 1); }

void BitOutputStream::write(signed char byte) {
    write(static_cast<unsigned int>(byte), byteBits); // kept: with the sign
}

void BitOutputStream::write(const signed char* bytes, std::int32_t length) {
    for (std::int32_t i = 0; i < length; ++i) {
        write(bytes[i]);
    }
}

void BitOutputStream::flush() {
    if (bitCount_ > 0) {
        const auto padded = static_cast<unsigned char>(current_ << (byteBits - bitCount_));
        out_->write(static_cast<signed char>(padded));
    }
    out_->flush();
    current_ = 0;
    bitCount_ = 0;
}

} // namespace qv::io
