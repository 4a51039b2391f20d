#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::crypto {

/// The block cipher Blowfish over arrays of bytes, in electronic-code-book form: every block of 8
/// bytes stands for itself, so that equal blocks stay equal, and nothing is padded.
///
/// The key is used by the constructor alone. The object holds the key schedule made from it, for
/// any number of calls, and wipes it at its end.
///
/// Thread safety: const-safe. Source: B. Schneier, Description of a New Variable-Length Key, 64-Bit
/// Block Cipher (Blowfish), Fast Software Encryption 1993.
class QV_API BlowFish : public Object {
public:
    /// Makes the key schedule of `length` bytes. A key of no bytes leaves the published tables as
    /// they are. Kept: bytes behind the 56th play no part.
    BlowFish(const signed char* key, int length);
    BlowFish(const BlowFish&) = default;
    BlowFish& operator=(const BlowFish&) = default;
    ~BlowFish() noexcept override;

    /// Encrypts `length` bytes, a multiple of 8. Requires: `dst` is `src`, or the two do not
    /// overlap.
    /// @throws Exception "only supports 8 byte block boundaries"; nothing is written then.
    void encrypt(signed char* dst, const signed char* src, std::int32_t length) const;
    /// The way back, under the same rules.
    void decrypt(signed char* dst, const signed char* src, std::int32_t length) const;

protected:
    /// One block, as its first and its last four bytes, most significant byte first.
    void encryptBlock(unsigned int& left, unsigned int& right) const noexcept;
    void decryptBlock(unsigned int& left, unsigned int& right) const noexcept;

    /// What every schedule starts from: the fractional digits of pi.
    static const std::uint32_t s_pbox[18];
    static const std::uint32_t s_sbox[4][256];

private:
    enum class Way { there, back };

    template <Way way, int lanes>
    void pass(std::uint32_t* left, std::uint32_t* right) const noexcept;
    template <Way way, int lanes>
    void passBytes(signed char* dst, const signed char* src) const noexcept;
    template <Way way>
    void passAll(signed char* dst, const signed char* src, std::int32_t length) const;
    void expandKey(const signed char* key, int length) noexcept;

    std::uint32_t p_[18];
    std::uint32_t s_[4][256];
};

} // namespace qv::crypto
