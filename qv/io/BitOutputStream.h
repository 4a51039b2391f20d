#pragma once

#include "qv/io/FilterOutputStream.h"

namespace qv::io {

/// Packs bit fields: the most significant bit of a field first, the first bit into the highest of a
/// byte. A byte goes out by the wrapped stream's `write` of a single byte as soon as it is full.
///
/// What is refused, and what the wrapped stream throws, leaves the bits that wait as they were.
/// `close` does not flush: bits that fill no byte are lost unless `flush` comes first.
class QV_API BitOutputStream : public FilterOutputStream {
public:
    /// Owns: one reference to `out`, as FilterOutputStream does.
    using FilterOutputStream::FilterOutputStream;
    ~BitOutputStream() override;

    using FilterOutputStream::write;
    /// Writes byte by byte.
    void write(const signed char* bytes, std::int32_t length) override;
    /// Writes 8 bits. Kept: a byte from 0x80 up is a number out of range, as its sign counts.
    /// @throws RangeErrorException "Number out of range".
    void write(signed char byte) override;
    /// Fills a byte that has begun up with zeros and writes it, then flushes the wrapped stream.
    /// The next bit begins a byte.
    void flush() override;

    // Slot order is contract from here on.

    /// Writes the low `bits` bits of a value, which has no others. Kept: of 32 bits only 0 can be
    /// written.
    /// @throws ResultException QV_E_INVALIDARG for `bits` outside 1 to 32.
    /// @throws RangeErrorException "Number out of range".
    virtual void write(unsigned int value, int bits);
    virtual void writeBit(bool bit);

    // Slot order ends here.

private:
    void append(std::uint32_t value, int bits);
    void writeBits(std::uint32_t value, int bits);

    std::uint8_t current_ = 0; ///< the bits that wait, in the low end
    std::int32_t bitCount_ = 0;
};

} // namespace qv::io
