#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"

#include "qv/io/BufferedInputStream.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"
#include "tests/support/OneByteStreams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace qv;
using support::Bytes;
using support::CallsSink;
using support::CallsSource;
using support::fromHex;
using support::toHex;
using text::charset::InvalidCharacterException;

constexpr const char* letters = "ABCDEFGHJKLMNPQRSTUVWXYZ23456789";

std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

Bytes sample(int length) {
    Bytes bytes;
    for (int i = 0; i < length; ++i) {
        bytes.push_back(static_cast<signed char>(i * 73 + 201));
    }
    return bytes;
}

std::int32_t size(const Bytes& bytes) { return static_cast<std::int32_t>(bytes.size()); }

/// The letters of bytes by the plain rule: five bits each, from one string of bits.
std::string plainlyEncoded(const Bytes& bytes) {
    std::string bits;
    for (const signed char byte : bytes) {
        for (int bit = 7; bit >= 0; --bit) {
            bits += (byte >> bit & 1) != 0 ? '1' : '0';
        }
    }
    bits.append((5 - bits.size() % 5) % 5, '0');
    std::string text;
    for (std::size_t i = 0; i < bits.size(); i += 5) {
        text += letters[std::stoi(bits.substr(i, 5), nullptr, 2)];
    }
    return text;
}

std::string encoded(const Bytes& bytes) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(bytes.data(), size(bytes));
    out.flush();
    return textOf(sink->bytes);
}

Bytes readAll(io::InputStream& in, std::int32_t piece = 1000) {
    Bytes all;
    Bytes bytes(static_cast<std::size_t>(piece));
    for (std::int32_t count = in.read(bytes.data(), piece); count >= 0;
         count = in.read(bytes.data(), piece)) {
        all.insert(all.end(), bytes.begin(), bytes.begin() + count);
    }
    return all;
}

Bytes decoded(std::string_view text) {
    io::AlphaNumInputStream in(make<CallsSource>(bytesOf(text)));
    return readAll(in);
}

TEST(AlphaNumOutputStreamTest, FiveBytesAreEightLetters) {
    EXPECT_EQ(encoded(fromHex("0000000000")), "AAAAAAAA");
    EXPECT_EQ(encoded(fromHex("FFFFFFFFFF")), "99999999");
    EXPECT_EQ(encoded(fromHex("00443214C7")), "ABCDEFGH");
    EXPECT_EQ(encoded(fromHex("4254B635CF")), "JKLMNPQR");
    EXPECT_EQ(encoded(fromHex("84653A56D7")), "STUVWXYZ");
    EXPECT_EQ(encoded(fromHex("C675BE77DF")), "23456789");
}

TEST(AlphaNumOutputStreamTest, AFlushWritesTheRestAsOneLetter) {
    EXPECT_EQ(encoded(fromHex("FF")), "96");
    EXPECT_EQ(encoded(fromHex("FFFF")), "999S");
    EXPECT_EQ(encoded(fromHex("FFFFFF")), "99998");
    EXPECT_EQ(encoded(fromHex("FFFFFFFF")), "9999992");
    EXPECT_EQ(encoded(Bytes()), "");
}

TEST(AlphaNumOutputStreamTest, EveryLengthIsItsStringOfBits) {
    for (int length = 0; length <= 64; ++length) {
        EXPECT_EQ(encoded(sample(length)), plainlyEncoded(sample(length))) << length;
    }
}

TEST(AlphaNumOutputStreamTest, EveryByteIsItsStringOfBitsAtEveryPlace) {
    for (int place = 0; place < 5; ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            Bytes bytes = sample(7);
            bytes[static_cast<std::size_t>(place)] = static_cast<signed char>(byte);
            ASSERT_EQ(encoded(bytes), plainlyEncoded(bytes)) << place << ' ' << byte;
        }
    }
}

TEST(AlphaNumOutputStreamTest, LettersGoOutOneByOne) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(sample(5).data(), 5);
    EXPECT_EQ(sink->calls, "wwwwwwww");
    out.write(static_cast<signed char>(1));
    EXPECT_EQ(sink->calls, "wwwwwwwww");
    out.flush();
    EXPECT_EQ(sink->calls, "wwwwwwwwwwf");
}

TEST(AlphaNumOutputStreamTest, OverMemoryTheLettersAreTheSame) {
    for (const int length : {0, 1, 4, 5, 64, 639, 640, 641, 3000}) {
        const Bytes bytes = sample(length);
        const auto array = make<io::ByteArrayOutputStream>(1);
        io::AlphaNumOutputStream toArray(array);
        const auto buffer = make<io::ByteBuffer>(5000u, QV_ENDIAN_LITTLE, false);
        io::AlphaNumOutputStream toBuffer(make<io::ByteBufferOutputStream>(buffer));
        for (io::AlphaNumOutputStream* const out : {&toArray, &toBuffer}) {
            out->write(bytes.data(), length / 2);
            out->write(bytes.data() + length / 2, length - length / 2);
            out->flush();
        }
        Bytes inArray(6000);
        inArray.resize(static_cast<std::size_t>(array->getBytes(inArray.data(), 6000)));
        EXPECT_EQ(textOf(inArray), plainlyEncoded(bytes)) << length;
        EXPECT_EQ(textOf(Bytes(buffer->getConstBuffer(),
                               buffer->getConstBuffer() + buffer->getPosition())),
                  plainlyEncoded(bytes))
            << length;
    }
}

TEST(AlphaNumOutputStreamTest, PiecesOfAnySizeMakeTheSameText) {
    const Bytes bytes = sample(200);
    for (int piece = 1; piece <= 200; ++piece) {
        const auto sink = make<CallsSink>();
        io::AlphaNumOutputStream out(sink);
        for (int at = 0; at < 200; at += piece) {
            out.write(bytes.data() + at, std::min(piece, 200 - at));
        }
        out.flush();
        ASSERT_EQ(textOf(sink->bytes), plainlyEncoded(bytes)) << piece;
    }
}

TEST(AlphaNumOutputStreamTest, LengthsBelowOneWriteNothing) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(sample(1).data(), 0);
    out.write(sample(1).data(), -1);
    out.flush();
    EXPECT_EQ(sink->calls, "f");
}

TEST(AlphaNumOutputStreamTest, AFlushEndsTheGroup) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(static_cast<signed char>(-1));
    out.flush();
    out.flush();
    out.write(static_cast<signed char>(-1));
    out.flush();
    EXPECT_EQ(textOf(sink->bytes), "9696");
}

TEST(AlphaNumOutputStreamTest, KeptACloseLosesTheRest) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(static_cast<signed char>(-1));
    out.close();
    EXPECT_EQ(textOf(sink->bytes), "9");
    EXPECT_EQ(sink->closes, 1);
}

TEST(AlphaNumOutputStreamTest, AFailureOfTheSinkLeavesTheStreamBehindTheLastWholeByte) {
    for (int failing = 0; failing < 16; ++failing) {
        const Bytes bytes = sample(10);
        const auto sink = make<CallsSink>();
        sink->failsAt = failing;
        io::AlphaNumOutputStream out(sink);
        int written = 0;
        for (; written < 10; ++written) {
            const auto before = sink->bytes;
            try {
                out.write(bytes[static_cast<std::size_t>(written)]);
            } catch (const io::IoException&) {
                sink->bytes = before; // and the byte is written once more
                --written;
            }
        }
        out.flush();
        EXPECT_EQ(textOf(sink->bytes), plainlyEncoded(bytes)) << failing;
    }
}

TEST(AlphaNumOutputStreamTest, AFlushThatFailsLeavesTheRestAsItWas) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(static_cast<signed char>(-1));
    sink->failsAt = 1;
    EXPECT_THROW(out.flush(), io::IoException);
    out.flush();
    EXPECT_EQ(textOf(sink->bytes), "96");
}

TEST(AlphaNumOutputStreamTest, AFlushThatTheSinkRefusesLeavesTheRestAsItWas) {
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink);
    out.write(static_cast<signed char>(-1));
    sink->failsToFlush = true;
    EXPECT_THROW(out.flush(), io::IoException);
    out.flush();
    EXPECT_EQ(textOf(sink->bytes), "966");
    out.flush();
    EXPECT_EQ(textOf(sink->bytes), "966");
}

TEST(AlphaNumInputStreamTest, TextsOfWholeGroupsComeBack) {
    for (int length = 0; length <= 65; length += 5) {
        EXPECT_EQ(decoded(encoded(sample(length))), sample(length)) << length;
    }
}

TEST(AlphaNumInputStreamTest, KeptOtherTextsComeBackWithAByteOfPadding) {
    for (int length = 0; length <= 64; ++length) {
        if (length % 5 == 0) {
            continue;
        }
        Bytes bytes = decoded(encoded(sample(length)));
        ASSERT_EQ(size(bytes), length + 1);
        EXPECT_EQ(bytes.back(), 0) << "the rest of the last letter is zeros";
        bytes.pop_back();
        EXPECT_EQ(bytes, sample(length)) << length;
    }
}

TEST(AlphaNumInputStreamTest, KeptTwoLettersAreTwoBytes) {
    EXPECT_EQ(toHex(decoded("96")), "ff00");
    EXPECT_EQ(toHex(decoded("99")), "ffc0") << "whatever the padding says";
    EXPECT_EQ(toHex(decoded("9")), "f8");
}

TEST(AlphaNumInputStreamTest, EveryKindOfSourceGivesTheSame) {
    for (int length = 0; length <= 64; ++length) {
        const Bytes text = bytesOf(encoded(sample(length)));
        const Bytes expected = decoded(encoded(sample(length)));
        io::AlphaNumInputStream fromArray(make<io::ByteArrayInputStream>(text.data(), size(text)));
        EXPECT_EQ(readAll(fromArray), expected);
        io::AlphaNumInputStream fromBuffer(make<io::ByteBufferInputStream>(make<io::ByteBuffer>(
            text.data(), static_cast<unsigned>(text.size()), QV_ENDIAN_LITTLE)));
        EXPECT_EQ(readAll(fromBuffer), expected);
        io::AlphaNumInputStream fromBuffered(make<io::BufferedInputStream>(
            make<io::ByteArrayInputStream>(text.data(), size(text)), 16));
        EXPECT_EQ(readAll(fromBuffered), expected);
    }
}

TEST(AlphaNumInputStreamTest, PiecesOfAnySizeMakeTheSameBytes) {
    const Bytes text = bytesOf(encoded(sample(203)));
    const Bytes expected = decoded(encoded(sample(203)));
    for (int piece = 1; piece <= 200; ++piece) {
        io::AlphaNumInputStream in(make<CallsSource>(text));
        ASSERT_EQ(readAll(in, piece), expected) << piece;
    }
}

TEST(AlphaNumInputStreamTest, TakesNoMoreLettersThanItNeeds) {
    const auto source = make<CallsSource>(bytesOf("ABCDEFGH"));
    io::AlphaNumInputStream in(source);
    signed char byte = 0;
    for (const int taken : {2, 4, 5, 7, 8}) {
        EXPECT_EQ(in.read(&byte, 1), 1);
        EXPECT_EQ(source->calls, std::string(static_cast<std::size_t>(taken), 'r'));
    }
    EXPECT_EQ(in.read(&byte, 1), -1);
}

TEST(AlphaNumInputStreamTest, TheByteOfPaddingComesOnce) {
    io::AlphaNumInputStream in(make<CallsSource>(bytesOf("96")));
    EXPECT_EQ(in.read(), 0xFF);
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(), -1);
}

TEST(AlphaNumInputStreamTest, LengthsBelowOneGiveMinusOne) {
    const auto source = make<CallsSource>(bytesOf("96"));
    io::AlphaNumInputStream in(source);
    signed char byte = 0;
    EXPECT_EQ(in.read(&byte, 0), -1);
    EXPECT_EQ(in.read(&byte, -1), -1);
    EXPECT_EQ(source->calls, "");
}

TEST(AlphaNumInputStreamTest, ForeignLettersAreRefused) {
    for (const char* const text : {"a", "I", "O", "0", "1", "=", "\n", " ", "\xC4", "\xFF"}) {
        EXPECT_EQ(support::thrownText<InvalidCharacterException>([&] { decoded(text); }),
                  "Invalid AlphaNum character")
            << text;
    }
}

/// A letter that is refused at each place of a group, over each kind of source.
template <class Source>
void expectRefusalIsPassed(Source make) {
    for (std::size_t place = 0; place < 9; ++place) {
        std::string text = encoded(sample(10));
        text.insert(place, "!");
        const auto source = make(bytesOf(text));
        io::AlphaNumInputStream in(source);
        Bytes bytes(10);
        const std::int32_t whole = static_cast<std::int32_t>(place * 5 / 8);
        if (whole > 0) {
            ASSERT_EQ(in.read(bytes.data(), whole), whole);
        }
        EXPECT_THROW(in.read(bytes.data() + whole, 10 - whole), InvalidCharacterException);
        EXPECT_EQ(in.read(bytes.data() + whole, 10 - whole), 10 - whole);
        EXPECT_EQ(bytes, sample(10)) << place;
        EXPECT_EQ(source->read(), -1);
    }
}

TEST(AlphaNumInputStreamTest, ALetterThatIsRefusedCountsForNothing) {
    expectRefusalIsPassed([](const Bytes& text) { return make<CallsSource>(text); });
    expectRefusalIsPassed(
        [](const Bytes& text) { return make<io::ByteArrayInputStream>(text.data(), size(text)); });
}

TEST(AlphaNumInputStreamTest, TheSourceStandsBehindTheLetterThatWasRefused) {
    const Bytes text = bytesOf("AB!CD");
    const auto array = make<io::ByteArrayInputStream>(text.data(), 5);
    io::AlphaNumInputStream fromArray(array);
    Bytes bytes(5);
    EXPECT_THROW(fromArray.read(bytes.data(), 5), InvalidCharacterException);
    EXPECT_EQ(array->read(), 'C');
    const auto buffer = make<io::ByteBuffer>(text.data(), 5u, QV_ENDIAN_LITTLE);
    io::AlphaNumInputStream fromBuffer(make<io::ByteBufferInputStream>(buffer));
    EXPECT_THROW(fromBuffer.read(bytes.data(), 5), InvalidCharacterException);
    EXPECT_EQ(buffer->getPosition(), 3u);
}

TEST(AlphaNumInputStreamTest, AFailureOfTheSourceLosesNoLetter) {
    const auto source = make<CallsSource>(bytesOf(encoded(sample(5))));
    source->failsAt = 1;
    io::AlphaNumInputStream in(source);
    Bytes bytes(5);
    EXPECT_THROW(in.read(bytes.data(), 5), io::IoException);
    EXPECT_EQ(in.read(bytes.data(), 5), 5);
    EXPECT_EQ(bytes, sample(5));
}

TEST(AlphaNumInputStreamTest, SkipsByReading) {
    const auto source = make<CallsSource>(bytesOf(encoded(sample(10))));
    io::AlphaNumInputStream in(source);
    EXPECT_EQ(in.skip(7), 7);
    EXPECT_EQ(source->calls.find('s'), std::string::npos);
    EXPECT_EQ(in.read(), static_cast<unsigned char>(sample(10)[7]));
    EXPECT_EQ(in.skip(100), 2);
    EXPECT_EQ(in.skip(1), 0);
}

TEST(AlphaNumInputStreamTest, EightLettersAvailableAreFiveBytes) {
    const auto source = make<CallsSource>(Bytes());
    io::AlphaNumInputStream in(source);
    for (const auto& [available, expected] : std::vector<std::pair<std::int32_t, std::int32_t>>{
             {0, 0}, {1, 0}, {2, 1}, {8, 5}, {15, 9}, {2147483647, 1342177279}}) {
        source->availableBytes = available;
        EXPECT_EQ(in.available(), expected);
    }
}

TEST(AlphaNumStreamTest, AlphabetsHave32Letters) {
    const auto expectRefused = [](const char16_t* alphabet) {
        EXPECT_EQ(support::thrownResult([&] { io::AlphaNumInputStream(nullptr, alphabet); }),
                  QV_E_INVALIDARG);
        EXPECT_EQ(support::thrownResult([&] { io::AlphaNumOutputStream(nullptr, alphabet); }),
                  QV_E_INVALIDARG);
    };
    expectRefused(u"");
    expectRefused(u"ABCDEFGHJKLMNPQRSTUVWXYZ2345678");
    expectRefused(u"ABCDEFGHJKLMNPQRSTUVWXYZ23456789a");
}

TEST(AlphaNumStreamTest, AnAlphabetOfTheCallersIsUsedBothWays) {
    constexpr const char16_t* alphabet = u"0123456789abcdefghijklmnopqrstuv";
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink, alphabet);
    out.write(sample(5).data(), 5);
    EXPECT_EQ(textOf(sink->bytes).find_first_not_of("0123456789abcdefghijklmnopqrstuv"),
              std::string::npos);
    io::AlphaNumInputStream in(make<CallsSource>(sink->bytes), alphabet);
    EXPECT_EQ(readAll(in), sample(5));
}

TEST(AlphaNumStreamTest, LettersBeyondAsciiOfOneByteComeBack) {
    const char16_t* const alphabet =
        u"\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD"
        u"\u00CE\u00CFABCDEFGHJKLMNPQR";
    const auto sink = make<CallsSink>();
    io::AlphaNumOutputStream out(sink, alphabet);
    out.write(fromHex("0000000000").data(), 5);
    EXPECT_EQ(toHex(sink->bytes), "c0c0c0c0c0c0c0c0");
    io::AlphaNumInputStream in(make<CallsSource>(sink->bytes), alphabet);
    EXPECT_EQ(toHex(readAll(in)), "0000000000");
}

TEST(AlphaNumStreamTest, OfEqualLettersTheFirstCounts) {
    io::AlphaNumInputStream in(make<CallsSource>(bytesOf("ZZZZZZZZ")),
                               u"ABCDEFGHJKLMNPQRSTUVWXYZZZZZZZZZ");
    EXPECT_EQ(encoded(readAll(in)), "ZZZZZZZZ");
}

TEST(AlphaNumStreamTest, FailOnFirstUseWithNothingToWrap) {
    io::AlphaNumInputStream in(nullptr);
    EXPECT_THROW(in.read(), IllegalStateException);
    io::AlphaNumOutputStream out(nullptr);
    EXPECT_THROW(out.write("x", 1), IllegalStateException);
}

} // namespace
