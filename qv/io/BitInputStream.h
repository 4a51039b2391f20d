#pragma once

#include "qv/io/FilterInputStream.h"

namespace qv::io {

/// Reads bit fields as BitOutputStream packs them: the highest bit of a byte first. Bytes are taken
/// one by one, by the wrapped stream's `read` of a single byte, when their first bit is asked for;
/// it is to give 0 to 255.
///
/// What the wrapped stream throws leaves the bits in hand as they were. Kept: the end of the stream
/// is -1, which a field of 32 ones is too; and what is skipped, marked and reset are the wrapped
/// stream's bytes, past the bits in hand.
class QV_API BitInputStream : public FilterInputStream {
public:
    /// Owns: one reference to `in`, as FilterInputStream does.
    using FilterInputStream::FilterInputStream;
    ~BitInputStream() override;

    using FilterInputStream::read;
    /// Reads byte by byte, each by `read()`, which need not stand at the start of a byte.
    /// @return bytes read; -1 for a `length` below 1, and where there was none.
    std::int32_t read(signed char* destination, std::int32_t length) override;
    /// The next 8 bits, or -1 at the end.
    int read() override;

    // Slot order is contract from here on.

    /// The next bits as a number; of more than 32 the last 32. @return 0 for `bits` below 1, and -1
    /// where the stream ends within them, which takes those there are.
    virtual int read(int bits);
    /// @return 0 or 1, or -1 at the end.
    virtual int readBit();

    // Slot order ends here.

private:
    int take(int bits);
    int readBits(int bits);

    std::int32_t current_ = 0;  ///< the byte in hand
    std::uint8_t bitsLeft_ = 0; ///< bits of it that were not read yet
};

} // namespace qv::io
