#pragma once

#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"

/// AMP-7: all of Unicode in seven-bit text. Every byte is a character but the ampersand, which
/// opens an escape that a semicolon ends:
///
///   &AMP;  &QUOT;  &APOS;   the ampersand, the quotation mark, the apostrophe; upper case only
///   &_ and hexadecimal digits and ;   the character with that number
///
/// The encoder writes the ampersand as &AMP; and in numbers, with one to five upper-case digits,
/// the controls but tab, line feed and carriage return, 0x7F, and all from U+0080 on. The decoder
/// takes no to five digits in either case.
///
/// Thread safety: one thread at a time, both of them.
namespace qv::text::charset {

/// Decodes AMP-7. It has no state.
///
/// What is no AMP-7, or the number FFFD, becomes the substitution characters with U+FFFD behind
/// them, for the single byte at its start; the bytes behind are read as text. Kept: both are
/// written, the substitution characters and U+FFFD.
class QV_API BTCAMP7 : public ByteToCharConverter {
public:
    /// @throws InvalidCharacterException for the number of a surrogate;
    /// UnmappableCharacterException.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

private:
    bool convertStep(detail::Decoding& decoding) const;
};

/// Encodes AMP-7. It has no state: it stops in front of a leading surrogate at the end of the
/// input.
///
/// Characters from U+FFFFF on have no form. A trailing surrogate alone is written as a number,
/// which the decoder refuses.
class QV_API CTBAMP7 : public CharToByteConverter {
public:
    /// @throws InvalidCharacterException for a leading surrogate without a trailing one;
    ///     UnmappableCharacterException.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

private:
    bool convertCharacter(detail::Encoding& encoding) const;
};

} // namespace qv::text::charset
