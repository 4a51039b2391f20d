// Format streams, byte buffers, digests, identifiers and tokens for which there is no memory. On
// this system only: here the library allocates by the test program's operator new.

#include "qv/crypto/BlowFish.h"
#include "qv/crypto/MD5Digest.h"
#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"
#include "qv/io/BitOutputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBuffer.h"
#include "qv/io/DataOutputStream.h"
#include "qv/util/Guid.h"
#include "qv/util/StringTokenizer.h"
#include "tests/support/Allocations.h"
#include "tests/support/Hex.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>

namespace {

using namespace qv;
using support::Allocations;
using support::Bytes;

/// Runs `work` with its first, second and so on allocation failing, until it needs no more, and
/// `check` behind each failure. @return how many failed.
template <class Work, class Check>
int failEach(Work work, Check check) {
    for (std::size_t failing = 1; failing < 100; ++failing) {
        try {
            const Allocations allocations(failing);
            work();
            return static_cast<int>(failing) - 1;
        } catch (const std::bad_alloc&) {
            check();
        }
    }
    ADD_FAILURE() << "it never has enough";
    return 0;
}

/// How often at least the growth of a byte array fails. Its allocations are not by `new`, and a
/// sanitizer lets no other fail.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int growthFailures = 0;
#else
constexpr int growthFailures = 1;
#endif

Bytes contents(const io::ByteArrayOutputStream& out) {
    Bytes bytes(1000);
    bytes.resize(static_cast<std::size_t>(out.getBytes(bytes.data(), 1000)));
    return bytes;
}

TEST(FormatAllocationTest, AByteBufferWithoutMemoryIsNone) {
    EXPECT_GT(failEach([] { make<io::ByteBuffer>(10u, QV_ENDIAN_BIG, false); }, [] {}), 1);
    io::ByteBuffer buffer(4u, QV_ENDIAN_BIG, false);
    buffer.putInt32(0, 7);
    EXPECT_GT(
        failEach([&] { buffer.duplicate(false, 8); }, [&] { EXPECT_EQ(buffer.getInt32(0), 7); }),
        1);
    EXPECT_GT(failEach([&] { buffer.slice(); }, [&] { EXPECT_EQ(buffer.getInt32(0), 7); }), 0);
}

TEST(FormatAllocationTest, NumbersThatFindNoRoomLeaveWhatThereWas) {
    const auto array = make<io::ByteArrayOutputStream>(1);
    io::DataOutputStream out(array);
    out.writeByte(1);
    EXPECT_GE(failEach([&] { out.writeInt32(2); },
                       [&] { EXPECT_EQ(support::toHex(contents(*array)), "01"); }),
              growthFailures);
    EXPECT_EQ(support::toHex(contents(*array)), "0100000002");
}

TEST(FormatAllocationTest, BitsThatFindNoRoomWait) {
    const auto array = make<io::ByteArrayOutputStream>(0);
    io::BitOutputStream out(array);
    out.write(5, 3);
    EXPECT_GE(failEach([&] { out.write(0xFFFF, 16); },
                       [&] { EXPECT_EQ(support::toHex(contents(*array)), ""); }),
              growthFailures);
    out.flush();
    EXPECT_EQ(support::toHex(contents(*array)), "bfffe0");
}

TEST(FormatAllocationTest, LettersThatFindNoRoomWereNotEncoded) {
    const auto array = make<io::ByteArrayOutputStream>(1);
    io::AlphaNumOutputStream out(array);
    const Bytes bytes = support::fromHex("00443214C7");
    out.write(bytes.data(), 1);
    EXPECT_GE(failEach([&] { out.write(bytes.data() + 1, 4); },
                       [&] { EXPECT_EQ(contents(*array).size(), 1u); }),
              growthFailures);
    out.flush();
    const Bytes letters = contents(*array);
    EXPECT_EQ(std::string(letters.begin(), letters.end()), "ABCDEFGH");
}

TEST(FormatAllocationTest, AlphabetsNeedNone) {
    const Allocations allocations;
    const io::AlphaNumInputStream in(nullptr, u"0123456789abcdefghijklmnopqrstuv");
    const io::AlphaNumOutputStream out(nullptr);
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(FormatAllocationTest, DigestsAndCiphersNeedNone) {
    signed char bytes[16] = {};
    const Allocations allocations;
    crypto::MD5Digest digest;
    digest.update(bytes, 16);
    digest.getDigest(bytes, 16);
    const crypto::BlowFish cipher(bytes, 16);
    cipher.encrypt(bytes, bytes, 16);
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(FormatAllocationTest, ADigestsNameCanBeAskedForAgain) {
    const crypto::MD5Digest digest;
    failEach([&] { static_cast<void>(digest.getName()); }, [] {});
    EXPECT_EQ(digest.getName(), u"MD5");
}

TEST(FormatAllocationTest, AnIdentifierWithoutMemoryIsNull) {
    const Allocations allocations(1);
    EXPECT_EQ(util::Guid::Generate(), nullptr);
}

TEST(FormatAllocationTest, ATokenWithoutMemoryComesNextTime) {
    util::StringTokenizer tokenizer(u"some words", nullptr, false);
    String token;
    EXPECT_GT(failEach([&] { token.setAddRef(tokenizer.nextToken()); },
                       [&] { EXPECT_EQ(tokenizer.getTokenCount(), 2); }),
              0);
    EXPECT_EQ(token, u"some");
    EXPECT_EQ(tokenizer.nextToken(), u"words");
    EXPECT_GT(failEach([] { util::StringTokenizer(u"a b", u",", true); }, [] {}), 0);
}

} // namespace
