#include "qv/text/charset/UTF32Converters.h"

#include "qv/detail/NumberBytes.h"
#include "qv/text/charset/detail/UnitRuns.h"
#include "qv/text/charset/detail/WordOrder.h"

namespace qv::text::charset {

using qv::detail::swappedBytes;

using namespace literals;

namespace {

constexpr STRUCT_QV_STR_LIT_INFO surrogateMessage = u"Illegal UTF-32 char in surrogate range"_lit;
constexpr int wordSize = 4;
constexpr int wordsPerRun = 8;

/// The orders of the library's own leaves, with a form for four words at a time.
struct HostOrder {
    unsigned int operator()(unsigned int word) const noexcept { return word; }
    __m128i operator()(__m128i words) const noexcept { return words; }
};

struct SwappedOrder {
    unsigned int operator()(unsigned int word) const noexcept { return swappedBytes(word); }
    __m128i operator()(__m128i words) const noexcept {
        const __m128i bytes = _mm_or_si128(_mm_slli_epi16(words, 8), _mm_srli_epi16(words, 8));
        return _mm_or_si128(_mm_slli_epi32(bytes, 16), _mm_srli_epi32(bytes, 16));
    }
};

/// The bits of units in the ranges that need a decision: those that begin with `pattern` under
/// `mask`.
int matching(__m128i units, int mask, int pattern) noexcept {
    const __m128i masked = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(mask)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(masked, _mm_set1_epi16(static_cast<short>(pattern))));
}

/// The low halves of eight words.
__m128i lowHalves(__m128i first, __m128i second) noexcept {
    return _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(first, 16), 16),
                           _mm_srai_epi32(_mm_slli_epi32(second, 16), 16));
}

/// Moves runs of words that are one unit each.
template <class Order>
void decodeRuns(detail::Decoding& decoding, Order order) noexcept {
    const __m128i zero = _mm_setzero_si128();
    detail::Decoding runs = decoding;
    while (runs.available() >= wordsPerRun * wordSize && runs.room() >= wordsPerRun) {
        const __m128i first = order(detail::loadVector(runs.in));
        const __m128i second = order(detail::loadVector(runs.in + 16));
        const __m128i high = _mm_srli_epi32(_mm_or_si128(first, second), 16);
        const __m128i units = lowHalves(first, second);
        if (_mm_movemask_epi8(_mm_cmpeq_epi32(high, zero)) != 0xFFFF ||
            matching(units, 0xF800, 0xD800) != 0) {
            break;
        }
        detail::storeVector(runs.out, units);
        runs.in += wordsPerRun * wordSize;
        runs.out += wordsPerRun;
    }
    decoding.follow(runs);
}

/// Moves runs of units that are one word each: all but leading surrogates.
template <class Order>
void encodeRuns(detail::Encoding& encoding, Order order) noexcept {
    const __m128i zero = _mm_setzero_si128();
    detail::Encoding runs = encoding;
    while (runs.available() >= wordsPerRun && runs.room() >= wordsPerRun * wordSize) {
        const __m128i units = detail::loadVector(runs.in);
        if (matching(units, 0xFC00, 0xD800) != 0) {
            break;
        }
        detail::storeVector(runs.out, order(_mm_unpacklo_epi16(units, zero)));
        detail::storeVector(runs.out + 16, order(_mm_unpackhi_epi16(units, zero)));
        runs.in += wordsPerRun;
        runs.out += wordsPerRun * wordSize;
    }
    encoding.follow(runs);
}

template <class Order>
constexpr bool isBuiltIn = std::is_same_v<Order, HostOrder> || std::is_same_v<Order, SwappedOrder>;

} // namespace

template <class Order>
void BTCUTF32::convertWords(detail::Decoding& decoding, Order order) const {
    while (decoding.available() > 0) {
        if constexpr (isBuiltIn<Order>) {
            decodeRuns(decoding, order);
            if (decoding.available() <= 0) {
                return;
            }
        }
        const unsigned int codePoint = order(qv::detail::loadNumber<unsigned int>(decoding.in));
        if (decoding.room() < 1 || !writeCodePoint(decoding, codePoint, 1, surrogateMessage)) {
            return;
        }
        decoding.in += wordSize;
    }
}

std::int32_t BTCUTF32::convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    switch (detail::wordOrderOf(*this)) {
    case detail::WordOrder::host:
        convertWords(decoding, HostOrder());
        break;
    case detail::WordOrder::swapped:
        convertWords(decoding, SwappedOrder());
        break;
    case detail::WordOrder::custom:
        convertWords(decoding, [this](unsigned int word) { return convertUTF32(word); });
        break;
    }
    return decoding.commit();
}

const char16_t* BTCUTF32LE::getEncodingName() { return u"UTF-32LE"; }
unsigned short BTCUTF32LE::convertUTF16(unsigned short word) { return word; }
unsigned int BTCUTF32LE::convertUTF32(unsigned int word) { return word; }

const char16_t* BTCUTF32BE::getEncodingName() { return u"UTF-32BE"; }
unsigned short BTCUTF32BE::convertUTF16(unsigned short word) { return swappedBytes(word); }
unsigned int BTCUTF32BE::convertUTF32(unsigned int word) { return swappedBytes(word); }

template <class Order>
void CTBUTF32::convertUnits(detail::Encoding& encoding, Order order) {
    while (encoding.available() > 0 && encoding.room() >= wordSize) {
        if constexpr (isBuiltIn<Order>) {
            if (!pending_.isSet()) {
                encodeRuns(encoding, order);
                if (encoding.available() <= 0 || encoding.room() < wordSize) {
                    return;
                }
            }
        }
        const char16_t unit = *encoding.in;
        unsigned int codePoint = unit;
        if (pending_.isSet()) {
            codePoint = pending_.combineWith(unit);
            pending_.clear();
        } else if (detail::isLeading(unit)) {
            pending_.set(unit);
            ++encoding.in;
            continue;
        }
        qv::detail::storeNumber(encoding.out, order(codePoint));
        ++encoding.in;
        encoding.out += wordSize;
    }
}

std::int32_t CTBUTF32::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    switch (detail::wordOrderOf(*this)) {
    case detail::WordOrder::host:
        convertUnits(encoding, HostOrder());
        break;
    case detail::WordOrder::swapped:
        convertUnits(encoding, SwappedOrder());
        break;
    case detail::WordOrder::custom:
        convertUnits(encoding, [this](unsigned int word) { return convertUTF32(word); });
        break;
    }
    return encoding.commit();
}

std::int32_t CTBUTF32::flush(signed char*, std::int32_t*, std::int32_t) { return pending_.flush(); }

void CTBUTF32::reset() { pending_.clear(); }

const char16_t* CTBUTF32LE::getEncodingName() { return u"UTF-32LE"; }
unsigned short CTBUTF32LE::convertUTF16(unsigned short word) { return word; }
unsigned int CTBUTF32LE::convertUTF32(unsigned int word) { return word; }

const char16_t* CTBUTF32BE::getEncodingName() { return u"UTF-32BE"; }
unsigned short CTBUTF32BE::convertUTF16(unsigned short word) { return swappedBytes(word); }
unsigned int CTBUTF32BE::convertUTF32(unsigned int word) { return swappedBytes(word); }

} // namespace qv::text::charset
