#include "qv/io/InputStreamReader.h"

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedReader.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qv;
using support::SlowInputStream;
using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

constexpr auto toBytes = support::unitsOf<signed char>;

/// Everything that is left, in reads of `length` units.
std::u16string readAll(io::Reader& in, std::int32_t length) {
    std::u16string text;
    std::vector<char16_t> block(static_cast<std::size_t>(length));
    for (;;) {
        const std::int32_t count = in.read(block.data(), length);
        if (count == -1) {
            return text;
        }
        EXPECT_GT(count, 0);
        EXPECT_LE(count, length);
        text.append(block.data(), static_cast<std::size_t>(count));
    }
}

/// Characters of one to four bytes in UTF-8, in many orders.
const std::u16string mixedText = [] {
    const std::u16string characters[] = {u"a", u"\u00E9", u"\u20AC", u"\U0001F600"};
    std::u16string text;
    for (int i = 0; i < 300; ++i) {
        text += characters[(i * i + i / 7) % 4];
    }
    return text;
}();

std::vector<signed char> encoded(const std::u16string& text, const char16_t* encoding) {
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(encoding));
    std::vector<signed char> bytes(text.size() * 8);
    std::int32_t consumed = 0;
    std::int32_t written = 0;
    encoder->convert(text.data(), &consumed, static_cast<std::int32_t>(text.size()), bytes.data(),
                     &written, static_cast<std::int32_t>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(written));
    return bytes;
}

TEST(InputStreamReaderTest, DecodesItsBytes) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("a\xC3\xA9\xE2\x82\xAC")), u"UTF-8");
    char16_t units[10];
    EXPECT_EQ(in.read(units, 10), 3);
    EXPECT_EQ(std::u16string(units, 3), u"a\u00E9\u20AC");
    EXPECT_EQ(in.read(units, 10), -1);
    EXPECT_EQ(in.read(units, 10), -1);
}

TEST(InputStreamReaderTest, GivesNothingForLengthsBelowOneAlsoAtTheEnd) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("")), u"UTF-8");
    char16_t unit;
    EXPECT_EQ(in.read(&unit, 0), 0);
    EXPECT_EQ(in.read(&unit, -1), 0);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(&unit, 0), 0);
}

TEST(InputStreamReaderTest, HasABufferOfAtLeastSixBytes) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{-1, 6}, {1, 6}, {6, 6}, {7, 7}};
    for (const auto& [size, expected] : sizes) {
        const auto source = make<SlowInputStream>(toBytes("abc"));
        io::InputStreamReader in(source, u"UTF-8", size);
        EXPECT_EQ(in.read(), 'a');
        EXPECT_EQ(source->requests, std::vector<std::int32_t>{expected});
    }
}

TEST(InputStreamReaderTest, TheBufferHoldsTheLongestFormOfACharacter) {
    const auto source = make<SlowInputStream>(toBytes("&_FFFFE;&_1F600;x"));
    io::InputStreamReader in(source, u"AMP-7", 1);
    EXPECT_EQ(readAll(in, 100), u"\U000FFFFE\U0001F600x");
}

/// However the bytes come and however they are asked for, the text is the same.
TEST(InputStreamReaderTest, DecodesSequencesThatSpanRefills) {
    const std::u16string encodings[] = {u"UTF-8",    u"UTF-16LE", u"UTF-16BE",
                                        u"UTF-32LE", u"UTF-32BE", u"AMP-7"};
    for (const std::u16string& encoding : encodings) {
        const std::vector<signed char> bytes = encoded(mixedText, encoding.c_str());
        for (const std::int32_t size : {1, 7, 8, 8192}) {
            for (const std::int32_t piece : {1, 3, 5, 100000}) {
                for (const std::int32_t length : {1, 2, 10000}) {
                    for (const bool tellsAvailable : {false, true}) {
                        const auto source = make<SlowInputStream>(bytes, piece);
                        source->tellsAvailable = tellsAvailable;
                        io::InputStreamReader in(source, encoding.c_str(), size);
                        ASSERT_EQ(readAll(in, length), mixedText)
                            << String(encoding.c_str()).getBytes() << " size " << size << " piece "
                            << piece << " length " << length;
                    }
                }
            }
        }
    }
}

TEST(InputStreamReaderTest, GivesAPairInTwoSingleReads) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("\xF0\x9F\x98\x80z")), u"UTF-8");
    EXPECT_EQ(in.read(), 0xD83D);
    EXPECT_EQ(in.read(), 0xDE00);
    EXPECT_EQ(in.read(), 'z');
    EXPECT_EQ(in.read(), -1);
}

TEST(InputStreamReaderTest, DoesNotWaitForMoreOnceItHasUnits) {
    const auto source = make<SlowInputStream>(toBytes("abcdef"), 2);
    io::InputStreamReader in(source, u"UTF-8");
    char16_t units[10];
    EXPECT_EQ(in.read(units, 10), 2);
    EXPECT_EQ(source->requests.size(), 1U);
    source->tellsAvailable = true;
    EXPECT_EQ(in.read(units, 10), 4);
}

/// Says that a byte can be read although it has ended.
class PromisingStream : public SlowInputStream {
public:
    using SlowInputStream::SlowInputStream;
    std::int32_t available() override { return 1; }
};

TEST(InputStreamReaderTest, APairThatMeetsRoomForOneAtTheEndIsNotLost) {
    for (const char16_t* const encoding : {u"UTF-8", u"UTF-16LE", u"UTF-32BE", u"AMP-7"}) {
        for (const std::int32_t length : {1, 2, 3, 4, 5}) {
            const std::u16string text = u"a\U0001F600\U0001F601bc\U0001F602";
            const auto source = make<PromisingStream>(encoded(text, encoding));
            io::InputStreamReader in(source, encoding);
            EXPECT_EQ(readAll(in, length), text) << String(encoding).getBytes() << " " << length;
        }
    }
}

TEST(InputStreamReaderTest, WaitsForTheRestOfACharacter) {
    const auto source = make<SlowInputStream>(toBytes("\xE2\x82\xAC"), 1);
    io::InputStreamReader in(source, u"UTF-8");
    char16_t units[10];
    EXPECT_EQ(in.read(units, 10), 1);
    EXPECT_EQ(units[0], u'\u20AC');
    EXPECT_EQ(source->requests.size(), 3U);
}

TEST(InputStreamReaderTest, AnEmptyBlockDoesNotEndIt) {
    const auto source = make<SlowInputStream>(toBytes("a"));
    source->emptyReads = 3;
    io::InputStreamReader in(source, u"UTF-8");
    EXPECT_EQ(in.read(), 'a');
}

/// Goes on behind the end that it has told.
class ReopenedStream : public SlowInputStream {
public:
    using SlowInputStream::SlowInputStream;
    std::int32_t read(signed char* destination, std::int32_t length) override {
        if (requests.size() == 1) {
            requests.push_back(length);
            return -1;
        }
        return SlowInputStream::read(destination, length);
    }
};

TEST(InputStreamReaderTest, NeverAsksItsSourceBehindTheEnd) {
    const auto source = make<ReopenedStream>(toBytes("ab"), 1);
    source->tellsAvailable = true;
    io::InputStreamReader in(source, u"UTF-8");
    EXPECT_EQ(readAll(in, 10), u"a");
    EXPECT_EQ(source->requests.size(), 2U);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(source->requests.size(), 2U);
}

TEST(InputStreamReaderTest, EachByteOfACharacterCutShortIsReplaced) {
    const std::pair<const char*, std::u16string> cases[] = {
        {"a\xE2\x82", u"a\uFFFD\uFFFD"},
        {"a\xF0\x9F\x98", u"a\uFFFD\uFFFD\uFFFD"},
        {"\xC3", u"\uFFFD"},
    };
    for (const auto& [bytes, expected] : cases) {
        for (const std::int32_t length : {1, 2, 100}) {
            io::InputStreamReader in(make<SlowInputStream>(toBytes(bytes)), u"UTF-8");
            EXPECT_EQ(readAll(in, length), expected) << bytes;
        }
    }
}

TEST(InputStreamReaderTest, EachByteOfAWordCutShortIsReplaced) {
    for (const int extra : {1, 2, 3}) {
        std::vector<signed char> bytes{'a', 0, 0, 0};
        bytes.insert(bytes.end(), static_cast<std::size_t>(extra), 'x');
        io::InputStreamReader in(make<SlowInputStream>(bytes), u"UTF-32LE");
        EXPECT_EQ(readAll(in, 100), u"a" + std::u16string(static_cast<std::size_t>(extra), 0xFFFD));
    }
    io::InputStreamReader odd(make<SlowInputStream>(std::vector<signed char>{'a', 0, 'b'}),
                              u"UTF-16LE");
    EXPECT_EQ(readAll(odd, 100), u"a\uFFFD");
}

TEST(InputStreamReaderTest, AnEscapeCutShortIsReadAsTextBehindItsFirstByte) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("x&_1F6")), u"AMP-7");
    EXPECT_EQ(readAll(in, 100), u"x\uFFFD_1F6");
}

TEST(InputStreamReaderTest, LeavesMalformedBytesToTheDecoder) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("a\xFF\x80z")), u"UTF-8");
    EXPECT_EQ(readAll(in, 100), u"a\uFFFD\uFFFDz");
}

TEST(InputStreamReaderTest, WhatTheDecoderThrowsPassesThrough) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("\xED\xA0\x80")), u"UTF-8");
    EXPECT_EQ(support::thrownText<text::charset::InvalidCharacterException>([&] { in.read(); }),
              "Invalid UTF-8 sequence (decoded chars in surrogate range)");
}

TEST(InputStreamReaderTest, AFailureOfTheSourcePassesThroughAndLosesNothing) {
    const auto source = make<SlowInputStream>(toBytes("\xE2\x82\xAC"), 2);
    io::InputStreamReader in(source, u"UTF-8");
    source->failures = 1;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.read(); }), "the source failed");
    EXPECT_EQ(in.read(), 0x20AC);
}

TEST(InputStreamReaderTest, WhatAFailedReadHadDecodedComesWithTheNext) {
    for (int pieces = 0; pieces < 8; ++pieces) {
        for (const std::int32_t length : {2, 3, 100}) {
            const auto source = make<SlowInputStream>(
                toBytes("ab\xE2\x82\xAC\xF0\x9F\x98\x80yz" // bytes of every place
                        "cd\xE2\x82\xAC"),
                3);
            source->tellsAvailable = true;
            source->failures = 1;
            source->piecesBeforeFailures = pieces;
            io::InputStreamReader in(source, u"UTF-8", 6);
            std::u16string text;
            char16_t units[100];
            for (std::int32_t count = 0; count != -1;) {
                try {
                    count = in.read(units, length);
                    EXPECT_LE(count, length);
                    text.append(units, static_cast<std::size_t>(std::max(count, 0)));
                } catch (const io::IoException&) {
                }
            }
            EXPECT_EQ(text, u"ab\u20AC\U0001F600yzcd\u20AC") << pieces << ", " << length;
        }
    }
}

TEST(InputStreamReaderTest, UnitsBeforeABadSequenceComeBehindItsFailure) {
    const auto source = make<SlowInputStream>(toBytes("abcdef\xED\xA0\x80"), 6);
    source->tellsAvailable = true;
    io::InputStreamReader in(source, u"UTF-8", 6);
    char16_t units[10];
    EXPECT_THROW(in.read(units, 10), text::charset::InvalidCharacterException);
    EXPECT_EQ(in.read(units, 4), 4);
    EXPECT_EQ(std::u16string(units, 4), u"abcd");
    EXPECT_EQ(in.read(units, 10), 2);
    EXPECT_EQ(std::u16string(units, 2), u"ef");
    EXPECT_THROW(in.read(units, 10), text::charset::InvalidCharacterException);
}

TEST(InputStreamReaderTest, CountsTheCharactersThatAreSafelyAvailable) {
    const auto source = make<SlowInputStream>(support::sequence<signed char>(20), 13);
    source->tellsAvailable = true;
    io::InputStreamReader in(source, u"UTF-8", 13);
    EXPECT_EQ(in.available(), 20 / 6);
    in.read();
    EXPECT_EQ(in.available(), 19 / 6);
    source->tellsAvailable = false;
    EXPECT_EQ(in.available(), 12 / 6);
}

TEST(InputStreamReaderTest, TellsItsEncoding) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("")), u"utf8");
    EXPECT_EQ(String(in.getEncodingName()), u"UTF-8");
}

TEST(InputStreamReaderTest, DecodesWithTheDefaultEncodingWhereNoneIsNamed) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("abc")));
    EXPECT_EQ(readAll(in, 10), u"abc");
    const Reference<ByteToCharConverter> decoder = ByteToCharConverter::getDefaultConverter();
    EXPECT_EQ(String(in.getEncodingName()), String(decoder->getEncodingName()));
}

TEST(InputStreamReaderTest, RefusesAnUnknownEncoding) {
    const auto source = make<SlowInputStream>(toBytes(""));
    EXPECT_EQ(support::thrownText<text::charset::UnknownEncodingException>(
                  [&] { io::InputStreamReader in(source, u"no such encoding"); }),
              "no such encoding");
    EXPECT_EQ(source->GetRefCount(), 1U);
}

TEST(InputStreamReaderTest, HasNoMarks) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("abc")), u"UTF-8");
    EXPECT_FALSE(in.markSupported());
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.reset(); }),
              "mark/reset not supported");
}

TEST(InputStreamReaderTest, SkipsUnits) {
    io::InputStreamReader in(make<SlowInputStream>(toBytes("a\xC3\xA9\xE2\x82\xACz")), u"UTF-8");
    EXPECT_EQ(in.skip(3), 3);
    EXPECT_EQ(in.read(), 'z');
}

TEST(InputStreamReaderTest, RefusesEverythingBehindACloseButAnother) {
    const auto source = make<SlowInputStream>(toBytes("abc"));
    io::InputStreamReader in(source, u"UTF-8");
    in.read();
    in.close();
    char16_t unit;
    const std::function<void()> operations[] = {
        [&] { in.read(); },      [&] { in.read(&unit, 1); },    [&] { in.read(&unit, 0); },
        [&] { in.available(); }, [&] { in.getEncodingName(); }, [&] { in.skip(1); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(support::thrownText<io::IoException>(operation), "stream closed");
    }
    EXPECT_NO_THROW(in.close());
    EXPECT_EQ(source->closes, 2);
    EXPECT_EQ(source->GetRefCount(), 2U);
}

TEST(InputStreamReaderTest, IsClosedBeforeItsSourceAndAlsoWhereThatFails) {
    const auto source = make<support::Unclosable<SlowInputStream>>(toBytes("abc"));
    io::InputStreamReader in(source, u"UTF-8");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.close(); }), "not closed");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.read(); }), "stream closed");
    EXPECT_EQ(source->closes, 1);
}

TEST(InputStreamReaderTest, FailsOnFirstUseWithNothingToWrap) {
    io::InputStreamReader in(nullptr, u"UTF-8");
    EXPECT_THROW(in.read(), IllegalStateException);
    EXPECT_THROW(in.available(), IllegalStateException);
    EXPECT_THROW(in.close(), IllegalStateException);
}

TEST(InputStreamReaderTest, ReadsLinesThroughAChain) {
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text += "line " + std::to_string(i) + " \xF0\x9F\x98\x80\xE2\x82\xAC" +
                (i % 2 == 0 ? "\n" : "\r\n");
    }
    const std::vector<signed char> bytes = toBytes(text);
    const auto array =
        make<io::ByteArrayInputStream>(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    const auto buffered = make<io::BufferedInputStream>(array, 1000);
    io::BufferedReader in(make<io::InputStreamReader>(buffered, u"UTF-8", 333), 77);
    String line;
    for (int i = 0; i < 5000; ++i) {
        ASSERT_GT(in.readLine(line), 0);
        const String expected =
            String(u"line ") + String::valueOf(i) + String(u" \U0001F600\u20AC");
        ASSERT_EQ(line, expected);
    }
    EXPECT_EQ(in.readLine(line), -1);
}

TEST(InputStreamReaderTest, HasItsNameBehindTheReadersOwnSlots) {
    EXPECT_EQ(support::slotOf(&io::InputStreamReader::getEncodingName),
              support::slotOf(&io::Reader::reset) + 1);
}

} // namespace
