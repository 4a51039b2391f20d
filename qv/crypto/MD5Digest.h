#pragma once

#include "qv/crypto/MessageDigest.h"

namespace qv::crypto {

/// The hash MD5, of 16 bytes. It guards against accidents, not against people: two messages of one
/// digest can be made at will.
///
/// Source: RFC 1321.
class QV_API MD5Digest : public MessageDigest {
public:
    MD5Digest() noexcept;
    /// Leaves nothing of the message in memory.
    ~MD5Digest() noexcept override;

    void update(const signed char* data, int length) override;
    void getDigest(signed char* out, int length) override;
    void reset() override;
    /// 16.
    int getLength() const override;
    /// "MD5".
    String getName() const override;

private:
    void start() noexcept;
    void transform(const signed char* blocks, int count) noexcept;

    std::uint64_t bitCount_;
    std::uint32_t state_[4];
    signed char buffer_[64];
};

} // namespace qv::crypto
