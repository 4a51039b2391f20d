// The library chooses one set of kernels and hides the others, so they are compiled here once more.
#include "qv/text/charset/detail/Utf8Blocks.cpp"

#include "tests/reference/Converters.h"
#include "tests/support/Conversions.h"
#include "tests/support/GuardedBuffer.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <span>

using namespace qv::text::charset::detail;
using reference::Form;

namespace {

std::string repeated(const std::string& part, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += part;
    }
    return text;
}

const std::string plainTexts[] = {
    repeated("nothing but ASCII ", 1000),
    repeated("un garçon naïf à l’école — ", 1000),
    repeated("съешь ещё этих булок, ", 1000),
    repeated("简体中文文本", 1000),
    repeated("a é ж 中 \xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF ", 1000),
};

const std::string odd[] = {"\x80",         "\xC0\x80",     "\xED\xA0\x80", "\xF0\x9F\x98\x80",
                           "\xFF",         "\xE2\x82x",    "\xC3x",        "\xF4\x90\x80\x80",
                           "\xE4\xB8\xC3", "\xE4\xC3\xA9", "\xF0"};

/// What the room is filled with: kernels leave it behind what they write.
constexpr char16_t untouched = u'Z';

class Utf8BlocksTest : public testing::TestWithParam<Utf8Blocks> {
protected:
    void SetUp() override {
        if (!GetParam().isSupported()) {
            GTEST_SKIP() << "this processor cannot run these kernels";
        }
    }

    /// Runs the decoding kernel with both ranges flush against guard pages.
    /// @return bytes consumed; what was written is compared with the reference.
    std::size_t decode(const std::string& bytes, std::size_t room) {
        auto* const in = input_.atEnd<signed char>(bytes.size());
        auto* const out = output_.atEnd<char16_t>(room);
        std::memcpy(in, bytes.data(), bytes.size());
        std::fill_n(out, room, untouched);
        std::int32_t from = 0;
        std::int32_t to = 0;
        Decoding decoding(in, &from, static_cast<std::int32_t>(bytes.size()), out, &to,
                          static_cast<std::int32_t>(room));
        GetParam().decode(decoding);
        decoding.commit();
        const auto consumed = static_cast<std::size_t>(from);
        EXPECT_EQ(std::count(out + to, out + room, untouched), static_cast<int>(room) - to);
        EXPECT_EQ(std::u16string(out, static_cast<std::size_t>(to)),
                  reference::decode(Form::utf8, bytes.substr(0, consumed), room).written);
        return consumed;
    }

    std::size_t encode(const std::u16string& units, std::size_t room) {
        auto* const in = input_.atEnd<char16_t>(units.size());
        auto* const out = output_.atEnd<signed char>(room);
        std::copy(units.begin(), units.end(), in);
        std::fill_n(out, room, static_cast<signed char>(untouched));
        std::int32_t from = 0;
        std::int32_t to = 0;
        Encoding encoding(in, &from, static_cast<std::int32_t>(units.size()), out, &to,
                          static_cast<std::int32_t>(room));
        GetParam().encode(encoding);
        encoding.commit();
        const auto consumed = static_cast<std::size_t>(from);
        EXPECT_EQ(std::count(out + to, out + room, untouched), static_cast<int>(room) - to);
        char16_t pending = 0;
        EXPECT_EQ(std::string(reinterpret_cast<char*>(out), static_cast<std::size_t>(to)),
                  reference::encode(Form::utf8, units.substr(0, consumed), room, pending).written);
        EXPECT_EQ(pending, 0);
        return consumed;
    }

private:
    support::GuardedBuffer input_;
    support::GuardedBuffer output_;
};

TEST_P(Utf8BlocksTest, DecodingConsumesOnlyWhatItConverts) {
    for (const std::string& text : plainTexts) {
        for (std::size_t length = 0; length <= 300; ++length) {
            for (const std::size_t room : {length, length / 2, length + 64}) {
                decode(text.substr(0, length), room);
            }
        }
    }
}

TEST_P(Utf8BlocksTest, DecodingStopsInFrontOfAnythingOdd) {
    for (const std::string& text : plainTexts) {
        for (const std::string& bad : odd) {
            for (std::size_t place = 0; place < 140; ++place) {
                if ((text[place] & 0xC0) == 0x80) {
                    continue; // no cut inside a character, which the odd bytes might complete
                }
                const std::string bytes = text.substr(0, place) + bad + text;
                EXPECT_LE(decode(bytes, bytes.size()), place) << support::hex(bad);
            }
        }
    }
}

TEST_P(Utf8BlocksTest, EncodingConsumesOnlyWhatItConverts) {
    for (const std::string& text : plainTexts) {
        const std::u16string units = reference::decode(Form::utf8, text, 2000).written;
        for (std::size_t length = 0; length <= 150; ++length) {
            for (const std::size_t room : {length, 2 * length, 3 * length, 3 * length + 64}) {
                encode(units.substr(0, length), room);
            }
        }
    }
}

TEST_P(Utf8BlocksTest, EncodingStopsInFrontOfSurrogates) {
    for (const std::string& text : plainTexts) {
        const std::u16string units = reference::decode(Form::utf8, text, 2000).written;
        for (const char16_t surrogate : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xDFFF'}) {
            for (std::size_t place = 0; place < 70; ++place) {
                const std::u16string odd16 =
                    units.substr(0, place) + surrogate + units.substr(0, 99);
                EXPECT_LE(encode(odd16, 1000), place);
            }
        }
    }
}

TEST_P(Utf8BlocksTest, KernelsTakeWholeTextsOfTheirKind) {
    const bool takesAsciiAlone = GetParam().decode == &decodeAscii; // those for every processor
    const std::span texts(plainTexts, takesAsciiAlone ? 1 : std::size(plainTexts));
    for (const std::string& text : texts) {
        EXPECT_GT(decode(text, text.size()) + utf8BlockBytes, text.size() - 2);
        const std::u16string units = reference::decode(Form::utf8, text, 2000).written;
        EXPECT_GT(encode(units, 3 * units.size() + 64) + utf8BlockUnits, units.size());
    }
}

INSTANTIATE_TEST_SUITE_P(AllProcessors, Utf8BlocksTest,
                         testing::ValuesIn(allUtf8Blocks().begin(), allUtf8Blocks().end()),
                         [](const auto& each) { return "Kernels" + std::to_string(each.index); });

TEST(Utf8BlocksChoiceTest, TheChosenKernelsAreSupportedAndTheLastAlwaysAre) {
    EXPECT_TRUE(utf8Blocks().isSupported());
    EXPECT_TRUE(allUtf8Blocks().back().isSupported());
}

} // namespace
