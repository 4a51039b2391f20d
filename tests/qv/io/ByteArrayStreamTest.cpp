#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"

#include "qv/Reference.h"
#include "tests/support/Printing.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace qv;

const std::vector<signed char> sample{1, -1, 0, 127, -128};

TEST(ByteArrayInputStreamTest, GivesItsBytes) {
    io::ByteArrayInputStream in(sample.data(), 5);
    std::vector<signed char> bytes(10);
    EXPECT_EQ(in.read(bytes.data(), 3), 3);
    EXPECT_EQ(in.read(bytes.data() + 3, 7), 2);
    bytes.resize(5);
    EXPECT_EQ(bytes, sample);
    EXPECT_EQ(in.read(bytes.data(), 1), -1);
}

TEST(ByteArrayInputStreamTest, CopiesTheBytesAtConstruction) {
    std::vector<signed char> bytes{1, 2};
    io::ByteArrayInputStream in(bytes.data(), 2);
    bytes[0] = 9;
    EXPECT_EQ(in.read(), 1);
}

TEST(ByteArrayInputStreamTest, ReadsSingleBytesAsNaturalNumbers) {
    io::ByteArrayInputStream in(sample.data(), 5);
    for (const int expected : {1, 255, 0, 127, 128, -1}) {
        EXPECT_EQ(in.read(), expected);
    }
}

TEST(ByteArrayInputStreamTest, ALengthOfZeroGivesZeroBeforeTheEndAndTheEndAtIt) {
    io::ByteArrayInputStream in(sample.data(), 5);
    signed char byte;
    EXPECT_EQ(in.read(&byte, 0), 0);
    EXPECT_EQ(in.read(&byte, -4), 0);
    EXPECT_EQ(in.skip(5), 5);
    EXPECT_EQ(in.read(&byte, 0), -1);
}

TEST(ByteArrayInputStreamTest, AnEmptyArrayIsAtItsEnd) {
    io::ByteArrayInputStream in(nullptr, 0);
    signed char byte;
    EXPECT_EQ(in.read(&byte, 1), -1);
    EXPECT_EQ(in.read(&byte, 0), -1);
    EXPECT_EQ(in.read(), -1);
}

TEST(ByteArrayInputStreamTest, TakesTheGreatestLength) {
    io::ByteArrayInputStream in(sample.data(), 5);
    signed char bytes[5];
    in.read();
    EXPECT_EQ(in.read(bytes, std::numeric_limits<std::int32_t>::max()), 4);
}

TEST(ByteArrayInputStreamTest, HasTheDefaultsForTheRest) {
    io::ByteArrayInputStream in(sample.data(), 5);
    EXPECT_EQ(in.available(), 0);
    EXPECT_FALSE(in.markSupported());
    EXPECT_THROW(in.reset(), io::IoException);
    in.close();
    EXPECT_EQ(in.read(), 1) << "a close changes nothing";
}

/// Shows the room.
class OpenOutput : public io::ByteArrayOutputStream {
public:
    using ByteArrayOutputStream::ByteArrayOutputStream;
    using ByteArrayOutputStream::ensureCapacity;
    using ByteArrayOutputStream::getCapacity;
    using ByteArrayOutputStream::reallocBuffer;
};

std::vector<signed char> contents(const io::ByteArrayOutputStream& out) {
    std::vector<signed char> bytes(100000);
    const std::int32_t count = out.getBytes(bytes.data(), 100000);
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

TEST(ByteArrayOutputStreamTest, CollectsWhatIsWritten) {
    io::ByteArrayOutputStream out;
    out.write("ab", 2);
    out.write(static_cast<signed char>(-1));
    const unsigned char natural[] = {0x80};
    out.write(natural, 1);
    EXPECT_EQ(contents(out), (std::vector<signed char>{'a', 'b', -1, -128}));
}

TEST(ByteArrayOutputStreamTest, GrowsByAQuarterOfWhatIsNeeded) {
    const signed char bytes[100] = {};
    OpenOutput out(4);
    EXPECT_EQ(out.getCapacity(), 4);
    out.write(bytes, 8);
    EXPECT_EQ(out.getCapacity(), 10);
    out.write(bytes, 2);
    EXPECT_EQ(out.getCapacity(), 10);
    out.write(bytes, 1);
    EXPECT_EQ(out.getCapacity(), 13);
    out.write(bytes, 100);
    EXPECT_EQ(out.getCapacity(), 138);
}

TEST(ByteArrayOutputStreamTest, HasRoomFor256BytesAtFirst) {
    EXPECT_EQ(OpenOutput().getCapacity(), 256);
}

TEST(ByteArrayOutputStreamTest, StartsWithoutRoomAsWell) {
    OpenOutput out(0);
    EXPECT_EQ(out.getCapacity(), 0);
    out.write(static_cast<signed char>(5));
    EXPECT_EQ(out.getCapacity(), 1);
    EXPECT_EQ(contents(out), (std::vector<signed char>{5}));
}

TEST(ByteArrayOutputStreamTest, MakesRoomOnlyWhereThereIsNone) {
    OpenOutput out(20);
    out.ensureCapacity(20);
    EXPECT_EQ(out.getCapacity(), 20);
    out.ensureCapacity(21);
    EXPECT_EQ(out.getCapacity(), 26);
}

TEST(ByteArrayOutputStreamTest, LosesWhatDoesNotFitSmallerRoom) {
    OpenOutput out(20);
    out.write("abcdef", 6);
    out.reallocBuffer(4);
    EXPECT_EQ(out.getCapacity(), 4);
    EXPECT_EQ(contents(out), support::unitsOf<signed char>("abcd"));
    out.reallocBuffer(10);
    EXPECT_EQ(contents(out), support::unitsOf<signed char>("abcd"));
}

TEST(ByteArrayOutputStreamTest, GivesAtMostWhatIsAskedFor) {
    io::ByteArrayOutputStream out;
    out.write("abc", 3);
    signed char bytes[3] = {'x', 'x', 'x'};
    EXPECT_EQ(out.getBytes(bytes, 2), 2);
    EXPECT_EQ(bytes[1], 'b');
    EXPECT_EQ(bytes[2], 'x');
    EXPECT_EQ(out.getBytes(bytes, 0), 0);
    EXPECT_EQ(out.getBytes(bytes, -1), 0);
}

TEST(ByteArrayOutputStreamTest, ForgetsItsBytesAndKeepsItsRoom) {
    OpenOutput out(4);
    out.write("abcdefgh", 8);
    out.reset();
    EXPECT_EQ(out.getCapacity(), 10);
    EXPECT_EQ(contents(out).size(), 0U);
    out.write("z", 1);
    EXPECT_EQ(contents(out), support::unitsOf<signed char>("z"));
}

TEST(ByteArrayOutputStreamTest, WritesNothingForLengthsBelowOne) {
    io::ByteArrayOutputStream out;
    out.write("abc", 0);
    out.write("abc", -1);
    EXPECT_EQ(contents(out).size(), 0U);
}

TEST(ByteArrayOutputStreamTest, WritesItselfInOneBlock) {
    io::ByteArrayOutputStream out(1);
    out.write("abc", 3);
    out.write("def", 3);
    const auto sink = make<support::BlockOutputStream>();
    out.writeTo(sink);
    EXPECT_EQ(sink->blocks,
              (std::vector<std::vector<signed char>>{support::unitsOf<signed char>("abcdef")}));
}

TEST(ByteArrayOutputStreamTest, TakesItsOwnBytesAlsoWhereItMustGrow) {
    io::ByteArrayOutputStream out(4);
    out.write("abcd", 4);
    out.writeTo(&out);
    EXPECT_EQ(contents(out), support::unitsOf<signed char>("abcdabcd"));
    out.writeTo(&out);
    EXPECT_EQ(contents(out), support::unitsOf<signed char>("abcdabcdabcdabcd"));
}

TEST(ByteArrayOutputStreamTest, WritesNothingInOneBlockAsWell) {
    const io::ByteArrayOutputStream out;
    const auto sink = make<support::BlockOutputStream>();
    out.writeTo(sink);
    EXPECT_EQ(sink->blocks, std::vector<std::vector<signed char>>(1));
}

TEST(ByteArrayOutputStreamTest, IsTheTextOfItsBytes) {
    io::ByteArrayOutputStream out;
    const Object& object = out;
    EXPECT_EQ(object.toString(), u"");
    out.write("abc", 3);
    EXPECT_EQ(object.toString(), u"abc");
}

TEST(ByteArrayOutputStreamTest, DecodesWithTheDefaultEncodingWhereNoneIsNamed) {
    const signed char bytes[] = {'a', static_cast<signed char>(0xC3),
                                 static_cast<signed char>(0xA9), static_cast<signed char>(0xFF),
                                 'z'};
    io::ByteArrayOutputStream out;
    out.write(bytes, 5);
    const String text = out.toString();
    EXPECT_EQ(text, String(bytes, 5));
    EXPECT_GT(text.getLength(), 2) << "there is more than ASCII";
}

TEST(ByteArrayOutputStreamTest, DecodesItsBytesWithAnEncoding) {
    io::ByteArrayOutputStream out;
    out.write("\xC3\xA9\xE2\x82\xAC", 5);
    EXPECT_EQ(out.toString(u"UTF-8"), u"\u00E9\u20AC");
    EXPECT_EQ(out.toString(u"CP1252"), u"\u00C3\u00A9\u00E2\u201A\u00AC");
    EXPECT_THROW(out.toString(u"no such encoding"), text::charset::UnknownEncodingException);
}

TEST(ByteArrayOutputStreamTest, TakesMuch) {
    io::ByteArrayOutputStream out;
    std::vector<signed char> expected;
    for (int i = 0; i < 30000; ++i) {
        const auto byte = static_cast<signed char>(i % 251 - 125);
        out.write(byte);
        expected.push_back(byte);
    }
    EXPECT_EQ(contents(out), expected);
}

} // namespace
