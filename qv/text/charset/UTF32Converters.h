#pragma once

#include "qv/text/charset/ByteToCharUTF.h"
#include "qv/text/charset/CharToByteUTF.h"
#include "qv/text/charset/detail/Surrogates.h"

/// UTF-32 in either byte order.
///
/// Thread safety: one thread at a time, all of them.
namespace qv::text::charset {

/// Decodes UTF-32. Words above 0x10FFFF follow the substitution settings.
///
/// Requires: whole words. Kept: a fragment of one to three bytes at the end is read as a whole
/// word, past the end given, and `*srcPos` then comes to lie behind it.
class QV_API BTCUTF32 : public ByteToCharUTF {
public:
    /// @throws InvalidCharacterException for a surrogate; UnmappableCharacterException.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;

private:
    template <class Order>
    void convertWords(detail::Decoding& decoding, Order order) const;
};

/// Decodes UTF-32 in little-endian order.
class QV_API BTCUTF32LE : public BTCUTF32 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Decodes UTF-32 in big-endian order.
class QV_API BTCUTF32BE : public BTCUTF32 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Encodes UTF-32. Keeps a leading surrogate from one call to the next.
///
/// Kept: a trailing surrogate alone becomes a word of its own, which the decoder refuses.
class QV_API CTBUTF32 : public CharToByteUTF {
public:
    /// @throws InvalidCharacterException for a leading surrogate without a trailing one, which goes
    /// on
    ///     waiting.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    /// @throws InvalidCharacterException where a leading surrogate waits.
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;

private:
    template <class Order>
    void convertUnits(detail::Encoding& encoding, Order order);

    detail::PendingLead pending_;
};

/// Encodes UTF-32 in little-endian order.
class QV_API CTBUTF32LE : public CTBUTF32 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Encodes UTF-32 in big-endian order.
class QV_API CTBUTF32BE : public CTBUTF32 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

} // namespace qv::text::charset
