#include "qv/text/charset/CharToByteUTF.h"

#include "qv/detail/NumberBytes.h"
#include "qv/text/charset/detail/WordOrder.h"

namespace qv::text::charset {

std::int32_t CharToByteUTF::flush(signed char*, std::int32_t*, std::int32_t) { return 0; }

void CharToByteUTF::reset() {}

int CharToByteUTF::getMaxBytesPerChar() { return 4; }

int CharToByteUTF::getMaxCharsPerByte() { return 4; }

std::int32_t CharToByteUTF::sameEncodingConvert(const char16_t* src, std::int32_t* srcPos,
                                                std::int32_t srcEnd, signed char* dst,
                                                std::int32_t* dstPos, std::int32_t dstEnd) {
    const std::int32_t count = detail::wordCount(srcEnd - *srcPos, (dstEnd - *dstPos) / 2);
    const char16_t* const in = src + *srcPos;
    signed char* const out = dst + *dstPos;
    switch (detail::wordOrderOf(*this)) {
    case detail::WordOrder::host:
        detail::copyWords(in, out, count);
        break;
    case detail::WordOrder::swapped:
        detail::swapWords(in, out, count);
        break;
    case detail::WordOrder::custom:
        for (std::int32_t i = 0; i < count; ++i) {
            qv::detail::storeNumber(out + 2 * i, convertUTF16(in[i]));
        }
        break;
    }
    *srcPos += count;
    *dstPos += 2 * count;
    return count;
}

} // namespace qv::text::charset
