#include "qv/io/InputStream.h"

#include "qv/Reference.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;
using support::SlowInputStream;

constexpr auto toBytes = support::unitsOf<signed char>;

TEST(InputStreamTest, ReadsIntoEveryKindOfBytes) {
    SlowInputStream stream(toBytes("ab"));
    char plain = 0;
    unsigned char natural = 0;
    EXPECT_EQ(stream.read(&plain, 1), 1);
    EXPECT_EQ(stream.read(&natural, 1), 1);
    EXPECT_EQ(plain, 'a');
    EXPECT_EQ(natural, 'b');
    EXPECT_EQ(stream.read(&plain, 1), -1);
    EXPECT_EQ(stream.read(&natural, 1), -1);
}

TEST(InputStreamTest, ReadsSingleBytesAsNaturalNumbers) {
    SlowInputStream stream({0, 127, -128, -1});
    EXPECT_EQ(stream.read(), 0);
    EXPECT_EQ(stream.read(), 127);
    EXPECT_EQ(stream.read(), 128);
    EXPECT_EQ(stream.read(), 255);
    EXPECT_EQ(stream.read(), -1);
    EXPECT_EQ(stream.requests, std::vector<std::int32_t>(5, 1));
}

TEST(InputStreamTest, AnEmptyBlockIsNoByte) {
    SlowInputStream stream(toBytes("a"));
    stream.emptyReads = 1;
    EXPECT_EQ(stream.read(), -1);
    EXPECT_EQ(stream.read(), 'a');
}

TEST(InputStreamTest, SkipsNothingForCountsBelowOne) {
    SlowInputStream stream(toBytes("abc"));
    EXPECT_EQ(stream.skip(0), 0);
    EXPECT_EQ(stream.skip(-5), 0);
    EXPECT_TRUE(stream.requests.empty());
}

TEST(InputStreamTest, SkipsInPiecesOf256) {
    SlowInputStream stream(support::sequence<signed char>(1000));
    EXPECT_EQ(stream.skip(600), 600);
    EXPECT_EQ(stream.requests, (std::vector<std::int32_t>{256, 256, 88}));
    EXPECT_EQ(stream.read(), 'A' + 600 % 50);
}

TEST(InputStreamTest, SkipsToTheEndAtMost) {
    SlowInputStream stream(support::sequence<signed char>(300));
    EXPECT_EQ(stream.skip(1000), 300);
    EXPECT_EQ(stream.skip(1), 0);
}

TEST(InputStreamTest, SkipsOnBehindAnEmptyBlock) {
    SlowInputStream stream(support::sequence<signed char>(10), 3);
    stream.emptyReads = 2;
    EXPECT_EQ(stream.skip(7), 7);
}

/// Only what a stream must have.
class BareStream : public io::InputStream {
public:
    using InputStream::read;
    std::int32_t read(signed char*, std::int32_t) override { return -1; }
};

TEST(InputStreamTest, HasNoMarks) {
    BareStream stream;
    EXPECT_FALSE(stream.markSupported());
    EXPECT_NO_THROW(stream.mark(10));
    EXPECT_EQ(support::thrownText<io::IoException>([&] { stream.reset(); }),
              "mark/reset not supported");
}

TEST(InputStreamTest, KnowsOfNothingAvailableAndClosesWithoutEffect) {
    BareStream stream;
    EXPECT_EQ(stream.available(), 0);
    EXPECT_NO_THROW(stream.close());
    EXPECT_EQ(stream.read(), -1);
}

TEST(InputStreamTest, HasItsOperationsInOrder) {
    using Stream = io::InputStream;
    support::expectConsecutive({
        support::slotOf<std::int32_t (Stream::*)(char*, std::int32_t)>(&Stream::read),
        support::slotOf<std::int32_t (Stream::*)(unsigned char*, std::int32_t)>(&Stream::read),
        support::slotOf<std::int32_t (Stream::*)(signed char*, std::int32_t)>(&Stream::read),
        support::slotOf<int (Stream::*)()>(&Stream::read),
        support::slotOf(&Stream::skip),
        support::slotOf(&Stream::available),
        support::slotOf(&Stream::close),
        support::slotOf(&Stream::markSupported),
        support::slotOf(&Stream::mark),
        support::slotOf(&Stream::reset),
    });
    EXPECT_EQ((support::slotOf<std::int32_t (Stream::*)(char*, std::int32_t)>(&Stream::read)),
              support::slotOf(&Object::toString) + 1);
}

} // namespace
