#pragma once

#include "qv/text/charset/CharToByteConverter.h"

namespace qv::text::charset {

/// Base of the encoders whose encoding is a sequence of words: UTF-16 and UTF-32 in either byte
/// order. None of them reads or writes a byte-order mark.
///
/// Thread safety: one thread at a time.
class QV_API CharToByteUTF : public CharToByteConverter {
public:
    /// Writes nothing.
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
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
    /// Kept: the result counts characters, not bytes; callers go by the positions.
    /// @return characters moved.
    std::int32_t sameEncodingConvert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                     signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd);
};

} // namespace qv::text::charset
