#include "qv/io/OutputStream.h"

#include "qv/io/NullOutputStream.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

constexpr auto toBytes = support::unitsOf<signed char>;

TEST(OutputStreamTest, WritesEveryKindOfBytes) {
    support::BlockOutputStream stream;
    const unsigned char natural[] = {'c', 0xFF};
    stream.write("ab", 2);
    stream.write(natural, 2);
    EXPECT_EQ(stream.blocks, (std::vector<std::vector<signed char>>{{'a', 'b'}, {'c', -1}}));
}

TEST(OutputStreamTest, WritesASingleByteAsABlock) {
    support::BlockOutputStream stream;
    stream.write(static_cast<signed char>(-128));
    EXPECT_EQ(stream.blocks, (std::vector<std::vector<signed char>>{{-128}}));
}

/// Only what a stream must have.
class BareStream : public io::OutputStream {
public:
    using OutputStream::write;
    void write(const signed char*, std::int32_t) override {}
};

TEST(OutputStreamTest, FlushesAndClosesWithoutEffect) {
    BareStream stream;
    EXPECT_NO_THROW(stream.flush());
    EXPECT_NO_THROW(stream.close());
    EXPECT_NO_THROW(stream.write("a", 1));
}

TEST(OutputStreamTest, HasItsOperationsInOrder) {
    using Stream = io::OutputStream;
    const std::ptrdiff_t first =
        support::slotOf<void (Stream::*)(const char*, std::int32_t)>(&Stream::write);
    support::expectConsecutive({
        first,
        support::slotOf<void (Stream::*)(const unsigned char*, std::int32_t)>(&Stream::write),
        support::slotOf<void (Stream::*)(const signed char*, std::int32_t)>(&Stream::write),
        support::slotOf<void (Stream::*)(signed char)>(&Stream::write),
        support::slotOf(&Stream::flush),
        support::slotOf(&Stream::close),
    });
    EXPECT_EQ(first, support::slotOf(&Object::toString) + 1);
}

TEST(NullOutputStreamTest, DiscardsEverything) {
    io::NullOutputStream stream;
    stream.write("text", 4);
    stream.write(static_cast<signed char>(1));
    stream.write(static_cast<const signed char*>(nullptr), 1000);
    stream.flush();
    stream.close();
    EXPECT_NO_THROW(stream.write("text", 4));
}

} // namespace
