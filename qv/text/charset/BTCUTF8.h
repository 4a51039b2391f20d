#pragma once

#include "qv/text/charset/ByteToCharConverter.h"

namespace qv::text::charset {

/// Decodes UTF-8. It has no state.
///
/// A byte that begins no sequence, or whose sequence has a byte out of its range, becomes U+FFFD by
/// itself, whatever the substitution settings, and decoding goes on at the byte behind it. Overlong
/// forms of three and four bytes are read by their value. Kept: the second byte of a four-byte
/// sequence ends at 0xAF, so that U+30000 and its like are bad; callers see the same characters as
/// ever. Only a value above 0x10FFFF follows the substitution settings. Source: RFC 3629, as far as
/// the above lets it.
///
/// Thread safety: one thread at a time.
class QV_API BTCUTF8 : public ByteToCharConverter {
public:
    /// @throws InvalidCharacterException for a sequence whose value is a surrogate;
    ///     UnmappableCharacterException.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

private:
    bool convertSequence(detail::Decoding& decoding) const;
};

} // namespace qv::text::charset
