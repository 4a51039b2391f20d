#include "qv/Exceptions.h"
#include "tests/support/Conversions.h"
#include "tests/support/GuardedBuffer.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

/// Input that comes in pieces, and ranges that end where memory ends.
using namespace qv;
using namespace qv::text::charset;
using reference::Form;

namespace {

constexpr std::size_t chunkSizes[] = {1, 2, 3, 5, 6, 4096};

/// A text of all kinds of characters that every Unicode encoding carries, long enough for the bulk
/// paths and for several of the largest chunks.
std::u16string mixedText() {
    const std::u16string part =
        u"plain text & more of it, enough for a vector; Élève garçon, naïve coïncidence. "
        u"Съешь ещё этих мягких французских булок. 简体中文文本，日本語テキスト。"
        u"\U0001F600\U00010000\U0002FFFF \uFFFC\uFFFF end\r\n";
    std::u16string text;
    while (text.size() < 9000) {
        text += part;
    }
    return text;
}

/// Decodes chunk by chunk, with the bytes that a call left in front of the next chunk.
std::u16string decodeInChunks(ByteToCharConverter& decoder, const std::string& bytes,
                              std::size_t chunkSize, std::string& left) {
    std::u16string text;
    left.clear();
    for (std::size_t start = 0; start < bytes.size(); start += chunkSize) {
        left += bytes.substr(start, chunkSize);
        const reference::Decoded outcome = support::decode(decoder, left, 4 * left.size() + 8);
        EXPECT_EQ(outcome.failure, reference::Failure::none) << outcome.message;
        text += outcome.written;
        left.erase(0, static_cast<std::size_t>(outcome.consumed));
    }
    return text;
}

std::string encodeInChunks(CharToByteConverter& encoder, const std::u16string& text,
                           std::size_t chunkSize, std::u16string& left) {
    std::string bytes;
    left.clear();
    for (std::size_t start = 0; start < text.size(); start += chunkSize) {
        left += text.substr(start, chunkSize);
        const reference::Encoded outcome = support::encode(encoder, left, 8 * left.size() + 8);
        EXPECT_EQ(outcome.failure, reference::Failure::none) << outcome.message;
        bytes += outcome.written;
        left.erase(0, static_cast<std::size_t>(outcome.consumed));
    }
    return bytes;
}

class ChunkTest : public testing::TestWithParam<Form> {};

TEST_P(ChunkTest, EncodingInChunksGivesTheSameAsInOnePiece) {
    const std::u16string text = mixedText();
    const support::Encoder whole = support::newEncoder(GetParam());
    const std::string expected = support::encodeAll(*whole, text);
    for (const std::size_t chunkSize : chunkSizes) {
        const support::Encoder encoder = support::newEncoder(GetParam());
        std::u16string left;
        EXPECT_EQ(encodeInChunks(*encoder, text, chunkSize, left), expected) << chunkSize;
        EXPECT_EQ(left, u"");
    }
}

/// Bytes of the encoding with disturbances that its decoder takes without an exception.
std::string disturbedBytes(Form form) {
    const support::Encoder encoder = support::newEncoder(form);
    std::string bytes = support::encodeAll(*encoder, mixedText());
    switch (form) {
    case Form::utf8:
        bytes += "\xFF\xC0\x80 \xE2\x28\xA1 \xF0\xB0\x80\x80 \xF4\x90\x80\x80 tail";
        break;
    case Form::amp7:
        bytes += "&amp; &_1234567; \x80 &AMX &_FFFD; &; tail";
        break;
    case Form::utf32le:
        bytes += std::string("\0\0\x11\0a\0\0\0", 8);
        break;
    case Form::utf32be:
        bytes += std::string("\0\x11\0\0\0\0\0a", 8);
        break;
    default:
        bytes += "\x81\x8D\xFF\x80";
        break;
    }
    return bytes;
}

TEST_P(ChunkTest, DecodingInChunksGivesTheSameAsInOnePiece) {
    const bool readsPastFragments = GetParam() == Form::utf32le || GetParam() == Form::utf32be;
    const std::string bytes = disturbedBytes(GetParam());
    const support::Decoder whole = support::newDecoder(GetParam());
    const std::u16string expected = support::decodeAll(*whole, bytes);
    for (const std::size_t chunkSize : chunkSizes) {
        // A decoder of UTF-32 must be given whole words.
        const std::size_t size = readsPastFragments ? 4 * chunkSize : chunkSize;
        const support::Decoder decoder = support::newDecoder(GetParam());
        std::string left;
        EXPECT_EQ(decodeInChunks(*decoder, bytes, size, left), expected) << chunkSize;
        EXPECT_EQ(left, "");
    }
}

TEST_P(ChunkTest, DecodingIntoSmallRoomsGivesTheSameAsIntoOne) {
    const std::string bytes = disturbedBytes(GetParam());
    const support::Decoder whole = support::newDecoder(GetParam());
    const std::u16string expected = support::decodeAll(*whole, bytes);
    for (const std::size_t room : {2, 3, 5, 70, 512}) {
        const support::Decoder decoder = support::newDecoder(GetParam());
        std::u16string text;
        std::size_t position = 0;
        while (position < bytes.size()) {
            const auto outcome = support::decode(*decoder, bytes.substr(position, 8000), room);
            ASSERT_GT(outcome.consumed, 0);
            text += outcome.written;
            position += static_cast<std::size_t>(outcome.consumed);
        }
        EXPECT_EQ(text, expected) << room;
    }
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, ChunkTest, testing::ValuesIn(reference::allForms));

/// Rooms so small that pairs meet a full output: only CTBUTF32 and CTBAMP7 then keep them.
class SmallRoomTest : public testing::TestWithParam<Form> {};

TEST_P(SmallRoomTest, EncodingIntoSmallRoomsKeepsPairs) {
    const std::u16string text = mixedText();
    const support::Encoder whole = support::newEncoder(GetParam());
    const std::string expected = support::encodeAll(*whole, text);
    for (const std::size_t room : {8, 9, 10, 11, 100}) {
        const support::Encoder encoder = support::newEncoder(GetParam());
        std::string bytes;
        std::size_t position = 0;
        while (position < text.size()) {
            const auto outcome = support::encode(*encoder, text.substr(position, 3000), room);
            ASSERT_GT(outcome.consumed, 0);
            bytes += outcome.written;
            position += static_cast<std::size_t>(outcome.consumed);
        }
        EXPECT_EQ(bytes, expected) << room;
    }
}

INSTANTIATE_TEST_SUITE_P(EncodersThatTestTheRoomFirst, SmallRoomTest,
                         testing::Values(Form::utf16le, Form::utf16be, Form::utf32le, Form::utf32be,
                                         Form::amp7));

TEST(SmallRoomUtf8Test, PairAtTheEndOfASmallRoomBecomesItsTrailingHalfAlone) {
    const support::Encoder encoder = support::newEncoder(Form::utf8);
    const std::u16string text = u"ab\U0001F600";
    const auto first = support::encode(*encoder, text, 5);
    EXPECT_EQ(first, (reference::Encoded{3, "ab"}));
    const auto second = support::encode(*encoder, text.substr(3), 5);
    EXPECT_EQ(second, (reference::Encoded{1, "\xED\xB8\x80"}));
}

// --- Ranges flush against memory that may not be touched ---

/// Texts of which every prefix is converted.
std::u16string guardText(int kind, std::size_t length) {
    const std::u16string kinds[] = {
        u"plain text of nothing but ASCII, ",
        u"Съешь ещё этих мягких французских булок",
        u"简体中文文本日本語テキスト",
        u"a mixture: é, ж, 中, \u0080 \uFFFF & ",
    };
    std::u16string text;
    while (text.size() < length) {
        text += kinds[kind];
    }
    return text.substr(0, length);
}

constexpr std::size_t mostUnits = 128;

class GuardPageTest : public testing::TestWithParam<Form> {
protected:
    /// Decodes bytes at `in` into `room` units at `out` and compares with the reference.
    void expectDecodes(const std::string& bytes, signed char* in, char16_t* out, std::size_t room) {
        std::memcpy(in, bytes.data(), bytes.size());
        std::int32_t from = 0;
        std::int32_t to = 0;
        decoder_->convert(in, &from, static_cast<std::int32_t>(bytes.size()), out, &to,
                          static_cast<std::int32_t>(room));
        const reference::Decoded expected = reference::decode(GetParam(), bytes, room);
        ASSERT_EQ(from, expected.consumed);
        ASSERT_EQ(std::u16string(out, static_cast<std::size_t>(to)), expected.written);
    }

    void expectEncodes(const std::u16string& units, char16_t* in, signed char* out,
                       std::size_t room) {
        std::copy(units.begin(), units.end(), in);
        std::int32_t from = 0;
        std::int32_t to = 0;
        encoder_->reset();
        encoder_->convert(in, &from, static_cast<std::int32_t>(units.size()), out, &to,
                          static_cast<std::int32_t>(room));
        char16_t pending = 0;
        const reference::Encoded expected = reference::encode(GetParam(), units, room, pending);
        ASSERT_EQ(from, expected.consumed);
        ASSERT_EQ(std::string(reinterpret_cast<char*>(out), static_cast<std::size_t>(to)),
                  expected.written);
    }

    support::Decoder decoder_ = support::newDecoder(GetParam());
    support::Encoder encoder_ = support::newEncoder(GetParam());
    support::GuardedBuffer input_;
    support::GuardedBuffer output_;
};

TEST_P(GuardPageTest, DecodingTouchesNothingOutsideItsRanges) {
    for (int kind = 0; kind < 4; ++kind) {
        for (std::size_t length = 0; length <= mostUnits; ++length) {
            const support::Encoder fresh = support::newEncoder(GetParam());
            const std::string bytes = support::encodeAll(*fresh, guardText(kind, length));
            const std::size_t needed = reference::decode(GetParam(), bytes, 1000).written.size();
            for (const std::size_t room : {needed, needed + 1, needed + 64, needed / 2}) {
                expectDecodes(bytes, input_.atEnd<signed char>(bytes.size()),
                              output_.atEnd<char16_t>(room), room);
                expectDecodes(bytes, input_.atStart<signed char>(), output_.atStart<char16_t>(),
                              room);
            }
        }
    }
}

/// Input that may end anywhere: not that of UTF-32, which must be whole words.
class CutGuardPageTest : public GuardPageTest {};

TEST_P(CutGuardPageTest, DecodingTouchesNothingOutsideItsRanges) {
    const std::string bytes = support::encodeAll(*encoder_, guardText(3, mostUnits));
    for (std::size_t length = 0; length <= mostUnits; ++length) {
        const std::string cut = bytes.substr(0, length);
        expectDecodes(cut, input_.atEnd<signed char>(length), output_.atEnd<char16_t>(length),
                      length);
    }
}

TEST_P(GuardPageTest, EncodingTouchesNothingOutsideItsRanges) {
    for (int kind = 0; kind < 4; ++kind) {
        for (std::size_t length = 0; length <= mostUnits; ++length) {
            const std::u16string units = guardText(kind, length);
            char16_t pending = 0;
            const std::size_t needed =
                reference::encode(GetParam(), units, 4000, pending).written.size();
            for (const std::size_t room : {needed, needed + 1, needed + 64, needed / 2}) {
                expectEncodes(units, input_.atEnd<char16_t>(length),
                              output_.atEnd<signed char>(room), room);
                expectEncodes(units, input_.atStart<char16_t>(), output_.atStart<signed char>(),
                              room);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, GuardPageTest, testing::ValuesIn(reference::allForms));
INSTANTIATE_TEST_SUITE_P(AllButUtf32, CutGuardPageTest,
                         testing::Values(Form::utf8, Form::utf16le, Form::utf16be, Form::amp7,
                                         Form::ascii, Form::latin1, Form::cp437, Form::cp1252));

} // namespace
