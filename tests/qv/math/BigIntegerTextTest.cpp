// Big integers from and to text.

#include "qv/Exceptions.h"
#include "qv/math/BigInteger.h"
#include "tests/reference/BigNumber.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <random>

using namespace qv;
using math::BigInteger;

namespace {

String reread(const char16_t* text, int radix = 10) {
    const BigInteger number(text, radix);
    return number.isZero() && number.isNegative() ? String(u"-0") : number.toString(10);
}

std::string refused(const char16_t* text) {
    return support::thrownText<Exception>([&] { BigInteger(text, 10); });
}

TEST(BigIntegerTextTest, DigitsAreRead) {
    EXPECT_EQ(reread(u"0"), u"0");
    EXPECT_EQ(reread(u"7"), u"7");
    EXPECT_EQ(reread(u"12345678901234567890"), u"12345678901234567890");
    EXPECT_EQ(reread(u"-1234"), u"-1234");
    EXPECT_EQ(BigInteger(String(u"42")).toString(), u"42");
}

TEST(BigIntegerTextTest, DigitsOfOtherRadixesAreReadInEitherCase) {
    EXPECT_EQ(reread(u"ff", 16), u"255");
    EXPECT_EQ(reread(u"DeadBeefDeadBeefDeadBeef", 16), u"68915718021581205938132336367");
    EXPECT_EQ(reread(u"1101", 2), u"13");
    EXPECT_EQ(reread(u"zz", 36), u"1295");
    EXPECT_EQ(reread(u"0x1", 36), u"1189");
}

TEST(BigIntegerTextTest, TextWithoutDigitsIsRefused) {
    EXPECT_EQ(refused(u""), "Number Format Exception");
    EXPECT_EQ(refused(u"1-2"), "Number Format Exception");
    EXPECT_EQ(refused(u" -1"), "Number Format Exception");
}

TEST(BigIntegerTextTest, FailuresAreOrdinaryExceptions) {
    try {
        BigInteger(u"1-2", 10);
        ADD_FAILURE() << "not refused";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.getResult(), QV_E_FAIL);
    }
}

TEST(BigIntegerTextTest, KeptMinusAloneIsANegativeZero) {
    EXPECT_EQ(reread(u"-"), u"-0");
    EXPECT_EQ(reread(u"-0"), u"-0");
    EXPECT_EQ(reread(u"-000"), u"-0");
}

TEST(BigIntegerTextTest, LeadingZerosAreSkipped) {
    EXPECT_EQ(reread(u"000"), u"0");
    EXPECT_EQ(reread(u"0012"), u"12");
    EXPECT_EQ(reread(u"0012345"), u"12345");
    EXPECT_EQ(reread(u"-07"), u"-7");
    EXPECT_EQ(reread(u"0001"), u"1");
}

TEST(BigIntegerTextTest, KeptManyLeadingZerosCostTheLastGroups) {
    EXPECT_EQ(reread(u"000123456"), u"123");
    EXPECT_EQ(reread(u"000123"), u"0");
    EXPECT_EQ(reread(u"-00123"), u"-0");
    EXPECT_EQ(reread(u"000000123456789"), u"123");
    EXPECT_EQ(reread(u"00012345678"), u"12345");
    EXPECT_EQ(reread(u"0001234"), u"1");
}

TEST(BigIntegerTextTest, KeptWhatIsNoDigitCountsAsItsGroupHasIt) {
    EXPECT_EQ(reread(u"12x"), u"12");
    EXPECT_EQ(reread(u"x12"), u"0");
    EXPECT_EQ(reread(u"1x2345"), u"1345");
    EXPECT_EQ(reread(u"1,500000"), u"1500000");
    EXPECT_EQ(reread(u"+5"), u"5");
    EXPECT_EQ(reread(u" 5"), u"5");
    EXPECT_EQ(reread(u"--5"), u"-5");
    EXPECT_EQ(reread(u"-1-2"), u"-1");
    EXPECT_EQ(reread(u"-12-3x"), u"-11997");
    EXPECT_EQ(reread(u"--5123"), u"-4877");
    EXPECT_EQ(reread(u"\u0661\uFF12"), u"0");
    EXPECT_EQ(reread(u"10x1", 16), u"4097");
    EXPECT_EQ(reread(u"0x1", 16), u"0");
    EXPECT_EQ(reread(u"9", 8), u"0");
}

TEST(BigIntegerTextTest, AZeroUnitEndsItsGroup) {
    EXPECT_EQ(BigInteger(String(u"1\0"
                                u"2345",
                                6),
                         10)
                  .toString(),
              u"1345");
}

TEST(BigIntegerTextTest, KeptRadixZeroLeavesTheLastGroup) {
    EXPECT_EQ(reread(u"1230x1", 0), u"1");
    EXPECT_EQ(reread(u"123010", 0), u"8");
    EXPECT_EQ(reread(u"12", 0), u"12");
    EXPECT_EQ(reread(u"-0xf", 0), u"-0");
    EXPECT_EQ(reread(u"-12345", 0), u"-345");
}

TEST(BigIntegerTextTest, ARadixThatIsNoneReadsNothing) {
    EXPECT_EQ(reread(u"12345", 1), u"0");
    EXPECT_EQ(reread(u"12345", 37), u"0");
    EXPECT_EQ(reread(u"-12345", -10), u"-0");
    EXPECT_EQ(reread(u"12345", std::numeric_limits<int>::max()), u"0");
    EXPECT_EQ(reread(u"12345", std::numeric_limits<int>::min()), u"0");
}

TEST(BigIntegerTextTest, TextIsWrittenInEveryRadix) {
    EXPECT_EQ(BigInteger(4096).toString(16), u"1000");
    EXPECT_EQ(BigInteger(-255).toString(16), u"-ff");
    EXPECT_EQ(BigInteger(1295).toString(36), u"zz");
    EXPECT_EQ(BigInteger(5).toString(2), u"101");
    EXPECT_EQ(BigInteger(0).toString(2), u"0");
    EXPECT_EQ(BigInteger(1000000).toString(), u"1000000");
}

TEST(BigIntegerTextTest, KeptARadixWithoutDigitsLeavesTheZerosBetweenGroups) {
    EXPECT_EQ(BigInteger(5).toString(37), u"");
    EXPECT_EQ(BigInteger(-5).toString(37), u"-");
    EXPECT_EQ(BigInteger(50653).toString(37), u"000");
    EXPECT_EQ(BigInteger(1000).toString(-10), u"000");
    EXPECT_EQ(BigInteger(0).toString(37), u"0");
    EXPECT_EQ(BigInteger(0).toString(0), u"0");
    EXPECT_EQ(BigInteger(5).toString(std::numeric_limits<int>::min()), u"");
}

TEST(BigIntegerTextTest, ARadixThatTakesNothingAwayNeverEnds) {
    EXPECT_EQ(support::thrownText<Exception>([] { static_cast<void>(BigInteger(5).toString(0)); }),
              "Divide by zero.");
    EXPECT_THROW(static_cast<void>(BigInteger(5).toString(1)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(BigInteger(5).toString(-1)), std::bad_alloc);
}

// --- Against the slow ones ---

/// What the library reads, byte by byte behind a sign; "refused" where it throws.
std::string reading(const String& text, int radix) {
    try {
        BigInteger number(text, radix);
        std::string bytes(number.isNegative() ? "-" : "+");
        bytes.append(reinterpret_cast<const char*>(number.getData()),
                     static_cast<std::size_t>(number.getSize()));
        return bytes;
    } catch (const Exception&) {
        return "refused";
    }
}

std::string slowReading(std::u16string_view text, int radix) {
    try {
        const reference::BigNumber number(text, radix);
        return std::string(number.negative ? "-" : "+")
            .append(number.bytes.begin(), number.bytes.end());
    } catch (const reference::Refusal&) {
        return "refused";
    }
}

void expectSameReading(const std::u16string& text, int radix) {
    const String units(text.data(), static_cast<int>(text.size()));
    EXPECT_EQ(reading(units, radix), slowReading(text, radix))
        << "radix " << radix << ", text " << units.getBytes(u"UTF-8");
}

TEST(BigIntegerTextTest, RandomTextsAreReadAsTheSlowReaderReadsThem) {
    std::mt19937 random(1);
    static constexpr std::u16string_view alphabets[] = {
        u"0123456789",  u"0123456789abcdefghijklmnopqrstuvwxyz",
        u"000001",      u"01-x+ 9",
        u"0123456789 ", u"0xX1f"};
    static constexpr int radixes[] = {10, 10, 16, 36, 2, 8, 0, 1, 37, -10, 3, 7};
    for (int i = 0; i < 20000; ++i) {
        const std::u16string_view alphabet = alphabets[random() % std::size(alphabets)];
        std::u16string text(random() % 3 == 0 ? u"-" : u"");
        for (std::size_t length = random() % 40; length > 0; --length) {
            text += alphabet[random() % alphabet.size()];
        }
        expectSameReading(text, radixes[random() % std::size(radixes)]);
    }
}

TEST(BigIntegerTextTest, LongTextsAreReadAsTheSlowReaderReadsThem) {
    std::mt19937 random(2);
    for (const int radix : {10, 3, 36, 16, 32, 7}) {
        for (const std::size_t length : {700u, 1500u, 2500u}) {
            std::u16string text(random() % 8, u'0');
            while (text.size() < length) {
                text += u"0123456789abcdefghijklmnopqrstuvwxyz"[random() %
                                                                static_cast<unsigned>(radix)];
            }
            expectSameReading(text, radix);
            text[length / 2] = u'?';
            expectSameReading(text, radix);
            text[0] = u'-';
            text[length / 3] = u'-';
            expectSameReading(text, radix);
        }
    }
}

TEST(BigIntegerTextTest, NumbersAreWrittenAsTheSlowWriterWritesThem) {
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        std::vector<signed char> bytes(random() % (i % 500 == 0 ? 420 : 30));
        for (signed char& byte : bytes) {
            byte = static_cast<signed char>(i % 5 == 0   ? -1
                                            : i % 5 == 1 ? 0
                                                         : static_cast<int>(random()));
        }
        const BigInteger number(bytes.data(), static_cast<int>(bytes.size()), random() % 2 == 0);
        reference::BigNumber slow;
        slow.negative = number.isNegative();
        slow.bytes.assign(number.getData(), number.getData() + number.getSize());
        static constexpr int radixes[] = {10, 2, 3, 8, 16, 32, 36, 37, -10, 50, 13};
        const int radix = radixes[random() % std::size(radixes)];
        EXPECT_EQ(support::units(number.toString(radix)), slow.toString(radix))
            << "radix " << radix;
    }
}

TEST(BigIntegerTextTest, AnyRadixGoesThereAndBack) {
    std::mt19937 random(4);
    for (int radix = 2; radix <= 36; ++radix) {
        for (const int size : {1, 8, 9, 100, 1000, 3000}) {
            std::vector<signed char> bytes(static_cast<std::size_t>(size));
            for (signed char& byte : bytes) {
                byte = static_cast<signed char>(random());
            }
            const BigInteger number(bytes.data(), size, true);
            EXPECT_EQ(BigInteger(number.toString(radix), radix).compareTo(number), 0)
                << "radix " << radix << ", " << size << " bytes";
        }
    }
}

TEST(BigIntegerTextTest, PowersOfTheRadixHaveAllTheirZeros) {
    for (int exponent = 1; exponent < 3000; exponent += exponent < 100 ? 1 : 97) {
        BigInteger power(10);
        power.pow(exponent);
        EXPECT_EQ(power.toString(), String(u"1").append(u'0', exponent));
        power.subtract(1);
        EXPECT_EQ(power.toString(), String(u'9', exponent));
    }
}

} // namespace
