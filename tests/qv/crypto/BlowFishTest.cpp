#include "qv/crypto/BlowFish.h"

#include "qv/Exceptions.h"
#include "tests/support/Hex.h"
#include "tests/support/Throws.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#ifdef QVCL_TEST_OPENSSL
#    define OPENSSL_SUPPRESS_DEPRECATED // the direct calls need no provider
#    include <openssl/blowfish.h>
#endif

namespace {

using namespace qv;
using crypto::BlowFish;
using support::Bytes;
using support::fromHex;
using support::toHex;

BlowFish cipherOf(const Bytes& key) { return BlowFish(key.data(), static_cast<int>(key.size())); }

Bytes encrypted(const BlowFish& cipher, const Bytes& bytes) {
    Bytes out(bytes.size());
    cipher.encrypt(out.data(), bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return out;
}

Bytes decrypted(const BlowFish& cipher, const Bytes& bytes) {
    Bytes out(bytes.size());
    cipher.decrypt(out.data(), bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return out;
}

Bytes randomBytes(int count) {
    std::mt19937 numbers(static_cast<unsigned>(count));
    Bytes bytes;
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<signed char>(numbers()));
    }
    return bytes;
}

struct Published {
    const char* key;
    const char* clear;
    const char* cipher;
};

class BlowFishPublishedTest : public testing::TestWithParam<Published> {};

TEST_P(BlowFishPublishedTest, HoldsBothWays) {
    const BlowFish cipher = cipherOf(fromHex(GetParam().key));
    EXPECT_EQ(encrypted(cipher, fromHex(GetParam().clear)), fromHex(GetParam().cipher));
    EXPECT_EQ(decrypted(cipher, fromHex(GetParam().cipher)), fromHex(GetParam().clear));
}

INSTANTIATE_TEST_SUITE_P(
    KeysOfEightBytes, BlowFishPublishedTest,
    testing::Values(Published{"0000000000000000", "0000000000000000", "4EF997456198DD78"},
                    Published{"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
                    Published{"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
                    Published{"1111111111111111", "1111111111111111", "2466DD878B963C9D"},
                    Published{"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
                    Published{"1111111111111111", "0123456789ABCDEF", "7D0CC630AFDA1EC7"},
                    Published{"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
                    Published{"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
                    Published{"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
                    Published{"07A1133E4A0B2686", "0248D43806F67172", "1730E5778BEA1DA4"},
                    Published{"3849674C2602319E", "51454B582DDF440A", "A25E7856CF2651EB"},
                    Published{"04B915BA43FEB5B6", "42FD443059577FA2", "353882B109CE8F1A"},
                    Published{"0113B970FD34F2CE", "059B5E0851CF143A", "48F4D0884C379918"},
                    Published{"0170F175468FB5E6", "0756D8E0774761D2", "432193B78951FC98"},
                    Published{"43297FAD38E373FE", "762514B829BF486A", "13F04154D69D1AE5"},
                    Published{"07A7137045DA2A16", "3BDD119049372802", "2EEDDA93FFD39C79"},
                    Published{"04689104C2FD3B2F", "26955F6835AF609A", "D887E0393C2DA6E3"},
                    Published{"37D06BB516CB7546", "164D5E404F275232", "5F99D04F5B163969"},
                    Published{"1F08260D1AC2465E", "6B056E18759F5CCA", "4A057A3B24D3977B"},
                    Published{"584023641ABA6176", "004BD6EF09176062", "452031C1E4FADA8E"},
                    Published{"025816164629B007", "480D39006EE762F2", "7555AE39F59B87BD"},
                    Published{"49793EBC79B3258F", "437540C8698F3CFA", "53C55F9CB49FC019"},
                    Published{"4FB05E1515AB73A7", "072D43A077075292", "7A8E7BFA937E89A3"},
                    Published{"49E95D6D4CA229BF", "02FE55778117F12A", "CF9C5D7A4986ADB5"},
                    Published{"018310DC409B26D6", "1D9D5C5018F728C2", "D1ABB290658BC778"},
                    Published{"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
                    Published{"0101010101010101", "0123456789ABCDEF", "FA34EC4847B268B2"},
                    Published{"1F1F1F1F0E0E0E0E", "0123456789ABCDEF", "A790795108EA3CAE"},
                    Published{"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
                    Published{"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
                    Published{"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
                    Published{"0123456789ABCDEF", "0000000000000000", "245946885754369A"},
                    Published{"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"}));

/// What FEDCBA9876543210 becomes under the first 1, 2 and so on bytes of the long key.
constexpr const char* longKey = "F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344556677";
constexpr const char* publishedByKeyLength[] = {
    "F9AD597C49DB005E", "E91D21C1D961A6D6", "E9C2B70A1BC65CF3", "BE1E639408640F05",
    "B39E44481BDB1E6E", "9457AA83B1928C0D", "8BB77032F960629D", "E87A244E2CC85E82",
    "15750E7A4F4EC577", "122BA70B3AB64AE0", "3A833C9AFFC537F6", "9409DA87A90F6BF2",
    "884F80625060B8B4", "1F85031C19E11968", "79D9373A714CA34F", "93142887EE3BE15C",
    "03429E838CE2D14B", "A4299E27469FF67B", "AFD5AED1C1BC96A8", "10851C0E3858DA9F",
    "E6F51ED79B9DB21F", "64A6E14AFD36B46F", "80C7D7D45A5479AD", "05044B62FA52D080"};

TEST(BlowFishTest, PublishedBlocksHoldForEveryKeyLength) {
    const Bytes clear = fromHex("FEDCBA9876543210");
    Bytes key;
    for (const char* const expected : publishedByKeyLength) {
        key.push_back(fromHex(longKey)[key.size()]);
        EXPECT_EQ(encrypted(cipherOf(key), clear), fromHex(expected)) << key.size() << " bytes";
    }
}

/// Shows the tables and the operations on one block.
class OpenBlowFish : public BlowFish {
public:
    using BlowFish::BlowFish;
    using BlowFish::decryptBlock;
    using BlowFish::encryptBlock;
    using BlowFish::s_pbox;
    using BlowFish::s_sbox;

    /// The rounds as they are published, over the tables as they are.
    static void encryptPlainly(unsigned int& left, unsigned int& right) {
        for (int round = 0; round < 16; ++round) {
            left ^= s_pbox[round];
            right ^= ((s_sbox[0][left >> 24] + s_sbox[1][left >> 16 & 255]) ^
                      s_sbox[2][left >> 8 & 255]) +
                     s_sbox[3][left & 255];
            std::swap(left, right);
        }
        std::swap(left, right);
        right ^= s_pbox[16];
        left ^= s_pbox[17];
    }
};

TEST(BlowFishTest, TablesAreTheDigitsOfPi) {
    EXPECT_EQ(OpenBlowFish::s_pbox[0], 0x243F6A88u);
    EXPECT_EQ(OpenBlowFish::s_pbox[17], 0x8979FB1Bu);
    EXPECT_EQ(OpenBlowFish::s_sbox[0][0], 0xD1310BA6u);
    EXPECT_EQ(OpenBlowFish::s_sbox[1][0], 0x4B7A70E9u);
    EXPECT_EQ(OpenBlowFish::s_sbox[2][0], 0xE93D5A68u);
    EXPECT_EQ(OpenBlowFish::s_sbox[3][0], 0x3A39CE37u);
    EXPECT_EQ(OpenBlowFish::s_sbox[3][255], 0x3AC372E6u);
}

TEST(BlowFishTest, AKeyOfNoBytesWorksOnThePublishedTables) {
    for (const int length : {0, -1}) {
        const OpenBlowFish cipher(nullptr, length);
        unsigned int left = 0x01234567;
        unsigned int right = 0x89ABCDEF;
        unsigned int expectedLeft = left;
        unsigned int expectedRight = right;
        cipher.encryptBlock(left, right);
        OpenBlowFish::encryptPlainly(expectedLeft, expectedRight);
        EXPECT_EQ(left, expectedLeft);
        EXPECT_EQ(right, expectedRight);
        cipher.decryptBlock(left, right);
        EXPECT_EQ(left, 0x01234567u);
        EXPECT_EQ(right, 0x89ABCDEFu);
    }
}

TEST(BlowFishTest, BlocksAreTwoWordsMostSignificantByteFirst) {
    const Bytes key = fromHex("FEDCBA9876543210");
    const OpenBlowFish cipher(key.data(), 8);
    unsigned int left = 0x01234567;
    unsigned int right = 0x89ABCDEF;
    cipher.encryptBlock(left, right);
    EXPECT_EQ(left, 0x0ACEAB0Fu);
    EXPECT_EQ(right, 0xC6A0A28Du);
    cipher.decryptBlock(left, right);
    EXPECT_EQ(left, 0x01234567u);
    EXPECT_EQ(right, 0x89ABCDEFu);
}

TEST(BlowFishTest, KeptBytesOfTheKeyBehindThe56thPlayNoPart) {
    const Bytes key = randomBytes(60);
    const Bytes clear = randomBytes(64);
    const Bytes expected = encrypted(cipherOf(Bytes(key.begin(), key.begin() + 56)), clear);
    for (int length = 57; length <= 60; ++length) {
        EXPECT_EQ(encrypted(cipherOf(Bytes(key.begin(), key.begin() + length)), clear), expected);
    }
    EXPECT_NE(encrypted(cipherOf(Bytes(key.begin(), key.begin() + 55)), clear), expected);
}

TEST(BlowFishTest, EveryKeyLengthComesBack) {
    const Bytes key = randomBytes(60);
    const Bytes clear = randomBytes(128);
    for (int length = 0; length <= 60; ++length) {
        const BlowFish cipher = cipherOf(Bytes(key.begin(), key.begin() + length));
        EXPECT_EQ(decrypted(cipher, encrypted(cipher, clear)), clear) << length;
    }
}

TEST(BlowFishTest, EveryCountOfBlocksIsThatOfItsBlocks) {
    const BlowFish cipher = cipherOf(fromHex("0123456789"));
    for (int blocks = 0; blocks <= 20; ++blocks) {
        const Bytes clear = randomBytes(8 * blocks);
        Bytes expected;
        for (int i = 0; i < blocks; ++i) {
            const Bytes block =
                encrypted(cipher, Bytes(clear.begin() + 8 * i, clear.begin() + 8 * (i + 1)));
            expected.insert(expected.end(), block.begin(), block.end());
        }
        EXPECT_EQ(encrypted(cipher, clear), expected) << blocks;
        EXPECT_EQ(decrypted(cipher, expected), clear) << blocks;
    }
}

TEST(BlowFishTest, EqualBlocksStayEqual) {
    const Bytes out = encrypted(cipherOf(fromHex("AA")), Bytes(80, 5));
    for (int i = 8; i < 80; ++i) {
        EXPECT_EQ(out[static_cast<std::size_t>(i)], out[static_cast<std::size_t>(i - 8)]);
    }
}

TEST(BlowFishTest, WorksInPlace) {
    const BlowFish cipher = cipherOf(fromHex("0123456789"));
    const Bytes clear = randomBytes(88);
    Bytes bytes = clear;
    cipher.encrypt(bytes.data(), bytes.data(), 88);
    EXPECT_EQ(bytes, encrypted(cipher, clear));
    cipher.decrypt(bytes.data(), bytes.data(), 88);
    EXPECT_EQ(bytes, clear);
}

TEST(BlowFishTest, LengthsThatAreNoWholeBlocksAreRefused) {
    const BlowFish cipher = cipherOf(fromHex("00"));
    Bytes out(16, 77);
    const Bytes in(16, 1);
    for (const std::int32_t length : {1, 7, 9, 15, -1, -7, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min() + 1}) {
        EXPECT_EQ(
            support::thrownText<Exception>([&] { cipher.encrypt(out.data(), in.data(), length); }),
            "only supports 8 byte block boundaries");
        EXPECT_EQ(
            support::thrownText<Exception>([&] { cipher.decrypt(out.data(), in.data(), length); }),
            "only supports 8 byte block boundaries");
    }
    EXPECT_EQ(out, Bytes(16, 77));
}

TEST(BlowFishTest, NoBlocksAreNothing) {
    const BlowFish cipher = cipherOf(fromHex("00"));
    Bytes out(16, 77);
    for (const std::int32_t length : {0, -8, -16, std::numeric_limits<std::int32_t>::min()}) {
        cipher.encrypt(out.data(), out.data(), length);
        cipher.decrypt(out.data(), out.data(), length);
    }
    cipher.encrypt(nullptr, nullptr, 0);
    EXPECT_EQ(out, Bytes(16, 77));
}

TEST(BlowFishTest, ACopyHasTheSchedule) {
    const BlowFish cipher = cipherOf(fromHex("0123456789ABCDEF"));
    const BlowFish copy(cipher);
    EXPECT_EQ(toHex(encrypted(copy, fromHex("1111111111111111"))), "61f9c3802281b096");
}

TEST(BlowFishTest, TheEndLeavesNothingOfTheScheduleInMemory) {
    alignas(BlowFish) static std::byte memory[sizeof(BlowFish)];
    const Bytes key = randomBytes(16);
    const auto* const cipher = new (memory) BlowFish(key.data(), 16);
    cipher->~BlowFish();
    const volatile std::byte* const left = memory;
    for (std::size_t i = sizeof(Object); i < sizeof memory; ++i) {
        ASSERT_TRUE(left[i] == std::byte{0}) << i;
    }
}

TEST(BlowFishTest, IsEqualToAnotherImplementation) {
#ifdef QVCL_TEST_OPENSSL
    for (int length = 1; length <= 56; ++length) {
        const Bytes key = randomBytes(length);
        const Bytes clear = randomBytes(8 * (length % 11 + 1));
        BF_KEY schedule;
        BF_set_key(&schedule, length, reinterpret_cast<const unsigned char*>(key.data()));
        Bytes expected(clear.size());
        for (std::size_t at = 0; at < clear.size(); at += BF_BLOCK) {
            BF_ecb_encrypt(reinterpret_cast<const unsigned char*>(clear.data()) + at,
                           reinterpret_cast<unsigned char*>(expected.data()) + at, &schedule,
                           BF_ENCRYPT);
        }
        EXPECT_EQ(encrypted(cipherOf(key), clear), expected) << length;
    }
#else
    GTEST_SKIP() << "OpenSSL is not installed";
#endif
}

} // namespace
