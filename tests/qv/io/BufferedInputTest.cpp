#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedReader.h"

#include "qv/Reference.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qv;

using Lengths = std::vector<std::int32_t>;

struct Bytes {
    using Unit = signed char;
    using Slow = support::SlowInputStream;
    using Buffered = io::BufferedInputStream;
};

struct Characters {
    using Unit = char16_t;
    using Slow = support::SlowReader;
    using Buffered = io::BufferedReader;
};

/// What the buffered stream of bytes and the buffered reader have in common.
template <class Kind>
class BufferedInputTest : public testing::Test {
protected:
    using Unit = typename Kind::Unit;
    using Slow = typename Kind::Slow;
    using Buffered = typename Kind::Buffered;
    using Text = std::vector<Unit>;

    static Text text(std::string_view ascii) { return support::unitsOf<Unit>(ascii); }

    /// A source of `count` units that tell their place.
    Reference<Slow> source(int count) { return make<Slow>(support::sequence<Unit>(count)); }

    /// What one read of `length` units gives.
    static Text readBlock(Buffered& in, std::int32_t length) {
        Text units(static_cast<std::size_t>(length));
        const std::int32_t count = in.read(units.data(), length);
        EXPECT_GE(count, 0);
        units.resize(static_cast<std::size_t>(std::max(count, 0)));
        return units;
    }

    /// The units from `start` up to `end` of a source.
    static Text part(int start, int end) {
        const Text all = support::sequence<Unit>(end);
        return {all.begin() + start, all.end()};
    }
};

using Kinds = testing::Types<Bytes, Characters>;
TYPED_TEST_SUITE(BufferedInputTest, Kinds);

TYPED_TEST(BufferedInputTest, HasABufferOfAtLeast16Units) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{-1, 16}, {0, 16},  {15, 16},
                                                           {16, 16}, {17, 17}, {1000, 1000}};
    for (const auto& [size, expected] : sizes) {
        const auto source = this->source(3);
        typename TypeParam::Buffered in(source, size);
        in.read();
        EXPECT_EQ(source->requests, Lengths{expected});
    }
}

TYPED_TEST(BufferedInputTest, ReadsAheadForSingleUnits) {
    const auto source = this->source(20);
    typename TypeParam::Buffered in(source, 16);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(in.read(), 'A' + i);
    }
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(source->requests, (Lengths{16, 16, 16, 16}));
}

TYPED_TEST(BufferedInputTest, ReadsNothingForLengthsBelowOne) {
    const auto source = this->source(20);
    typename TypeParam::Buffered in(source, 16);
    typename TypeParam::Unit unit;
    EXPECT_EQ(in.read(&unit, 0), 0);
    EXPECT_EQ(in.read(&unit, -3), 0);
    EXPECT_TRUE(source->requests.empty());
}

TYPED_TEST(BufferedInputTest, EndsAReadWhereTheSourceReportsNothingAvailable) {
    const auto source = this->source(40);
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(this->readBlock(in, 10), this->part(0, 10));
    EXPECT_EQ(this->readBlock(in, 10), this->part(10, 16));
    EXPECT_EQ(this->readBlock(in, 10), this->part(16, 26));
}

TYPED_TEST(BufferedInputTest, ReadsOnWhileTheSourceReportsMore) {
    const auto source = this->source(40);
    source->tellsAvailable = true;
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(this->readBlock(in, 10), this->part(0, 10));
    EXPECT_EQ(this->readBlock(in, 15), this->part(10, 25));
    EXPECT_EQ(this->readBlock(in, 100), this->part(25, 40));
    typename TypeParam::Unit unit;
    EXPECT_EQ(in.read(&unit, 1), -1);
}

TYPED_TEST(BufferedInputTest, AReadOfTheBuffersSizeGoesPastIt) {
    const auto source = this->source(100);
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(this->readBlock(in, 16), this->part(0, 16));
    EXPECT_EQ(this->readBlock(in, 50), this->part(16, 66));
    EXPECT_EQ(source->requests, (Lengths{16, 50}));
}

TYPED_TEST(BufferedInputTest, TheRestOfALongReadGoesPastTheBuffer) {
    const auto source = this->source(100);
    source->tellsAvailable = true;
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(in.read(), 'A');
    EXPECT_EQ(this->readBlock(in, 60), this->part(1, 61));
    EXPECT_EQ(source->requests, (Lengths{16, 45}));
}

TYPED_TEST(BufferedInputTest, AShortDirectReadIsGivenAsItCame) {
    const auto source =
        make<typename TypeParam::Slow>(support::sequence<typename TypeParam::Unit>(100), 7);
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(this->readBlock(in, 50), this->part(0, 7));
}

TYPED_TEST(BufferedInputTest, ALongReadGoesThroughTheBufferWhileAMarkIsLive) {
    const auto source = this->source(100);
    source->tellsAvailable = true;
    typename TypeParam::Buffered in(source, 16);
    in.mark(16);
    EXPECT_EQ(this->readBlock(in, 16), this->part(0, 16));
    in.reset();
    EXPECT_EQ(this->readBlock(in, 16), this->part(0, 16));
    EXPECT_EQ(source->requests, Lengths{16});
}

TYPED_TEST(BufferedInputTest, AMarkGivenUpLetsLongReadsPastTheBuffer) {
    const auto source = this->source(100);
    typename TypeParam::Buffered in(source, 16);
    in.mark(1);
    EXPECT_EQ(this->readBlock(in, 16), this->part(0, 16));
    EXPECT_EQ(in.read(), 'A' + 16);
    EXPECT_EQ(this->readBlock(in, 15), this->part(17, 32));
    EXPECT_EQ(this->readBlock(in, 40), this->part(32, 72));
    EXPECT_EQ(source->requests, (Lengths{16, 16, 40}));
}

TYPED_TEST(BufferedInputTest, ReportsTheEndBehindTheLastUnits) {
    typename TypeParam::Buffered in(this->source(5), 16);
    EXPECT_EQ(this->readBlock(in, 16), this->part(0, 5));
    typename TypeParam::Unit units[20];
    EXPECT_EQ(in.read(units, 3), -1);
    EXPECT_EQ(in.read(units, 20), -1);
}

TYPED_TEST(BufferedInputTest, AnEmptyDirectReadComesThrough) {
    const auto source = this->source(5);
    source->emptyReads = 1;
    typename TypeParam::Buffered in(source, 16);
    typename TypeParam::Unit units[20];
    EXPECT_EQ(in.read(units, 20), 0);
}

TYPED_TEST(BufferedInputTest, AnEmptyRefillLooksLikeTheEnd) {
    const auto source = this->source(5);
    source->emptyReads = 2;
    typename TypeParam::Buffered in(source, 16);
    typename TypeParam::Unit unit;
    EXPECT_EQ(in.read(&unit, 1), -1);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(), 'A');
}

/// Promises more than comes.
template <class Slow>
class PromisingSource : public Slow {
public:
    using Slow::Slow;
    std::int32_t available() override { return 1; }
};

TYPED_TEST(BufferedInputTest, UnitsAtHandAreGivenWhereNoMoreComes) {
    for (const std::int32_t length : {8, 60}) {
        for (const int emptyReads : {0, 1}) {
            const auto source = make<PromisingSource<typename TypeParam::Slow>>(
                support::sequence<typename TypeParam::Unit>(5));
            typename TypeParam::Buffered in(source, 16);
            EXPECT_EQ(in.read(), 'A');
            source->emptyReads = emptyReads;
            EXPECT_EQ(this->readBlock(in, length), this->part(1, 5)) << length;
            EXPECT_EQ(source->requests, (Lengths{16, length == 8 ? 16 : length - 4}));
            typename TypeParam::Unit unit;
            EXPECT_EQ(in.read(&unit, 1), -1);
        }
    }
}

TYPED_TEST(BufferedInputTest, SkipsThroughTheBuffer) {
    const auto source = this->source(40);
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(in.skip(0), 0);
    EXPECT_EQ(in.skip(-1), 0);
    EXPECT_EQ(in.skip(35), 35);
    EXPECT_EQ(in.read(), 'A' + 35);
    EXPECT_EQ(in.skip(100), 4);
    EXPECT_EQ(in.skip(1), 0);
    EXPECT_EQ(source->skips, 0);
}

TYPED_TEST(BufferedInputTest, CountsBufferedUnitsAsAvailable) {
    const auto source = this->source(40);
    source->tellsAvailable = true;
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(in.available(), 40);
    in.read();
    EXPECT_EQ(in.available(), 39);
    source->tellsAvailable = false;
    EXPECT_EQ(in.available(), 15);
}

TYPED_TEST(BufferedInputTest, ReplaysFromTheMark) {
    typename TypeParam::Buffered in(this->source(40), 16);
    EXPECT_TRUE(in.markSupported());
    EXPECT_EQ(this->readBlock(in, 3), this->part(0, 3));
    in.mark(10);
    EXPECT_EQ(this->readBlock(in, 5), this->part(3, 8));
    in.reset();
    EXPECT_EQ(this->readBlock(in, 7), this->part(3, 10));
    in.reset();
    EXPECT_EQ(in.read(), 'A' + 3) << "the mark stays set";
}

TYPED_TEST(BufferedInputTest, MovesMarkedUnitsToTheFrontToMakeRoom) {
    const auto source = this->source(60);
    typename TypeParam::Buffered in(source, 16);
    in.skip(12);
    in.mark(10);
    in.skip(8);
    in.reset();
    EXPECT_EQ(this->readBlock(in, 16), this->part(12, 28));
    EXPECT_EQ(source->requests, (Lengths{16, 12}));
}

TYPED_TEST(BufferedInputTest, GrowsToTheLimitOfTheMark) {
    const auto source =
        make<typename TypeParam::Slow>(support::sequence<typename TypeParam::Unit>(2000), 30);
    typename TypeParam::Buffered in(source, 16);
    in.mark(1000);
    EXPECT_EQ(in.skip(100), 100);
    in.reset();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(in.read(), 'A' + i % 50);
    }
    EXPECT_EQ(source->requests, (Lengths{1000, 970, 940, 910}));
}

TYPED_TEST(BufferedInputTest, GrowsAtTheFirstRefillBehindTheMark) {
    const auto source = this->source(60);
    typename TypeParam::Buffered in(source, 16);
    in.skip(10);
    in.mark(50);
    in.skip(20);
    in.reset();
    EXPECT_EQ(in.skip(30), 30);
    EXPECT_EQ(in.read(), 'A' + 40);
    EXPECT_EQ(source->requests, (Lengths{16, 44}));
}

TYPED_TEST(BufferedInputTest, GivesAMarkUpBehindItsLimit) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.skip(10);
    in.mark(4);
    in.skip(7);
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.reset(); }), "mark invalid");
    EXPECT_EQ(in.read(), 'A' + 17);
}

TYPED_TEST(BufferedInputTest, KeepsAMarkBehindItsLimitUntilTheRefill) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.skip(1);
    in.mark(4);
    in.skip(15);
    in.reset();
    EXPECT_EQ(in.read(), 'A' + 1);
}

TYPED_TEST(BufferedInputTest, GivesAMarkUpAtExactlyItsLimit) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.skip(12);
    in.mark(4);
    in.skip(5);
    EXPECT_THROW(in.reset(), io::IoException);
}

TYPED_TEST(BufferedInputTest, GivesAMarkUpAtTheEndOfTheSource) {
    typename TypeParam::Buffered in(this->source(3), 16);
    in.mark(2);
    in.skip(3);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.reset(); }), "mark invalid");
}

TYPED_TEST(BufferedInputTest, AMarkWithinItsLimitOutlivesTheEndOfTheSource) {
    typename TypeParam::Buffered in(this->source(3), 16);
    in.mark(4);
    in.skip(3);
    EXPECT_EQ(in.read(), -1);
    in.reset();
    EXPECT_EQ(in.read(), 'A');
}

TYPED_TEST(BufferedInputTest, AMarkOfNoLengthLastsUntilTheRefill) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.read();
    in.mark(0);
    in.read();
    in.reset();
    EXPECT_EQ(in.read(), 'B');
    in.skip(14);
    in.read();
    EXPECT_THROW(in.reset(), io::IoException);
}

TYPED_TEST(BufferedInputTest, HasNothingToResetWithoutAMark) {
    typename TypeParam::Buffered in(this->source(3), 16);
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.reset(); }), "stream not marked");
}

TYPED_TEST(BufferedInputTest, AFailureOfTheSourcePassesThroughAndChangesNothing) {
    const auto source = this->source(40);
    typename TypeParam::Buffered in(source, 16);
    in.skip(16);
    source->failures = 2;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.read(); }), "the source failed");
    EXPECT_THROW(in.skip(1), io::IoException);
    EXPECT_EQ(in.read(), 'A' + 16);
}

TYPED_TEST(BufferedInputTest, AFailureOfTheSourceLeavesTheMark) {
    for (const int limit : {4, 8, 100}) {
        const auto source = this->source(40);
        typename TypeParam::Buffered in(source, 16);
        in.skip(10);
        in.mark(limit);
        in.skip(6);
        source->failures = 1;
        EXPECT_THROW(in.read(), io::IoException);
        in.reset();
        EXPECT_EQ(this->readBlock(in, 6), this->part(10, 16)) << "limit " << limit;
        EXPECT_EQ(in.read(), 'A' + 16);
    }
}

TYPED_TEST(BufferedInputTest, AReadThatFailsAtAnyOfItsPiecesLosesNothing) {
    for (const std::int32_t length : {12, 15, 16, 30, 45}) {
        for (int pieces = 0; pieces < 6; ++pieces) {
            const auto source =
                make<typename TypeParam::Slow>(support::sequence<typename TypeParam::Unit>(50), 5);
            source->tellsAvailable = true;
            typename TypeParam::Buffered in(source, 16);
            EXPECT_EQ(this->readBlock(in, 2), this->part(0, 2));
            source->failures = 1;
            source->piecesBeforeFailures = pieces;
            std::vector<typename TypeParam::Unit> block(100);
            int start = 2;
            try {
                start += in.read(block.data(), length);
            } catch (const io::IoException&) {
            }
            source->failures = 0;
            std::vector<typename TypeParam::Unit> rest;
            for (int unit = in.read(); unit != -1; unit = in.read()) {
                rest.push_back(static_cast<typename TypeParam::Unit>(unit));
            }
            EXPECT_EQ(rest, this->part(start, 50)) << length << " units, " << pieces << " pieces";
        }
    }
}

TYPED_TEST(BufferedInputTest, AReadThatFailsPastTheBufferLosesNothing) {
    const auto source = this->source(40);
    source->tellsAvailable = true;
    typename TypeParam::Buffered in(source, 16);
    in.skip(10);
    source->failures = 1;
    typename TypeParam::Unit units[30];
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.read(units, 30); }),
              "the source failed");
    EXPECT_EQ(this->readBlock(in, 30), this->part(10, 40));
}

TYPED_TEST(BufferedInputTest, AReadThatFailsLeavesALiveMark) {
    for (const int limit : {4, 30}) {
        const auto source = this->source(40);
        source->tellsAvailable = true;
        typename TypeParam::Buffered in(source, 16);
        in.skip(8);
        in.mark(limit);
        in.skip(3);
        source->failures = 1;
        typename TypeParam::Unit units[10];
        EXPECT_THROW(in.read(units, 10), io::IoException);
        EXPECT_EQ(in.read(), 'A' + 11) << "limit " << limit;
        in.reset();
        EXPECT_EQ(this->readBlock(in, 8), this->part(8, 16)) << "limit " << limit;
    }
}

TYPED_TEST(BufferedInputTest, WhatAFailedSkipHasPassedStaysPassed) {
    const auto source = this->source(40);
    typename TypeParam::Buffered in(source, 16);
    in.skip(10);
    source->failures = 1;
    EXPECT_THROW(in.skip(10), io::IoException);
    EXPECT_EQ(in.read(), 'A' + 16);
}

TYPED_TEST(BufferedInputTest, RefusesEverythingBehindAClose) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.read();
    in.mark(10);
    in.close();
    typename TypeParam::Unit unit;
    const std::function<void()> operations[] = {
        [&] { in.read(); },  [&] { in.read(&unit, 1); }, [&] { in.read(&unit, 0); },
        [&] { in.skip(1); }, [&] { in.skip(0); },        [&] { in.available(); },
        [&] { in.mark(1); }, [&] { in.reset(); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(support::thrownText<io::IoException>(operation), "stream closed");
    }
}

TYPED_TEST(BufferedInputTest, SupportsMarksAlsoBehindAClose) {
    typename TypeParam::Buffered in(this->source(40), 16);
    in.close();
    EXPECT_TRUE(in.markSupported());
}

TYPED_TEST(BufferedInputTest, ClosesTheSourceEachTime) {
    const auto source = this->source(40);
    typename TypeParam::Buffered in(source, 16);
    in.close();
    in.close();
    EXPECT_EQ(source->closes, 2);
}

TYPED_TEST(BufferedInputTest, IsClosedBeforeItsSourceAndAlsoWhereThatFails) {
    const auto source = make<support::Unclosable<typename TypeParam::Slow>>(this->text("abc"));
    typename TypeParam::Buffered in(source, 16);
    EXPECT_EQ(in.read(), 'a');
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.close(); }), "not closed");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.read(); }), "stream closed");
    EXPECT_EQ(source->closes, 1);
}

TYPED_TEST(BufferedInputTest, HoldsTheSourceUntilItsEnd) {
    const auto source = this->source(40);
    {
        typename TypeParam::Buffered in(source, 16);
        in.close();
        EXPECT_EQ(source->GetRefCount(), 2U);
    }
    EXPECT_EQ(source->GetRefCount(), 1U);
    EXPECT_EQ(source->closes, 1);
}

TYPED_TEST(BufferedInputTest, FailsOnFirstUseWithNothingToWrap) {
    typename TypeParam::Buffered in(nullptr);
    EXPECT_THROW(in.read(), IllegalStateException);
    EXPECT_THROW(in.available(), IllegalStateException);
    EXPECT_THROW(in.close(), IllegalStateException);
}

TEST(BufferedInputStreamTest, ReadsSingleBytesSignExtended) {
    const auto source = make<support::SlowInputStream>(std::vector<signed char>{127, -128, -2, 0});
    io::BufferedInputStream in(source, 16);
    EXPECT_EQ(in.read(), 127);
    EXPECT_EQ(in.read(), -128);
    EXPECT_EQ(in.read(), -2);
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.read(), -1);
}

TEST(BufferedInputStreamTest, AByteOf255LooksLikeTheEnd) {
    const auto source = make<support::SlowInputStream>(std::vector<signed char>{-1});
    io::BufferedInputStream in(source, 16);
    EXPECT_EQ(in.available(), 0);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(), -1);
    support::SlowInputStream plain({-1});
    EXPECT_EQ(plain.read(), 255);
}

TEST(BufferedInputStreamTest, ReadsIntoEveryKindOfBytes) {
    const auto source = make<support::SlowInputStream>(support::unitsOf<signed char>("ab"));
    io::BufferedInputStream in(source);
    char plain = 0;
    unsigned char natural = 0;
    EXPECT_EQ(in.read(&plain, 1), 1);
    EXPECT_EQ(in.read(&natural, 1), 1);
    EXPECT_EQ(plain, 'a');
    EXPECT_EQ(natural, 'b');
}

TEST(BufferedReaderTest, ReadsSingleUnitsAsNaturalNumbers) {
    const auto source = make<support::SlowReader>(std::vector<char16_t>{0, 0x7FFF, 0x8000, 0xFFFF});
    io::BufferedReader in(source, 16);
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.read(), 0x7FFF);
    EXPECT_EQ(in.read(), 0x8000);
    EXPECT_EQ(in.read(), 0xFFFF);
    EXPECT_EQ(in.read(), -1);
}

} // namespace
