#include "qv/crypto/MD5Digest.h"

#include "qv/String.h"
#include "tests/support/Hex.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <span>

#ifdef QVCL_TEST_OPENSSL
#    define OPENSSL_SUPPRESS_DEPRECATED // the direct call needs no provider
#    include <openssl/md5.h>
#endif

namespace {

using namespace qv;
using support::Bytes;

using Digest = std::array<signed char, 16>;

Digest digestOf(crypto::MessageDigest& digest) {
    Digest out;
    digest.getDigest(out.data(), 16);
    return out;
}

void update(crypto::MessageDigest& digest, std::span<const signed char> bytes) {
    digest.update(bytes.data(), static_cast<int>(bytes.size()));
}

std::string digestOf(std::span<const signed char> bytes) {
    crypto::MD5Digest digest;
    update(digest, bytes);
    return support::toHex(digestOf(digest));
}

std::string digestOf(std::string_view text) { return digestOf(Bytes(text.begin(), text.end())); }

Bytes randomBytes(int count) {
    std::mt19937 numbers(static_cast<unsigned>(count));
    Bytes bytes;
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<signed char>(numbers()));
    }
    return bytes;
}

constexpr const char* emptyDigest = "d41d8cd98f00b204e9800998ecf8427e";

struct Published {
    const char* text;
    const char* digest;
};

class MD5PublishedTest : public testing::TestWithParam<Published> {};

TEST_P(MD5PublishedTest, HasThePublishedDigest) {
    EXPECT_EQ(digestOf(std::string_view(GetParam().text)), GetParam().digest);
}

INSTANTIATE_TEST_SUITE_P(
    Rfc1321, MD5PublishedTest,
    testing::Values(
        Published{"", emptyDigest}, Published{"a", "0cc175b9c0f1b6a831c399e269772661"},
        Published{"abc", "900150983cd24fb0d6963f7d28e17f72"},
        Published{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        Published{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        Published{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                  "d174ab98d277d9f5a5611c2c9f419d9f"},
        Published{"1234567890123456789012345678901234567890123456789012345678901234567890123456789"
                  "0",
                  "57edf4a22be3c955ac49da2e2107b67a"}));

TEST(MD5DigestTest, TellsItsLengthAndItsName) {
    const crypto::MD5Digest digest;
    EXPECT_EQ(digest.getLength(), 16);
    EXPECT_EQ(digest.getName(), u"MD5");
}

TEST(MD5DigestTest, NamesAreTheCallersToChange) {
    const crypto::MD5Digest digest;
    String name = digest.getName();
    name.append(u" and more");
    EXPECT_EQ(digest.getName(), u"MD5");
}

TEST(MD5DigestTest, PiecesOfAnySizeMakeTheSameMessage) {
    const Bytes message = randomBytes(1000);
    const std::string expected = digestOf(message);
    for (std::size_t size = 1; size <= 200; ++size) {
        crypto::MD5Digest digest;
        for (std::size_t at = 0; at < message.size(); at += size) {
            update(digest, std::span(message).subspan(at, std::min(size, message.size() - at)));
        }
        EXPECT_EQ(support::toHex(digestOf(digest)), expected) << "pieces of " << size;
    }
}

TEST(MD5DigestTest, PiecesOfChangingSizeMakeTheSameMessage) {
    const Bytes message = randomBytes(20000);
    crypto::MD5Digest digest;
    std::size_t at = 0;
    for (std::size_t size = 0; at + size <= message.size(); ++size) {
        update(digest, std::span(message).subspan(at, size));
        at += size;
    }
    update(digest, std::span(message).subspan(at));
    EXPECT_EQ(support::toHex(digestOf(digest)), digestOf(message));
}

TEST(MD5DigestTest, LengthsBelowOneAddNothing) {
    crypto::MD5Digest digest;
    const Bytes message = support::fromHex("616263");
    digest.update(nullptr, 0);
    update(digest, message);
    digest.update(message.data(), 0);
    digest.update(message.data(), -3);
    digest.update(message.data(), std::numeric_limits<int>::min());
    EXPECT_EQ(support::toHex(digestOf(digest)), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(MD5DigestTest, ADigestEndsTheMessage) {
    crypto::MD5Digest digest;
    update(digest, randomBytes(100));
    digestOf(digest);
    EXPECT_EQ(support::toHex(digestOf(digest)), emptyDigest);
    update(digest, support::fromHex("61"));
    EXPECT_EQ(support::toHex(digestOf(digest)), "0cc175b9c0f1b6a831c399e269772661");
}

TEST(MD5DigestTest, ADerivedDigestSeesTheMessageAlone) {
    struct Counting : crypto::MD5Digest {
        void update(const signed char* data, int length) override {
            count += length;
            MD5Digest::update(data, length);
        }
        int count = 0;
    };
    Counting digest;
    const Bytes message = {'a', 'b', 'c'};
    digest.update(message.data(), 3);
    EXPECT_EQ(support::toHex(digestOf(digest)), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(digest.count, 3);
}

TEST(MD5DigestTest, AResetForgetsTheMessage) {
    crypto::MD5Digest digest;
    update(digest, randomBytes(100));
    digest.reset();
    EXPECT_EQ(support::toHex(digestOf(digest)), emptyDigest);
}

TEST(MD5DigestTest, TooLittleRoomIsRefusedAndTheMessageGoesOn) {
    crypto::MD5Digest digest;
    update(digest, support::fromHex("6162"));
    Digest out;
    out.fill(77);
    for (const int length : {15, 0, -1}) {
        EXPECT_EQ(support::thrownResult([&] { digest.getDigest(out.data(), length); }),
                  QV_E_BUFFERTOOSMALL);
    }
    EXPECT_EQ(out[0], 77);
    update(digest, support::fromHex("63"));
    EXPECT_EQ(support::toHex(digestOf(digest)), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(MD5DigestTest, WritesSixteenBytesAlsoWithMoreRoom) {
    crypto::MD5Digest digest;
    Bytes out(20, 77);
    digest.getDigest(out.data(), 20);
    EXPECT_EQ(support::toHex(out), std::string(emptyDigest) + "4d4d4d4d");
}

TEST(MD5DigestTest, CountsBitsBeyond32Bits) {
    const Bytes piece(1 << 20);
    crypto::MD5Digest digest;
    for (int i = 0; i < 512; ++i) {
        update(digest, piece);
    }
    EXPECT_EQ(support::toHex(digestOf(digest)), "aa559b4e3523a6c931f08f4df52d58f2");
}

TEST(MD5DigestTest, ACopyGoesItsOwnWay) {
    crypto::MD5Digest digest;
    update(digest, support::fromHex("61"));
    crypto::MD5Digest copy(digest);
    update(copy, support::fromHex("6263"));
    EXPECT_EQ(support::toHex(digestOf(copy)), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(support::toHex(digestOf(digest)), "0cc175b9c0f1b6a831c399e269772661");
}

/// The object's memory, which a test looks into.
class Place {
public:
    crypto::MD5Digest* make() { return new (memory_) crypto::MD5Digest; }
    Bytes bytes() const {
        Bytes copy(sizeof memory_);
        for (std::size_t i = 0; i < sizeof memory_; ++i) {
            copy[i] = static_cast<signed char>(static_cast<const volatile std::byte*>(memory_)[i]);
        }
        return copy;
    }
    bool holds(const Bytes& wanted) const {
        const Bytes all = bytes();
        return std::search(all.begin(), all.end(), wanted.begin(), wanted.end()) != all.end();
    }

private:
    alignas(crypto::MD5Digest) std::byte memory_[sizeof(crypto::MD5Digest)];
};

TEST(MD5DigestTest, AResetLeavesNothingOfTheMessageInMemory) {
    Place place;
    crypto::MD5Digest* const digest = place.make();
    const Bytes fresh = place.bytes();
    update(*digest, randomBytes(120));
    ASSERT_NE(place.bytes(), fresh);
    digest->reset();
    EXPECT_EQ(place.bytes(), fresh);
    digest->~MD5Digest();
}

TEST(MD5DigestTest, ADigestLeavesNothingOfTheMessageInMemory) {
    Place place;
    crypto::MD5Digest* const digest = place.make();
    const Bytes fresh = place.bytes();
    update(*digest, randomBytes(120));
    digestOf(*digest);
    EXPECT_EQ(place.bytes(), fresh);
    digest->~MD5Digest();
}

TEST(MD5DigestTest, TheEndLeavesNothingOfTheMessageInMemory) {
    Place place;
    crypto::MD5Digest* const digest = place.make();
    const Bytes secret = randomBytes(20);
    update(*digest, secret);
    ASSERT_TRUE(place.holds(secret));
    digest->~MD5Digest();
    EXPECT_FALSE(place.holds(Bytes(secret.begin(), secret.begin() + 4)));
}

TEST(MD5DigestTest, OperationsStandBehindThoseOfObjects) {
    using crypto::MessageDigest;
    support::expectConsecutive(
        {support::slotOf(&Object::toString), support::slotOf(&MessageDigest::update),
         support::slotOf(&MessageDigest::getDigest), support::slotOf(&MessageDigest::reset),
         support::slotOf(&MessageDigest::getLength), support::slotOf(&MessageDigest::getName)});
    EXPECT_EQ(support::slotOf(&crypto::MD5Digest::getName),
              support::slotOf(&MessageDigest::getName));
}

TEST(MD5DigestTest, IsEqualToAnotherImplementation) {
#ifdef QVCL_TEST_OPENSSL
    for (int length = 0; length < 600; ++length) {
        const Bytes message = randomBytes(length);
        Digest expected;
        MD5(reinterpret_cast<const unsigned char*>(message.data()), message.size(),
            reinterpret_cast<unsigned char*>(expected.data()));
        EXPECT_EQ(digestOf(message), support::toHex(expected)) << length;
    }
#else
    GTEST_SKIP() << "OpenSSL is not installed";
#endif
}

} // namespace
