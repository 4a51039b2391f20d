#pragma once

#include "qv/text/charset/ByteToCharConverter.h"

namespace qv::text::charset {

/// Base of the decoders of one byte a character. It has no state.
///
/// A byte without a character (the step gives U+FFFD) becomes the substitution character if there
/// is exactly one. Kept: with any other number of them the byte vanishes.
///
/// Thread safety: one thread at a time.
class QV_API BTCSingleByte : public ByteToCharConverter {
public:
    /// @throws UnmappableCharacterException.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

protected:
    /// The character of a byte; U+FFFD for none.
    virtual char16_t convertByte(signed char byte) = 0;

    /// `convert` for the library's own leaves: with a table of the bytes' characters in place of
    /// the step, and `takeRun` for the runs of bytes that are their own characters.
    void convertByTable(detail::Decoding& decoding, const char16_t* table,
                        void (*takeRun)(detail::Decoding&) noexcept) const;

private:
    bool writeUnit(detail::Decoding& decoding, char16_t unit) const;
};

} // namespace qv::text::charset
