#include "qv/crypto/BlowFish.h"

#include "qv/Exceptions.h"
#include "qv/crypto/detail/Wipe.h"
#include "qv/detail/NumberBytes.h"

#include <algorithm>
#include <cstring>

namespace qv::crypto {

#include "qv/crypto/BlowFishTables.inc"

namespace {

constexpr int greatestKeyLength = 56; // bytes
constexpr int blockLength = 8;        // bytes
constexpr int rounds = 16;
/// Blocks that go through the rounds side by side. A round waits for four loads that depend on the
/// one before, and blocks do not depend on each other.
constexpr int lanesAtOnce = 4;

} // namespace

BlowFish::BlowFish(const signed char* key, int length) {
    std::memcpy(p_, s_pbox, sizeof p_);
    std::memcpy(s_, s_sbox, sizeof s_);
    if (length > 0) {
        expandKey(key, std::min(length, greatestKeyLength));
    }
}

BlowFish::~BlowFish() noexcept {
    detail::wipe(p_, sizeof p_);
    detail::wipe(s_, sizeof s_);
}

void BlowFish::expandKey(const signed char* key, int length) noexcept {
    int at = 0;
    for (std::uint32_t& word : p_) {
        std::uint32_t keyWord = 0;
        for (int i = 0; i < 4; ++i) {
            keyWord = keyWord << 8 | static_cast<unsigned char>(key[at]);
            at = at + 1 < length ? at + 1 : 0;
        }
        word ^= keyWord;
    }
    unsigned int left = 0;
    unsigned int right = 0;
    const auto replacePairs = [&](std::uint32_t* words, int count) {
        for (int i = 0; i < count; i += 2) {
            encryptBlock(left, right);
            words[i] = left;
            words[i + 1] = right;
        }
    };
    replacePairs(p_, 18);
    for (auto& box : s_) {
        replacePairs(box, 256);
    }
}

/// Takes blocks through the sixteen rounds, or through the same rounds in reverse.
template <BlowFish::Way way, int lanes>
inline void BlowFish::pass(std::uint32_t* left, std::uint32_t* right) const noexcept {
    const auto key = [this](int round) { return p_[way == Way::there ? round : 17 - round]; };
    const auto mixed = [this](std::uint32_t x) {
        return ((s_[0][x >> 24] + s_[1][x >> 16 & 0xFF]) ^ s_[2][x >> 8 & 0xFF]) + s_[3][x & 0xFF];
    };
    for (int round = 0; round < rounds; round += 2) {
        for (int i = 0; i < lanes; ++i) {
            left[i] ^= key(round);
            right[i] ^= mixed(left[i]);
        }
        for (int i = 0; i < lanes; ++i) {
            right[i] ^= key(round + 1);
            left[i] ^= mixed(right[i]);
        }
    }
    for (int i = 0; i < lanes; ++i) {
        const std::uint32_t last = left[i] ^ key(rounds);
        left[i] = right[i] ^ key(rounds + 1);
        right[i] = last;
    }
}

void BlowFish::encryptBlock(unsigned int& left, unsigned int& right) const noexcept {
    pass<Way::there, 1>(&left, &right);
}

void BlowFish::decryptBlock(unsigned int& left, unsigned int& right) const noexcept {
    pass<Way::back, 1>(&left, &right);
}

template <BlowFish::Way way, int lanes>
inline void BlowFish::passBytes(signed char* dst, const signed char* src) const noexcept {
    std::uint32_t left[lanes];
    std::uint32_t right[lanes];
    for (int i = 0; i < lanes; ++i) {
        left[i] = qv::detail::loadBigEndian<std::uint32_t>(src + i * blockLength);
        right[i] = qv::detail::loadBigEndian<std::uint32_t>(src + i * blockLength + 4);
    }
    pass<way, lanes>(left, right);
    for (int i = 0; i < lanes; ++i) {
        qv::detail::storeBigEndian(dst + i * blockLength, left[i]);
        qv::detail::storeBigEndian(dst + i * blockLength + 4, right[i]);
    }
}

template <BlowFish::Way way>
void BlowFish::passAll(signed char* dst, const signed char* src, std::int32_t length) const {
    if (length % blockLength != 0) {
        throw Exception(u"only supports 8 byte block boundaries");
    }
    constexpr int stride = lanesAtOnce * blockLength;
    std::int32_t at = 0;
    for (; length - at >= stride; at += stride) {
        passBytes<way, lanesAtOnce>(dst + at, src + at);
    }
    for (; at < length; at += blockLength) {
        passBytes<way, 1>(dst + at, src + at);
    }
}

void BlowFish::encrypt(signed char* dst, const signed char* src, std::int32_t length) const {
    passAll<Way::there>(dst, src, length);
}

void BlowFish::decrypt(signed char* dst, const signed char* src, std::int32_t length) const {
    passAll<Way::back>(dst, src, length);
}

} // namespace qv::crypto
