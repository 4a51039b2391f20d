#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"

#include "qv/Exceptions.h"
#include "tests/support/Hex.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace qv;
using io::ByteBuffer;
using support::Bytes;
using support::fromHex;
using support::toHex;

TEST(ByteBufferInputStreamTest, ReadsWhatRemains) {
    const Bytes bytes = fromHex("0102FF0405");
    const auto buffer = make<ByteBuffer>(bytes.data(), 5u, QV_ENDIAN_BIG);
    buffer->setPosition(1);
    buffer->setLimit(4);
    io::ByteBufferInputStream in(buffer);
    Bytes out(5, 77);
    EXPECT_EQ(in.read(out.data(), 1), 1);
    EXPECT_EQ(buffer->getPosition(), 2u);
    EXPECT_EQ(in.read(), 0xFF);
    EXPECT_EQ(in.read(out.data(), std::numeric_limits<std::int32_t>::max()), 1);
    EXPECT_EQ(in.read(out.data(), 1), -1);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.available(), 0);
}

TEST(ByteBufferInputStreamTest, KeptALengthOfZeroIsTheEndOnlyAtTheEnd) {
    const Bytes bytes(1);
    io::ByteBufferInputStream in(make<ByteBuffer>(bytes.data(), 1u, QV_ENDIAN_BIG));
    signed char byte = 0;
    EXPECT_EQ(in.read(&byte, 0), 0);
    EXPECT_EQ(in.read(&byte, -1), 0);
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.read(&byte, 0), -1);
    EXPECT_EQ(in.read(&byte, -1), -1);
}

TEST(ByteBufferInputStreamTest, APositionBehindTheLimitIsTheEnd) {
    const Bytes bytes(8);
    const auto buffer = make<ByteBuffer>(bytes.data(), 8u, QV_ENDIAN_BIG);
    buffer->setPosition(5);
    buffer->setLimit(2);
    io::ByteBufferInputStream in(buffer);
    EXPECT_EQ(in.read(), -1);
}

TEST(ByteBufferInputStreamTest, HoldsItsBuffer) {
    const auto buffer = make<ByteBuffer>(1u, QV_ENDIAN_BIG, false);
    {
        const io::ByteBufferInputStream in(buffer);
        const io::ByteBufferOutputStream out(buffer);
        EXPECT_EQ(buffer->GetRefCount(), 3u);
        EXPECT_EQ(in.getBuffer(), buffer.get());
    }
    EXPECT_EQ(buffer->GetRefCount(), 1u);
}

TEST(ByteBufferOutputStreamTest, DropsWhatDoesNotFitAndRemembersIt) {
    Bytes bytes(4, 0);
    const auto buffer = make<ByteBuffer>(bytes.data(), 4u, QV_ENDIAN_BIG, false);
    io::ByteBufferOutputStream out(buffer);
    out.write("\x01", 1);
    EXPECT_EQ(out.Overflowed(), 0);
    out.write("\x02\x03\x04\x05\x06\x07", 6);
    EXPECT_EQ(out.Overflowed(), 1);
    EXPECT_EQ(toHex(bytes), "01020304");
    buffer->clear();
    out.write("\x09", 1);
    EXPECT_EQ(out.Overflowed(), 1) << "it stays remembered";
}

TEST(ByteBufferOutputStreamTest, FillsTheBufferToTheLastByte) {
    Bytes bytes(4, 0);
    const auto buffer = make<ByteBuffer>(bytes.data(), 4u, QV_ENDIAN_BIG, false);
    io::ByteBufferOutputStream out(buffer);
    out.write("\x01\x02\x03\x04", 4);
    EXPECT_EQ(out.Overflowed(), 0);
    out.write("", 0);
    out.write("", -1);
    EXPECT_EQ(out.Overflowed(), 0);
    out.write(static_cast<signed char>(1));
    EXPECT_EQ(out.Overflowed(), 1);
}

TEST(ByteBufferOutputStreamTest, AReadOnlyBufferRefuses) {
    const Bytes bytes(4, 0);
    io::ByteBufferOutputStream out(make<ByteBuffer>(bytes.data(), 4u, QV_ENDIAN_BIG));
    EXPECT_THROW(out.write("\x01", 1), ReadOnlyException);
    out.write("\x01", 0);
    EXPECT_EQ(out.Overflowed(), 0);
}

TEST(ByteBufferStreamTest, FailOnFirstUseWithNothingToWrap) {
    io::ByteBufferInputStream in(nullptr);
    EXPECT_THROW(in.read(), IllegalStateException);
    io::ByteBufferOutputStream out(nullptr);
    EXPECT_THROW(out.write("\x01", 1), IllegalStateException);
}

} // namespace
