#include "qvcore/NumberText.h"

#include "tests/support/LocaleScope.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

struct SignedRow {
    const char16_t* text;
    std::int32_t radix;
    std::int32_t value;
    int taken;
};

struct UnsignedRow {
    const char16_t* text;
    std::int32_t radix;
    std::uint32_t value;
    int taken;
};

struct RealRow {
    const char16_t* text;
    double value;
    int taken;
};

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();

double real(const char16_t* text) { return QVStrToDW(text, nullptr); }

std::u16string wide(const std::string& text) { return {text.begin(), text.end()}; }

std::u16string writeWide(std::int32_t value, std::int32_t radix) {
    char16_t buffer[34];
    EXPECT_EQ(QVLToStrW(value, buffer, radix), buffer);
    return buffer;
}

std::string writeNarrow(std::int32_t value, std::int32_t radix) {
    char buffer[34];
    EXPECT_EQ(QVLToStrA(value, buffer, radix), buffer);
    return buffer;
}

} // namespace

class SignedNumberTest : public testing::TestWithParam<SignedRow> {};

TEST_P(SignedNumberTest, ReadsAsFarAsTheNumberGoes) {
    const SignedRow& row = GetParam();
    const char16_t* end = nullptr;
    EXPECT_EQ(QVStrToLW(row.text, &end, row.radix), row.value);
    EXPECT_EQ(end - row.text, row.taken);
    EXPECT_EQ(QVStrToLW(row.text, nullptr, row.radix), row.value);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SignedNumberTest,
    testing::Values(
        SignedRow{u"0", 10, 0, 1}, SignedRow{u"12ab", 10, 12, 2}, SignedRow{u"+7", 10, 7, 2},
        SignedRow{u"-7", 10, -7, 2}, SignedRow{u" \t\n\v\f\r42 ", 10, 42, 8},
        SignedRow{u"", 10, 0, 0}, SignedRow{u"abc", 10, 0, 0}, SignedRow{u"-", 10, 0, 0},
        SignedRow{u"  +", 10, 0, 0}, SignedRow{u"- 1", 10, 0, 0}, SignedRow{u"+-1", 10, 0, 0},
        SignedRow{u"2147483647", 10, most, 10}, SignedRow{u"2147483648", 10, most, 10},
        SignedRow{u"-2147483648", 10, least, 11}, SignedRow{u"-2147483649", 10, least, 11},
        SignedRow{u"99999999999999999999999999x", 10, most, 26},
        SignedRow{u"-99999999999999999999999999x", 10, least, 27}, SignedRow{u"0x1F", 0, 31, 4},
        SignedRow{u"0X1f", 16, 31, 4}, SignedRow{u"-0x10", 0, -16, 5}, SignedRow{u"1f", 16, 31, 2},
        SignedRow{u"0x", 16, 0, 1}, SignedRow{u"0xg", 0, 0, 1}, SignedRow{u"0x1", 10, 0, 1},
        SignedRow{u"017", 0, 15, 3}, SignedRow{u"08", 0, 0, 1}, SignedRow{u"17", 0, 17, 2},
        SignedRow{u"zz", 36, 1295, 2}, SignedRow{u"Zz", 36, 1295, 2}, SignedRow{u"1012", 2, 5, 3},
        SignedRow{u"2", 2, 0, 0}, SignedRow{u"12", 1, 0, 0}, SignedRow{u"12", 37, 0, 0},
        SignedRow{u"12", -1, 0, 0}, SignedRow{u"١٢", 10, 0, 0}, SignedRow{u"\u00A01", 10, 0, 0},
        SignedRow{u"1\u0661", 10, 1, 1}, SignedRow{u"\u212A", 36, 0, 0}));

class UnsignedNumberTest : public testing::TestWithParam<UnsignedRow> {};

TEST_P(UnsignedNumberTest, ReadsAsFarAsTheNumberGoes) {
    const UnsignedRow& row = GetParam();
    const char16_t* end = nullptr;
    EXPECT_EQ(QVStrToULW(row.text, &end, row.radix), row.value);
    EXPECT_EQ(end - row.text, row.taken);
    EXPECT_EQ(QVStrToULW(row.text, nullptr, row.radix), row.value);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UnsignedNumberTest,
    testing::Values(UnsignedRow{u"0", 10, 0, 1}, UnsignedRow{u"4294967295", 10, 0xFFFFFFFFu, 10},
                    UnsignedRow{u"4294967296", 10, 0xFFFFFFFFu, 10},
                    UnsignedRow{u"-1", 10, 0xFFFFFFFFu, 2}, UnsignedRow{u"-4294967295", 10, 1, 11},
                    UnsignedRow{u"-4294967296", 10, 0xFFFFFFFFu, 11},
                    UnsignedRow{u"ff", 16, 255, 2}, UnsignedRow{u"FFFFFFFF", 16, 0xFFFFFFFFu, 8},
                    UnsignedRow{u"0xffffffffff", 0, 0xFFFFFFFFu, 12},
                    UnsignedRow{u"037777777777", 0, 0xFFFFFFFFu, 12}, UnsignedRow{u"g", 16, 0, 0},
                    UnsignedRow{u"", 16, 0, 0}, UnsignedRow{u"5", 1, 0, 0},
                    UnsignedRow{u" +5", 10, 5, 3}));

TEST(IntegerTest, ReadsADecimalNumber) {
    EXPECT_EQ(QVStrToIW(u" -12x"), -12);
    EXPECT_EQ(QVStrToIW(u"0x10"), 0);
    EXPECT_EQ(QVStrToIW(u"010"), 10);
    EXPECT_EQ(QVStrToIW(u"x"), 0);
    EXPECT_EQ(QVStrToIW(u"2147483648"), most);
    EXPECT_EQ(QVStrToIW(u"-2147483649"), least);
}

/// The numbers are written with a decimal point here, whatever the user's locale says.
class RealTest : public testing::Test {
    const support::LocaleScope locale_{LC_NUMERIC, "C"};
};

class RealNumberTest : public RealTest, public testing::WithParamInterface<RealRow> {};

TEST_P(RealNumberTest, ReadsAsFarAsTheNumberGoes) {
    const RealRow& row = GetParam();
    const char16_t* end = nullptr;
    const double value = QVStrToDW(row.text, &end);
    EXPECT_EQ(value, row.value);
    EXPECT_EQ(std::signbit(value), std::signbit(row.value));
    EXPECT_EQ(end - row.text, row.taken);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RealNumberTest,
    testing::Values(
        RealRow{u"0", 0.0, 1}, RealRow{u"-0", -0.0, 2}, RealRow{u"1.5", 1.5, 3},
        RealRow{u" \t\r\n\v\f+1.5e2x", 150.0, 12}, RealRow{u".5", 0.5, 2}, RealRow{u"5.", 5.0, 2},
        RealRow{u".", 0.0, 0}, RealRow{u"", 0.0, 0}, RealRow{u"+", 0.0, 0}, RealRow{u"-.", 0.0, 0},
        RealRow{u"e5", 0.0, 0}, RealRow{u"1e", 1.0, 1}, RealRow{u"1e+", 1.0, 1},
        RealRow{u"1e 5", 1.0, 1}, RealRow{u"1E-2", 0.01, 4}, RealRow{u"1e+3", 1000.0, 4},
        RealRow{u"1,5", 1.0, 1}, RealRow{u"1.2.3", 1.2, 3}, RealRow{u"0x1.8p1", 3.0, 7},
        RealRow{u"0X.8", 0.5, 4}, RealRow{u"0x10", 16.0, 4}, RealRow{u"-0xAp-1", -5.0, 7},
        RealRow{u"0x", 0.0, 1}, RealRow{u"0x.", 0.0, 1}, RealRow{u"0xp1", 0.0, 1},
        RealRow{u"0x1p", 1.0, 3}, RealRow{u"inf", infinity, 3}, RealRow{u"-INF", -infinity, 4},
        RealRow{u"InFiNiTy", infinity, 8}, RealRow{u"infinit", infinity, 3},
        RealRow{u"1e400", infinity, 5}, RealRow{u"-1e400", -infinity, 6},
        RealRow{u"1e-400", 0.0, 6}, RealRow{u"-1e-400", -0.0, 7},
        RealRow{u"1e99999999999999999999", infinity, 22},
        RealRow{u"1e-99999999999999999999", 0.0, 23}, RealRow{u"0e99999999999999999999", 0.0, 22},
        RealRow{u"0x1p99999999999", infinity, 15}, RealRow{u"0x1p-99999999999", 0.0, 16},
        RealRow{u"0x1p1024", infinity, 8}, RealRow{u"0.1", 0.1, 3},
        RealRow{u"9007199254740993", 9007199254740992.0, 16},
        RealRow{u"1.7976931348623157e308", 1.7976931348623157e308, 22},
        RealRow{u"4.9406564584124654e-324", 4.9406564584124654e-324, 23},
        RealRow{u"2.2250738585072011e-308", 2.2250738585072011e-308, 23},
        RealRow{u"2.2250738585072012e-308", 2.2250738585072012e-308, 23},
        RealRow{u"0x1.fffffffffffff8p1023", infinity, 23},
        RealRow{u"0x1.fffffffffffff7p1023", 1.7976931348623157e308, 23}, RealRow{u"１", 0.0, 0}));

TEST_F(RealTest, ReadsNoNumber) {
    const char16_t* text = u" -NaN!";
    const char16_t* end = nullptr;
    const double value = QVStrToDW(text, &end);
    EXPECT_TRUE(std::isnan(value));
    EXPECT_TRUE(std::signbit(value));
    EXPECT_EQ(end - text, 5);
}

TEST_F(RealTest, RoundsToTheNearest) {
    // Halfway between two doubles to the even one; a digit far behind decides.
    EXPECT_EQ(real(u"1.00000000000000011102230246251565404236316680908203125"), 1.0);
    EXPECT_EQ(real(u"1.00000000000000011102230246251565404236316680908203124"), 1.0);
    EXPECT_EQ(real(u"1.00000000000000011102230246251565404236316680908203126"),
              1.0000000000000002220446049250313);
    const std::string halfway = "9007199254740993";
    const std::string zeros(2000, '0');
    const std::string fraction = std::string(".") + zeros;
    EXPECT_EQ(real(wide(halfway + fraction).c_str()), 9007199254740992.0);
    EXPECT_EQ(real(wide(halfway + fraction + "1").c_str()), 9007199254740994.0);
}

TEST_F(RealTest, ReadsLongTexts) {
    const std::string zeros(1000, '0');
    EXPECT_EQ(real(wide(zeros + "7").c_str()), 7.0);
    EXPECT_EQ(real(wide("0." + zeros + "1e1001").c_str()), 1.0);
    EXPECT_EQ(real(wide("0x1" + zeros + "p-4000").c_str()), 1.0);
    EXPECT_EQ(real(wide("1." + zeros + "e0").c_str()), 1.0);
    EXPECT_EQ(real(wide(std::string(400, '9')).c_str()), infinity);
    EXPECT_EQ(real(wide("0." + zeros + "1").c_str()), 0.0);
}

TEST_F(RealTest, ReadsBackEveryPrintedNumber) {
    std::uint64_t state = 88172645463325252u;
    for (int round = 0; round < 20000; ++round) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        double value = 0;
        static_assert(sizeof value == sizeof state);
        std::memcpy(&value, &state, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        char text[64];
        std::snprintf(text, sizeof text, "%.17g", value);
        ASSERT_EQ(real(wide(text).c_str()), value) << text;
    }
}

TEST(NumberWriteTest, WritesInEveryRadix) {
    EXPECT_EQ(writeWide(0, 10), u"0");
    EXPECT_EQ(writeWide(255, 16), u"ff");
    EXPECT_EQ(writeWide(35, 36), u"z");
    EXPECT_EQ(writeWide(5, 2), u"101");
    EXPECT_EQ(writeWide(most, 10), u"2147483647");
    EXPECT_EQ(writeNarrow(255, 16), "ff");
    EXPECT_EQ(writeNarrow(-12, 10), "-12");
}

TEST(NumberWriteTest, WritesASignInRadixTenOnly) {
    EXPECT_EQ(writeWide(-1, 10), u"-1");
    EXPECT_EQ(writeWide(least, 10), u"-2147483648");
    EXPECT_EQ(writeWide(-1, 16), u"ffffffff");
    EXPECT_EQ(writeWide(-1, 2), std::u16string(32, u'1'));
    EXPECT_EQ(writeWide(least, 2), u"10000000000000000000000000000000");
    EXPECT_EQ(writeNarrow(-1, 36), "1z141z3");
}

TEST(NumberWriteTest, WritesNothingInARadixOutOfRange) {
    for (const std::int32_t radix : {-10, 0, 1, 37}) {
        EXPECT_EQ(writeWide(12, radix), u"");
        EXPECT_EQ(writeNarrow(12, radix), "");
    }
}

TEST(NumberWriteTest, IsReadBack) {
    for (std::int32_t radix = 2; radix <= 36; ++radix) {
        for (const std::int32_t value : {0, 1, 35, 36, 1000000, most, least, -1}) {
            const std::u16string text = writeWide(value, radix);
            const std::uint32_t bits = QVStrToULW(text.c_str(), nullptr, radix);
            EXPECT_EQ(static_cast<std::int32_t>(bits), value) << radix;
        }
    }
}
