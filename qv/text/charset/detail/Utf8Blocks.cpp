#include "qv/text/charset/detail/Utf8Blocks.h"

#include "qv/text/charset/detail/UnitRuns.h"

#include <array>
#include <immintrin.h>

/// The functions of a kernel are compiled for its processor, whatever the rest is compiled for.
#define QV_TARGET_SSE42 [[gnu::target("sse4.2,popcnt")]]

namespace qv::text::charset::detail {

namespace {

constexpr int vectorBytes = 16;

__m128i loadRow(const unsigned char* row) noexcept {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(row));
}

/// A row of a shuffle table; 0x80 gives a zero byte.
struct alignas(vectorBytes) Shuffle {
    unsigned char bytes[vectorBytes];

    constexpr void clear() {
        for (unsigned char& byte : bytes) {
            byte = 0x80;
        }
    }
};

using ShuffleTable = std::array<Shuffle, 256>;

// --- Decoding ---
//
// Sixteen bytes at a time, and for every byte the unit that it would end, made from it and the two
// bytes in front of it; the units of the bytes that do end a character are then moved together.
// What a byte ends is told by lead bytes alone, so that no window needs to know the one behind it.
//
// Source for the check: J. Keiser, D. Lemire, "Validating UTF-8 In Less Than One Instruction Per
// Byte", Software: Practice and Experience 51 (2021), with other error classes. Source for the
// shuffles by table: D. Lemire, W. Mula, "Transcoding Billions of Unicode Characters per Second
// with SIMD Instructions", Software: Practice and Experience 52 (2022).
//
// Vectors are stored whole, and the last ones of a block reach behind its end: what stood there is
// read first and put back behind the last block, so that the caller sees nothing of it.

/// What is wrong, or not for a kernel, about a byte and the one behind it.
enum PairError : unsigned char {
    tooShort = 0x01,  ///< a lead byte without a continuation byte
    tooLong = 0x02,   ///< a continuation byte behind an ASCII byte
    notALead = 0x04,  ///< 0xC0 or 0xC1, and a continuation byte
    surrogate = 0x08, ///< a three-byte sequence of a surrogate
    fourBytes = 0x10, ///< 0xF0 to 0xFF, and a continuation byte
    twoMore = 0x80,   ///< two continuation bytes: right only in third place
};

alignas(vectorBytes) constexpr unsigned char errorsByFirstHigh[16] = {
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    tooLong,
    twoMore,
    twoMore,
    twoMore,
    twoMore,
    tooShort | notALead,
    tooShort,
    tooShort | surrogate,
    tooShort | fourBytes,
};

constexpr unsigned char byAnyLow = tooShort | tooLong | fourBytes | twoMore;

alignas(vectorBytes) constexpr unsigned char errorsByFirstLow[16] = {
    byAnyLow | notALead,
    byAnyLow | notALead,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow,
    byAnyLow | surrogate,
    byAnyLow,
    byAnyLow,
};

constexpr unsigned char byContinuation = tooLong | notALead | fourBytes | twoMore;

alignas(vectorBytes) constexpr unsigned char errorsBySecondHigh[16] = {
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
    byContinuation,
    byContinuation,
    byContinuation | surrogate,
    byContinuation | surrogate,
    tooShort,
    tooShort,
    tooShort,
    tooShort,
};

/// Moves the words whose bits are set to the front.
constexpr ShuffleTable makeGathers() {
    ShuffleTable table{};
    for (unsigned mask = 0; mask < table.size(); ++mask) {
        table[mask].clear();
        unsigned char* to = table[mask].bytes;
        for (unsigned word = 0; word < 8; ++word) {
            if ((mask >> word & 1) != 0) {
                *to++ = static_cast<unsigned char>(2 * word);
                *to++ = static_cast<unsigned char>(2 * word + 1);
            }
        }
    }
    return table;
}

constexpr ShuffleTable gathers = makeGathers();

/// Sixteen bytes, and for each the byte before and the byte before that.
struct Window {
    __m128i bytes, before, twoBefore;
};

QV_TARGET_SSE42 inline Window window(__m128i bytes, __m128i previous) noexcept {
    return {bytes, _mm_alignr_epi8(bytes, previous, 15), _mm_alignr_epi8(bytes, previous, 14)};
}

QV_TARGET_SSE42 inline __m128i lookUp(const unsigned char* table, __m128i indices) noexcept {
    return _mm_shuffle_epi8(loadRow(table), indices);
}

QV_TARGET_SSE42 inline __m128i highNibbles(__m128i bytes) noexcept {
    return _mm_and_si128(_mm_srli_epi16(bytes, 4), splat8(0x0F));
}

/// Not zero where a window holds anything but well-formed characters up to U+FFFF.
QV_TARGET_SSE42 inline __m128i errors(const Window& w) noexcept {
    const __m128i byFirst =
        _mm_and_si128(lookUp(errorsByFirstHigh, highNibbles(w.before)),
                      lookUp(errorsByFirstLow, _mm_and_si128(w.before, splat8(0x0F))));
    const __m128i found = _mm_and_si128(byFirst, lookUp(errorsBySecondHigh, highNibbles(w.bytes)));
    const __m128i isThird = _mm_subs_epu8(w.twoBefore, splat8(0xE0 - 0x80));
    return _mm_xor_si128(found, _mm_and_si128(isThird, splat8(0x80)));
}

/// One bit for each byte that ends a character: it is no lead byte, nor the second byte of three.
QV_TARGET_SSE42 inline unsigned endsOf(const Window& w) noexcept {
    const __m128i isLead = _mm_subs_epu8(w.bytes, splat8(0xC0 - 0x80));
    const __m128i isSecondOfThree = _mm_subs_epu8(w.before, splat8(0xE0 - 0x80));
    const int open = _mm_movemask_epi8(_mm_or_si128(isLead, isSecondOfThree));
    return static_cast<unsigned>(open) ^ 0xFFFFu;
}

/// Writes the units of eight bytes. @return the end of what was written; eight units are touched.
QV_TARGET_SSE42 inline char16_t* gather(char16_t* out, __m128i units, unsigned ends) noexcept {
    storeVector(out, _mm_shuffle_epi8(units, loadRow(gathers[ends].bytes)));
    return out + _mm_popcnt_u32(ends);
}

/// Writes the characters that end in a window, at `ends`. Requires: no errors in it.
QV_TARGET_SSE42 inline char16_t* writeEnded(char16_t* out, const Window& w,
                                            unsigned ends) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const __m128i isTail = _mm_cmpgt_epi8(zero, w.bytes);
    const __m128i low = _mm_and_si128(w.bytes, splat8(0x7F));
    const __m128i middle = _mm_and_si128(w.before, _mm_and_si128(isTail, splat8(0x3F)));
    const __m128i high = _mm_slli_epi16(_mm_subs_epu8(w.twoBefore, splat8(0xE0)), 4);
    const __m128i first = _mm_or_si128(_mm_unpacklo_epi8(low, high),
                                       _mm_slli_epi16(_mm_unpacklo_epi8(middle, zero), 6));
    const __m128i second = _mm_or_si128(_mm_unpackhi_epi8(low, high),
                                        _mm_slli_epi16(_mm_unpackhi_epi8(middle, zero), 6));
    return gather(gather(out, first, ends & 0xFF), second, ends >> 8);
}

struct Block {
    Window first, second, third, fourth;
};

/// Writes the characters that end in a block. Up to eight units behind them are touched: what stood
/// there is left in `behind`.
/// @return the end of what was written.
QV_TARGET_SSE42 inline char16_t* writeBlock(char16_t* out, const Block& block,
                                            __m128i& behind) noexcept {
    const unsigned ends = endsOf(block.first) | endsOf(block.second) << 16;
    const unsigned laterEnds = endsOf(block.third) | endsOf(block.fourth) << 16;
    behind = loadVector(out + _mm_popcnt_u32(ends) + _mm_popcnt_u32(laterEnds));
    out = writeEnded(out, block.first, ends & 0xFFFF);
    out = writeEnded(out, block.second, ends >> 16);
    out = writeEnded(out, block.third, laterEnds & 0xFFFF);
    return writeEnded(out, block.fourth, laterEnds >> 16);
}

/// Bytes at the end of a converted block that begin a character without ending it.
inline int openBytes(const signed char* blockEnd) noexcept {
    const bool one = static_cast<unsigned char>(blockEnd[-1]) >= 0xC0;
    const bool two = static_cast<unsigned char>(blockEnd[-2]) >= 0xE0;
    return two ? 2 : one ? 1 : 0;
}

/// Units that a block touches: as many as it has bytes, and the rest of the last vector.
constexpr int decodedRoom = utf8BlockBytes + 8;

QV_TARGET_SSE42 inline void decodeBlocks(Decoding& decoding) noexcept {
    char16_t* spilled = nullptr; // the end of a block that reached behind it
    __m128i behind = _mm_setzero_si128();
    while (decoding.available() >= utf8BlockBytes && decoding.room() >= decodedRoom) {
        const __m128i v0 = loadVector(decoding.in);
        const __m128i v1 = loadVector(decoding.in + 16);
        const __m128i v2 = loadVector(decoding.in + 32);
        const __m128i v3 = loadVector(decoding.in + 48);
        if (isAscii(_mm_or_si128(_mm_or_si128(v0, v1), _mm_or_si128(v2, v3)))) {
            storeWidened(decoding.out, v0);
            storeWidened(decoding.out + 16, v1);
            storeWidened(decoding.out + 32, v2);
            storeWidened(decoding.out + 48, v3);
            decoding.in += utf8BlockBytes;
            decoding.out += utf8BlockBytes;
            spilled = nullptr;
            continue;
        }
        const Window w0 = window(v0, _mm_setzero_si128());
        const Window w1 = window(v1, v0);
        const Window w2 = window(v2, v1);
        const Window w3 = window(v3, v2);
        const __m128i found = _mm_or_si128(_mm_or_si128(errors(w0), errors(w1)),
                                           _mm_or_si128(errors(w2), errors(w3)));
        if (!_mm_testz_si128(found, found)) {
            break;
        }
        decoding.out = writeBlock(decoding.out, {w0, w1, w2, w3}, behind);
        spilled = decoding.out;
        decoding.in += utf8BlockBytes;
        decoding.in -= openBytes(decoding.in);
    }
    if (spilled != nullptr) {
        storeVector(spilled, behind);
    }
}

QV_TARGET_SSE42 void decodeSse42(Decoding& decoding) noexcept {
    Decoding blocks = decoding;
    decodeBlocks(blocks);
    decoding.follow(blocks);
}

// --- Encoding ---
//
// Every unit is spread over a place for its longest form, and the bytes that it does have are then
// moved together. Source: D. Lemire, W. Mula, as above.

/// Eight units in two bytes each; a set bit means that the unit has only the first.
constexpr ShuffleTable makePairPacks() {
    ShuffleTable table{};
    for (unsigned mask = 0; mask < table.size(); ++mask) {
        table[mask].clear();
        unsigned char* to = table[mask].bytes;
        for (unsigned unit = 0; unit < 8; ++unit) {
            *to++ = static_cast<unsigned char>(2 * unit);
            if ((mask >> unit & 1) == 0) {
                *to++ = static_cast<unsigned char>(2 * unit + 1);
            }
        }
    }
    return table;
}

constexpr ShuffleTable pairPacks = makePairPacks();

/// Four units in four bytes each: lead of three, middle or lead of two, last, none. The low four
/// bits tell which units have one byte, the high four which have one or two.
constexpr ShuffleTable makeTriplePacks() {
    ShuffleTable table{};
    for (unsigned mask = 0; mask < table.size(); ++mask) {
        table[mask].clear();
        unsigned char* to = table[mask].bytes;
        for (unsigned unit = 0; unit < 4; ++unit) {
            const bool one = (mask >> unit & 1) != 0;
            const bool oneOrTwo = (mask >> (unit + 4) & 1) != 0;
            for (unsigned byte = one ? 2 : oneOrTwo ? 1 : 0; byte < 3; ++byte) {
                *to++ = static_cast<unsigned char>(4 * unit + byte);
            }
        }
    }
    return table;
}

constexpr ShuffleTable triplePacks = makeTriplePacks();

/// True where all words have none of the bits of `mask`.
QV_TARGET_SSE42 inline bool hasNone(__m128i words, int mask) noexcept {
    return _mm_testz_si128(words, splat16(mask)) != 0;
}

QV_TARGET_SSE42 inline __m128i lacksAll(__m128i words, int mask) noexcept {
    return _mm_cmpeq_epi16(_mm_and_si128(words, splat16(mask)), _mm_setzero_si128());
}

/// The bytes of eight units below 0x800. `ones` are the bits of those with one byte.
QV_TARGET_SSE42 inline __m128i packPairs(__m128i units, __m128i isOne, unsigned ones) noexcept {
    const __m128i lead = _mm_srli_epi16(units, 6);
    const __m128i last = _mm_slli_epi16(_mm_and_si128(units, splat16(0x3F)), 8);
    const __m128i pairs = _mm_or_si128(_mm_or_si128(lead, last), splat16(0x80C0));
    return _mm_shuffle_epi8(_mm_blendv_epi8(pairs, units, isOne), loadRow(pairPacks[ones].bytes));
}

/// Writes sixteen units below 0x800, and nothing behind them. @return the end of what was written.
QV_TARGET_SSE42 inline signed char* writePairs(signed char* out, __m128i first,
                                               __m128i second) noexcept {
    const __m128i firstIsOne = lacksAll(first, 0xFF80);
    const __m128i secondIsOne = lacksAll(second, 0xFF80);
    const auto ones =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(firstIsOne, secondIsOne)));
    signed char* const end = out + 32 - _mm_popcnt_u32(ones);
    const __m128i behind = loadVector(end);
    storeVector(out, packPairs(first, firstIsOne, ones & 0xFF));
    storeVector(out + 16 - _mm_popcnt_u32(ones & 0xFF), packPairs(second, secondIsOne, ones >> 8));
    storeVector(end, behind);
    return end;
}

/// Eight units in four bytes each (see `triplePacks`). The low byte of `masks` tells which have one
/// byte, the high one which have one or two.
struct Triples {
    __m128i first, second;
    unsigned masks;
};

QV_TARGET_SSE42 inline Triples spread(__m128i units) noexcept {
    const __m128i isOne = lacksAll(units, 0xFF80);
    const __m128i isOneOrTwo = lacksAll(units, 0xF800);
    const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 12), splat16(0xE0));
    const __m128i middleMark =
        _mm_or_si128(splat16(0x80), _mm_and_si128(isOneOrTwo, splat16(0x40)));
    const __m128i middle =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), splat16(0x3F)), middleMark);
    const __m128i tail = _mm_or_si128(_mm_and_si128(units, splat16(0x3F)), splat16(0x80));
    const __m128i last = _mm_blendv_epi8(tail, units, isOne);
    const __m128i firstTwo = _mm_or_si128(lead, _mm_slli_epi16(middle, 8));
    const auto masks = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(isOne, isOneOrTwo)));
    return {_mm_unpacklo_epi16(firstTwo, last), _mm_unpackhi_epi16(firstTwo, last), masks};
}

/// Writes four units. @return the end of what was written; sixteen bytes are touched.
QV_TARGET_SSE42 inline signed char* packTriples(signed char* out, __m128i bytes,
                                                unsigned mask) noexcept {
    storeVector(out, _mm_shuffle_epi8(bytes, loadRow(triplePacks[mask].bytes)));
    return out + 12 - _mm_popcnt_u32(mask);
}

QV_TARGET_SSE42 inline signed char* packTriples(signed char* out, const Triples& units) noexcept {
    out = packTriples(out, units.first, (units.masks & 0x0F) | (units.masks >> 4 & 0xF0));
    return packTriples(out, units.second, (units.masks >> 4 & 0x0F) | (units.masks >> 8 & 0xF0));
}

/// Writes sixteen units that are no surrogates, and nothing behind them.
/// @return the end of what was written.
QV_TARGET_SSE42 inline signed char* writeTriples(signed char* out, __m128i first,
                                                 __m128i second) noexcept {
    const Triples one = spread(first);
    const Triples two = spread(second);
    signed char* const end = out + 48 - _mm_popcnt_u32(one.masks | two.masks << 16);
    const __m128i behind = loadVector(end);
    packTriples(packTriples(out, one), two);
    storeVector(end, behind);
    return end;
}

QV_TARGET_SSE42 inline bool hasSurrogates(__m128i units) noexcept {
    const __m128i found = _mm_cmpeq_epi16(_mm_and_si128(units, splat16(0xF800)), splat16(0xD800));
    return !_mm_testz_si128(found, found);
}

/// Units that are tested together for being ASCII.
constexpr int asciiUnits = 32;

/// Converts blocks that are ASCII.
QV_TARGET_SSE42 inline void narrowBlocks(Encoding& encoding) noexcept {
    while (encoding.available() >= asciiUnits && encoding.room() >= asciiUnits) {
        const __m128i v0 = loadVector(encoding.in);
        const __m128i v1 = loadVector(encoding.in + 8);
        const __m128i v2 = loadVector(encoding.in + 16);
        const __m128i v3 = loadVector(encoding.in + 24);
        if (!hasNone(_mm_or_si128(_mm_or_si128(v0, v1), _mm_or_si128(v2, v3)), 0xFF80)) {
            return;
        }
        storeVector(encoding.out, _mm_packus_epi16(v0, v1));
        storeVector(encoding.out + 16, _mm_packus_epi16(v2, v3));
        encoding.in += asciiUnits;
        encoding.out += asciiUnits;
    }
}

/// Bytes that sixteen units touch: three each, and the rest of the last vector.
constexpr int encodedRoom = 64;

QV_TARGET_SSE42 inline bool canEncode(const Encoding& encoding) noexcept {
    return encoding.available() >= utf8BlockUnits && encoding.room() >= encodedRoom;
}

/// Blocks behind one that is not ASCII which are not taken for ASCII either: in most languages
/// other letters come again soon, and a branch that goes either way costs more than the longer
/// path.
constexpr int blocksWithoutAscii = 8;

/// Converts blocks of any letters. @return false at a surrogate.
QV_TARGET_SSE42 inline bool encodeLetters(Encoding& encoding) noexcept {
    for (int block = 0; block < blocksWithoutAscii && canEncode(encoding); ++block) {
        const __m128i first = loadVector(encoding.in);
        const __m128i second = loadVector(encoding.in + 8);
        if (hasNone(_mm_or_si128(first, second), 0xF800)) {
            encoding.out = writePairs(encoding.out, first, second);
        } else if (!hasSurrogates(first) && !hasSurrogates(second)) {
            encoding.out = writeTriples(encoding.out, first, second);
        } else {
            return false;
        }
        encoding.in += utf8BlockUnits;
    }
    return true;
}

QV_TARGET_SSE42 void encodeSse42(Encoding& encoding) noexcept {
    Encoding blocks = encoding;
    narrowBlocks(blocks);
    while (canEncode(blocks) && encodeLetters(blocks)) {
        narrowBlocks(blocks);
    }
    encoding.follow(blocks);
}

bool supportsSse42() noexcept {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt");
}

// --- Every processor ---

void decodeAscii(Decoding& decoding) noexcept { widenRun<AsciiRun>(decoding); }
void encodeAscii(Encoding& encoding) noexcept { narrowRun<AsciiRun>(encoding); }
bool supportsAlways() noexcept { return true; }

constexpr Utf8Blocks all[] = {
    {&decodeSse42, &encodeSse42, &supportsSse42},
    {&decodeAscii, &encodeAscii, &supportsAlways},
};

const Utf8Blocks& firstSupported() noexcept {
    const Utf8Blocks* blocks = all;
    while (!blocks->isSupported()) {
        ++blocks;
    }
    return *blocks;
}

} // namespace

std::span<const Utf8Blocks> allUtf8Blocks() noexcept { return all; }

const Utf8Blocks& utf8Blocks() noexcept {
    static const Utf8Blocks& chosen = firstSupported();
    return chosen;
}

} // namespace qv::text::charset::detail
