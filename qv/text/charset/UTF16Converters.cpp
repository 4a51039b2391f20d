#include "qv/text/charset/UTF16Converters.h"

#include "qv/detail/NumberBytes.h"
#include "qv/text/charset/detail/WordOrder.h"

namespace qv::text::charset {

using qv::detail::swappedBytes;

std::int32_t BTCUTF16::convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    return sameEncodingConvert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
}

const char16_t* BTCUTF16LE::getEncodingName() { return u"UTF-16LE"; }
unsigned short BTCUTF16LE::convertUTF16(unsigned short word) { return word; }
unsigned int BTCUTF16LE::convertUTF32(unsigned int word) { return word; }

const char16_t* BTCUTF16BE::getEncodingName() { return u"UTF-16BE"; }
unsigned short BTCUTF16BE::convertUTF16(unsigned short word) { return swappedBytes(word); }
unsigned int BTCUTF16BE::convertUTF32(unsigned int word) { return swappedBytes(word); }

std::int32_t CTBUTF16::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    return sameEncodingConvert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
}

const char16_t* CTBUTF16LE::getEncodingName() { return u"UTF-16LE"; }
unsigned short CTBUTF16LE::convertUTF16(unsigned short word) { return word; }
unsigned int CTBUTF16LE::convertUTF32(unsigned int word) { return word; }

const char16_t* CTBUTF16BE::getEncodingName() { return u"UTF-16BE"; }
unsigned short CTBUTF16BE::convertUTF16(unsigned short word) { return swappedBytes(word); }
unsigned int CTBUTF16BE::convertUTF32(unsigned int word) { return swappedBytes(word); }

} // namespace qv::text::charset
