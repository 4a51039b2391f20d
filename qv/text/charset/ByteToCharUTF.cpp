#include "qv/text/charset/ByteToCharUTF.h"

#include "qv/detail/NumberBytes.h"
#include "qv/text/charset/detail/WordOrder.h"

namespace qv::text::charset {

std::int32_t ByteToCharUTF::flush(char16_t*, std::int32_t*, std::int32_t) { return 0; }

void ByteToCharUTF::reset() {}

int ByteToCharUTF::getMaxBytesPerChar() { return 4; }

int ByteToCharUTF::getMaxCharsPerByte() { return 4; }

std::int32_t ByteToCharUTF::sameEncodingConvert(const signed char* src, std::int32_t* srcPos,
                                                std::int32_t srcEnd, char16_t* dst,
                                                std::int32_t* dstPos, std::int32_t dstEnd) {
    const std::int32_t count = detail::wordCount((srcEnd - *srcPos) / 2, dstEnd - *dstPos);
    const signed char* const in = src + *srcPos;
    char16_t* const out = dst + *dstPos;
    switch (detail::wordOrderOf(*this)) {
    case detail::WordOrder::host:
        detail::copyWords(in, out, count);
        break;
    case detail::WordOrder::swapped:
        detail::swapWords(in, out, count);
        break;
    case detail::WordOrder::custom:
        for (std::int32_t i = 0; i < count; ++i) {
            out[i] =
                convertUTF16(qv::detail::loadNumber<unsigned short>(in + std::ptrdiff_t{2} * i));
        }
        break;
    }
    *srcPos += 2 * count;
    *dstPos += count;
    return count;
}

} // namespace qv::text::charset
