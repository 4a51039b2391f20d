#include "qv/text/charset/detail/WordOrder.h"

#include "qv/detail/NumberBytes.h"
#include "qv/text/charset/UTF16Converters.h"
#include "qv/text/charset/UTF32Converters.h"

#include <emmintrin.h>
#include <typeinfo>

namespace qv::text::charset::detail {

namespace {

/// The order of exactly one of the four leaves of a direction.
template <class Utf16LE, class Utf16BE, class Utf32LE, class Utf32BE>
WordOrder orderOf(const std::type_info& type) noexcept {
    if (&type == &typeid(Utf16LE) || &type == &typeid(Utf32LE)) {
        return WordOrder::host;
    }
    if (&type == &typeid(Utf16BE) || &type == &typeid(Utf32BE)) {
        return WordOrder::swapped;
    }
    return WordOrder::custom;
}

constexpr std::int32_t wordsPerVector = 8;

} // namespace

WordOrder wordOrderOf(const ByteToCharUTF& decoder) noexcept {
    return orderOf<BTCUTF16LE, BTCUTF16BE, BTCUTF32LE, BTCUTF32BE>(typeid(decoder));
}

WordOrder wordOrderOf(const CharToByteUTF& encoder) noexcept {
    return orderOf<CTBUTF16LE, CTBUTF16BE, CTBUTF32LE, CTBUTF32BE>(typeid(encoder));
}

void swapWords(const void* in, void* out, std::int32_t count) noexcept {
    const auto* from = static_cast<const char*>(in);
    auto* to = static_cast<char*>(out);
    for (; count >= wordsPerVector; count -= wordsPerVector, from += 16, to += 16) {
        const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i swapped = _mm_or_si128(_mm_slli_epi16(words, 8), _mm_srli_epi16(words, 8));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), swapped);
    }
    for (; count > 0; --count, from += 2, to += 2) {
        qv::detail::storeBigEndian(to, qv::detail::loadNumber<unsigned short>(from));
    }
}

} // namespace qv::text::charset::detail
