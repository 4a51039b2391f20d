#pragma once

#include "qv/text/charset/ByteToCharConverter.h"

namespace qv::text::charset {

/// Base of the decoders whose encoding is a sequence of words: UTF-16 and UTF-32 in either byte
/// order. None of them reads or writes a byte-order mark.
///
/// Thread safety: one thread at a time.
class QV_API ByteToCharUTF : public ByteToCharConverter {
public:
    /// Writes nothing.
    std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

protected:
    // Slot order is contract from here on.

    /// A word of the host's order as a word of the encoding's, and back.
    virtual unsigned short convertUTF16(unsigned short word) = 0;
    virtual unsigned int convertUTF32(unsigned int word) = 0;

    // Slot order ends here.

    /// `convert` for UTF-16: as many whole words as there are and fit pass through `convertUTF16`.
    /// Surrogates are not looked at, and nothing can fail.
    /// @return characters moved.
    std::int32_t sameEncodingConvert(const signed char* src, std::int32_t* srcPos,
                                     std::int32_t srcEnd, char16_t* dst, std::int32_t* dstPos,
                                     std::int32_t dstEnd);
};

} // namespace qv::text::charset
