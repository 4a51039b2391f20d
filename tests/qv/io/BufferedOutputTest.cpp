#include "qv/io/BufferedOutputStream.h"
#include "qv/io/BufferedWriter.h"

#include "qv/Reference.h"
#include "qv/String.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qv;

struct Bytes {
    using Unit = signed char;
    using Sink = support::BlockOutputStream;
    using Buffered = io::BufferedOutputStream;
};

struct Characters {
    using Unit = char16_t;
    using Sink = support::BlockWriter;
    using Buffered = io::BufferedWriter;
};

/// What the buffered stream of bytes and the buffered writer have in common.
template <class Kind>
class BufferedOutputTest : public testing::Test {
public:
    ~BufferedOutputTest() noexcept override = default;

protected:
    using Unit = typename Kind::Unit;
    using Text = std::vector<Unit>;
    using Blocks = std::vector<Text>;

    static Text text(int count) { return support::sequence<Unit>(count); }
    void write(int count) { out_.write(text(count).data(), count); }

    Reference<typename Kind::Sink> sink_ = make<typename Kind::Sink>();
    typename Kind::Buffered out_{sink_, 16};
};

using Kinds = testing::Types<Bytes, Characters>;
TYPED_TEST_SUITE(BufferedOutputTest, Kinds);

TYPED_TEST(BufferedOutputTest, HasABufferOfAtLeast16Units) {
    const std::pair<std::int32_t, int> sizes[] = {{-1, 16}, {0, 16}, {15, 16}, {16, 16}, {17, 17}};
    for (const auto& [size, expected] : sizes) {
        const auto sink = make<typename TypeParam::Sink>();
        typename TypeParam::Buffered out(sink, size);
        for (int i = 0; i < expected; ++i) {
            out.write(static_cast<typename TypeParam::Unit>('A' + i));
        }
        EXPECT_TRUE(sink->blocks.empty());
        out.write(typename TypeParam::Unit{'z'});
        ASSERT_EQ(sink->blocks.size(), 1U);
        EXPECT_EQ(sink->blocks[0], this->text(expected));
    }
}

TYPED_TEST(BufferedOutputTest, CollectsSmallWrites) {
    this->write(3);
    this->write(13);
    EXPECT_TRUE(this->sink_->blocks.empty());
    this->write(1);
    ASSERT_EQ(this->sink_->blocks.size(), 1U);
    EXPECT_EQ(this->sink_->blocks[0].size(), 16U);
    this->out_.flush();
    EXPECT_EQ(this->sink_->blocks[1], this->text(1));
}

TYPED_TEST(BufferedOutputTest, AWriteThatDoesNotFitFlushesFirst) {
    this->write(10);
    this->write(7);
    ASSERT_EQ(this->sink_->blocks.size(), 1U);
    EXPECT_EQ(this->sink_->blocks[0], this->text(10));
    this->out_.flush();
    EXPECT_EQ(this->sink_->blocks[1], this->text(7));
}

TYPED_TEST(BufferedOutputTest, AWriteOfTheBuffersSizeGoesPastIt) {
    this->write(16);
    EXPECT_EQ(this->sink_->blocks.size(), 1U);
    this->write(5);
    this->write(100);
    ASSERT_EQ(this->sink_->blocks.size(), 3U);
    EXPECT_EQ(this->sink_->blocks[1], this->text(5));
    EXPECT_EQ(this->sink_->blocks[2], this->text(100));
}

TYPED_TEST(BufferedOutputTest, WritesNothingForLengthsBelowOne) {
    this->write(3);
    this->out_.write(this->text(1).data(), 0);
    this->out_.write(this->text(1).data(), -7);
    this->out_.flush();
    EXPECT_EQ(this->sink_->all(), this->text(3));
}

TYPED_TEST(BufferedOutputTest, FlushesDownTheChain) {
    this->write(2);
    this->out_.flush();
    EXPECT_EQ(this->sink_->all(), this->text(2));
    EXPECT_EQ(this->sink_->flushes, 1);
    this->out_.flush();
    EXPECT_EQ(this->sink_->blocks.size(), 1U) << "nothing collected is nothing written";
    EXPECT_EQ(this->sink_->flushes, 2);
}

TYPED_TEST(BufferedOutputTest, LosesWhatIsCollectedAtClose) {
    this->write(2);
    this->out_.close();
    EXPECT_TRUE(this->sink_->blocks.empty());
    EXPECT_EQ(this->sink_->closes, 1);
    EXPECT_EQ(this->sink_->flushes, 0);
}

TYPED_TEST(BufferedOutputTest, LosesWhatIsCollectedWhenItIsDropped) {
    const auto sink = make<typename TypeParam::Sink>();
    {
        typename TypeParam::Buffered out(sink);
        out.write(this->text(2).data(), 2);
        EXPECT_EQ(sink->GetRefCount(), 2U);
    }
    EXPECT_TRUE(sink->blocks.empty());
    EXPECT_EQ(sink->closes, 0);
    EXPECT_EQ(sink->GetRefCount(), 1U);
}

TYPED_TEST(BufferedOutputTest, RefusesEverythingBehindACloseButAnother) {
    this->out_.close();
    const std::function<void()> operations[] = {
        [&] { this->write(1); },     [&] { this->write(100); },
        [&] { this->write(0); },     [&] { this->out_.write(typename TypeParam::Unit{'a'}); },
        [&] { this->out_.flush(); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(support::thrownText<io::IoException>(operation), "stream closed");
    }
    EXPECT_NO_THROW(this->out_.close());
    EXPECT_EQ(this->sink_->closes, 2);
    EXPECT_EQ(this->sink_->GetRefCount(), 2U);
}

TYPED_TEST(BufferedOutputTest, IsClosedBeforeItsSinkAndAlsoWhereThatFails) {
    const auto sink = make<support::Unclosable<typename TypeParam::Sink>>();
    typename TypeParam::Buffered out(sink, 16);
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.close(); }), "not closed");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.flush(); }), "stream closed");
    EXPECT_EQ(sink->closes, 1);
}

TYPED_TEST(BufferedOutputTest, AFailureOfTheSinkLeavesWhatIsCollected) {
    this->write(16 - 1);
    this->sink_->failures = 3;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { this->out_.flush(); }), "the sink failed");
    EXPECT_THROW(this->write(2), io::IoException);
    EXPECT_THROW(this->write(100), io::IoException);
    this->out_.flush();
    EXPECT_EQ(this->sink_->all(), this->text(15));
}

TYPED_TEST(BufferedOutputTest, FailsOnFirstUseWithNothingToWrap) {
    typename TypeParam::Buffered out(nullptr);
    EXPECT_NO_THROW(out.write(this->text(1).data(), 1)) << "collected, not used yet";
    EXPECT_THROW(out.flush(), IllegalStateException);
    EXPECT_THROW(out.close(), IllegalStateException);
}

TEST(BufferedOutputStreamTest, WritesEveryKindOfBytes) {
    const auto sink = make<support::BlockOutputStream>();
    io::BufferedOutputStream out(sink, 16);
    const unsigned char natural[] = {0xFF};
    out.write("a", 1);
    out.write(natural, 1);
    out.flush();
    EXPECT_EQ(sink->all(), (std::vector<signed char>{'a', -1}));
}

TEST(BufferedWriterTest, WritesTextsOfEveryForm) {
    const auto sink = make<support::BlockWriter>();
    io::BufferedWriter out(sink, 16);
    out.write(String(u"ab"));
    out.write(u"cd");
    out.flush();
    EXPECT_EQ(sink->all(), support::unitsOf<char16_t>("abcd"));
    EXPECT_EQ(sink->blocks.size(), 1U);
}

} // namespace
