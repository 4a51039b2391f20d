#include "qv/io/Reader.h"

#include "qv/String.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;
using support::SlowReader;

constexpr auto toUnits = support::unitsOf<char16_t>;

TEST(ReaderTest, ReadsSingleUnitsAsNaturalNumbers) {
    SlowReader reader({0, 0x41, 0x8000, 0xFFFF});
    EXPECT_EQ(reader.read(), 0);
    EXPECT_EQ(reader.read(), 0x41);
    EXPECT_EQ(reader.read(), 0x8000);
    EXPECT_EQ(reader.read(), 0xFFFF);
    EXPECT_EQ(reader.read(), -1);
}

TEST(ReaderTest, AnEmptyBlockIsNoUnit) {
    SlowReader reader(toUnits("a"));
    reader.emptyReads = 1;
    EXPECT_EQ(reader.read(), -1);
    EXPECT_EQ(reader.read(), 'a');
}

TEST(ReaderTest, SkipsInPiecesOf256) {
    SlowReader reader(support::sequence<char16_t>(1000));
    EXPECT_EQ(reader.skip(0), 0);
    EXPECT_EQ(reader.skip(-1), 0);
    EXPECT_EQ(reader.skip(600), 600);
    EXPECT_EQ(reader.requests, (std::vector<std::int32_t>{256, 256, 88}));
    EXPECT_EQ(reader.read(), 'A' + 600 % 50);
    EXPECT_EQ(reader.skip(1000), 399);
}

TEST(ReaderTest, SkipsOnBehindAnEmptyBlock) {
    SlowReader reader(support::sequence<char16_t>(10), 3);
    reader.emptyReads = 2;
    EXPECT_EQ(reader.skip(7), 7);
}

/// Only what a reader must have.
class BareReader : public io::Reader {
public:
    using Reader::read;
    std::int32_t read(char16_t*, std::int32_t) override { return -1; }
};

TEST(ReaderTest, HasNoMarks) {
    BareReader reader;
    EXPECT_FALSE(reader.markSupported());
    EXPECT_NO_THROW(reader.mark(10));
    EXPECT_EQ(support::thrownText<io::IoException>([&] { reader.reset(); }),
              "mark/reset not supported");
}

TEST(ReaderTest, KnowsOfNothingAvailableAndClosesWithoutEffect) {
    BareReader reader;
    EXPECT_EQ(reader.available(), 0);
    EXPECT_NO_THROW(reader.close());
}

TEST(ReaderTest, HasItsOperationsInOrder) {
    using io::Reader;
    const std::ptrdiff_t first =
        support::slotOf<std::int32_t (Reader::*)(char16_t*, std::int32_t)>(&Reader::read);
    support::expectConsecutive({
        first,
        support::slotOf<int (Reader::*)()>(&Reader::read),
        support::slotOf(&Reader::skip),
        support::slotOf(&Reader::available),
        support::slotOf(&Reader::close),
        support::slotOf(&Reader::markSupported),
        support::slotOf(&Reader::mark),
        support::slotOf(&Reader::reset),
    });
    EXPECT_EQ(first, support::slotOf(&Object::toString) + 1);
}

} // namespace
