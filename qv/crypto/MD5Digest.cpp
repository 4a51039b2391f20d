#include "qv/crypto/MD5Digest.h"

#include "qv/ErrorRule.h"
#include "qv/String.h"
#include "qv/crypto/detail/Wipe.h"
#include "qv/detail/NumberBytes.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <utility>

namespace qv::crypto {

namespace {

using Word = std::uint32_t;

constexpr int digestLength = 16; // bytes
constexpr int blockLength = 64;  // bytes
constexpr int lengthStart = 56;  // where the length stands in the last block
constexpr Word startState[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

/// The whole part of 2 to the 32nd times |sin(i + 1)|.
constexpr Word constants[] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391};
constexpr int steps = static_cast<int>(std::size(constants));

constexpr int shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

/// The word of the block that each step of a round takes: first and distance.
constexpr int wordOrder[4][2] = {{0, 1}, {1, 5}, {5, 3}, {0, 7}};

/// What a round makes of three words, added to `sum`.
template <int round>
[[gnu::always_inline]] inline Word mixed(Word sum, Word x, Word y, Word z) noexcept {
    if constexpr (round == 0) {
        return sum + (((y ^ z) & x) ^ z);
    } else if constexpr (round == 1) {
        // The two halves have no bit in common. Apart, only one of them waits for x.
        return sum + (~z & y) + (z & x);
    } else if constexpr (round == 2) {
        return sum + (x ^ (y ^ z));
    } else {
        return sum + (y ^ (x | ~z));
    }
}

/// One of the 64 steps. The four words change their parts from step to step.
template <int i>
[[gnu::always_inline]] inline void step(Word (&words)[4], const signed char* block) noexcept {
    constexpr int round = i / 16;
    constexpr int place = (wordOrder[round][0] + wordOrder[round][1] * (i % 16)) % 16;
    Word& a = words[(steps - i) % 4];
    const Word b = words[(steps + 1 - i) % 4];
    const Word c = words[(steps + 2 - i) % 4];
    const Word d = words[(steps + 3 - i) % 4];
    const Word sum = a + constants[i] + qv::detail::loadNumber<Word>(block + 4 * place);
    a = b + std::rotl(mixed<round>(sum, b, c, d), shifts[round][i % 4]);
}

template <int... i>
[[gnu::always_inline]] inline void allSteps(Word (&words)[4], const signed char* block,
                                            std::integer_sequence<int, i...>) noexcept {
    (step<i>(words, block), ...);
}

} // namespace

MD5Digest::MD5Digest() noexcept { start(); }

MD5Digest::~MD5Digest() noexcept { start(); }

/// Wipes what there was, and starts a message.
void MD5Digest::start() noexcept {
    detail::wipe(&bitCount_, sizeof bitCount_);
    detail::wipe(state_, sizeof state_);
    detail::wipe(buffer_, sizeof buffer_);
    std::copy(std::begin(startState), std::end(startState), state_);
}

void MD5Digest::reset() { start(); }

void MD5Digest::transform(const signed char* blocks, int count) noexcept {
    Word words[4] = {state_[0], state_[1], state_[2], state_[3]};
    for (; count > 0; --count, blocks += blockLength) {
        const Word before[4] = {words[0], words[1], words[2], words[3]};
        allSteps(words, blocks, std::make_integer_sequence<int, steps>());
        for (int i = 0; i < 4; ++i) {
            words[i] += before[i];
        }
    }
    std::copy(std::begin(words), std::end(words), state_);
}

void MD5Digest::update(const signed char* data, int length) {
    if (length < 1) {
        return;
    }
    const int held = static_cast<int>(bitCount_ / 8 % blockLength);
    bitCount_ += static_cast<std::uint64_t>(length) * 8;
    if (held > 0) {
        const int taken = std::min(length, blockLength - held);
        std::copy_n(data, taken, buffer_ + held);
        if (held + taken < blockLength) {
            return;
        }
        transform(buffer_, 1);
        data += taken;
        length -= taken;
    }
    transform(data, length / blockLength);
    const int rest = length % blockLength;
    std::copy_n(data + (length - rest), rest, buffer_);
}

void MD5Digest::getDigest(signed char* out, int length) {
    if (length < digestLength) {
        throwResult(QV_E_BUFFERTOOSMALL);
    }
    static constexpr signed char padding[blockLength] = {-128};
    const std::uint64_t bitCount = bitCount_;
    const int held = static_cast<int>(bitCount / 8 % blockLength);
    MD5Digest::update(padding,
                      (held < lengthStart ? lengthStart : lengthStart + blockLength) - held);
    qv::detail::storeNumber(buffer_ + lengthStart, bitCount);
    transform(buffer_, 1);
    std::memcpy(out, state_, digestLength);
    reset();
}

int MD5Digest::getLength() const { return digestLength; }

String MD5Digest::getName() const {
    using namespace literals;
    return String(u"MD5"_lit);
}

} // namespace qv::crypto
