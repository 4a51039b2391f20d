#pragma once

#include "qv/text/charset/ByteToCharUTF.h"
#include "qv/text/charset/CharToByteUTF.h"

/// UTF-16 in either byte order. Units pass through as they are, unpaired surrogates and U+FEFF
/// included; a last odd byte stays unconsumed; nothing can fail.
///
/// Thread safety: one thread at a time, all of them.
namespace qv::text::charset {

/// Decodes UTF-16.
class QV_API BTCUTF16 : public ByteToCharUTF {
public:
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
};

/// Decodes UTF-16 in little-endian order.
class QV_API BTCUTF16LE : public BTCUTF16 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Decodes UTF-16 in big-endian order.
class QV_API BTCUTF16BE : public BTCUTF16 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Encodes UTF-16.
class QV_API CTBUTF16 : public CharToByteUTF {
public:
    /// Kept: the result counts characters, not bytes; callers go by the positions.
    /// @return characters moved.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
};

/// Encodes UTF-16 in little-endian order.
class QV_API CTBUTF16LE : public CTBUTF16 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

/// Encodes UTF-16 in big-endian order.
class QV_API CTBUTF16BE : public CTBUTF16 {
public:
    const char16_t* getEncodingName() override;

protected:
    unsigned short convertUTF16(unsigned short word) override;
    unsigned int convertUTF32(unsigned int word) override;
};

} // namespace qv::text::charset
