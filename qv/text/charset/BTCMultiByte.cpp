#include "qv/text/charset/BTCMultiByte.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/detail/Surrogates.h"

#include <algorithm>

namespace qv::text::charset {

using namespace literals;

std::int32_t BTCMultiByte::convert(const signed char* src, std::int32_t* srcPos,
                                   std::int32_t srcEnd, char16_t* dst, std::int32_t* dstPos,
                                   std::int32_t dstEnd) {
    constexpr STRUCT_QV_STR_LIT_INFO surrogateMessage =
        u"Invalid byte sequence (decoded chars in surrogate range)"_lit;
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    while (decoding.available() > 0) {
        const auto available = static_cast<int>(decoding.available());
        int length = available;
        const unsigned int codePoint = convertBytes(decoding.in, length);
        if (length <= 0) {
            break;
        }
        if (codePoint == detail::replacementChar) {
            if (!substitute(decoding, 0)) {
                break;
            }
        } else if (decoding.room() < 1 ||
                   !writeCodePoint(decoding, codePoint, 0, surrogateMessage)) {
            break;
        }
        decoding.in += std::min(length, available);
    }
    return decoding.commit();
}

std::int32_t BTCMultiByte::flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    if (pendingTrail_ == 0) {
        return 0;
    }
    if (dstEnd - *dstPos <= 1) {
        throw InvalidCharacterException(u"Not enough room in buffer for trailing surrogate"_lit);
    }
    dst[*dstPos] = pendingTrail_;
    return 1;
}

void BTCMultiByte::reset() { pendingTrail_ = 0; }

const char16_t* BTCMultiByte::getEncodingName() { return encodingName_.getData(); }

int BTCMultiByte::getMaxBytesPerChar() { return maxBytesPerChar_; }

int BTCMultiByte::getMaxCharsPerByte() { return maxCharsPerByte_; }

} // namespace qv::text::charset
