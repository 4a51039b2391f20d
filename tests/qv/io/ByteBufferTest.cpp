#include "qv/io/ByteBuffer.h"

#include "qv/Exceptions.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "tests/support/GuardedBuffer.h"
#include "tests/support/Hex.h"
#include "tests/support/Streams.h"

#include <bit>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace qv;
using io::ByteBuffer;
using support::Bytes;
using support::fromHex;
using support::toHex;

unsigned size(const Bytes& bytes) { return static_cast<unsigned>(bytes.size()); }

/// A writable buffer over the bytes.
Reference<ByteBuffer> over(Bytes& bytes, ENUM_QV_ENDIAN order = QV_ENDIAN_BIG) {
    return make<ByteBuffer>(bytes.data(), size(bytes), order, false);
}

Reference<ByteBuffer> readOnly(const Bytes& bytes, ENUM_QV_ENDIAN order = QV_ENDIAN_BIG) {
    return make<ByteBuffer>(bytes.data(), size(bytes), order);
}

void expectPlace(const ByteBuffer& buffer, unsigned position, unsigned limit, unsigned capacity) {
    EXPECT_EQ(buffer.getPosition(), position);
    EXPECT_EQ(buffer.getLimit(), limit);
    EXPECT_EQ(buffer.getCapacity(), capacity);
    EXPECT_EQ(buffer.remaining(), limit - position);
}

TEST(ByteBufferTest, OrdersHaveTheirValues) {
    EXPECT_EQ(QV_ENDIAN_LITTLE, 0);
    EXPECT_EQ(QV_ENDIAN_BIG, 1);
    EXPECT_EQ(QV_ENDIAN_UNSUPPORTED, 2);
}

TEST(ByteBufferTest, StartsWhole) {
    const auto owned = make<ByteBuffer>(12u, QV_ENDIAN_BIG, false);
    expectPlace(*owned, 0, 12, 12);
    EXPECT_EQ(owned->getOrder(), QV_ENDIAN_BIG);
    EXPECT_FALSE(owned->isReadOnly());
    Bytes bytes(5);
    const auto wrapped = make<ByteBuffer>(bytes.data(), 5u, QV_ENDIAN_LITTLE, true);
    expectPlace(*wrapped, 0, 5, 5);
    EXPECT_TRUE(wrapped->isReadOnly());
    EXPECT_EQ(wrapped->getConstBuffer(), bytes.data());
    const Bytes constant(3);
    const auto fixed = make<ByteBuffer>(constant.data(), 3u, QV_ENDIAN_LITTLE);
    expectPlace(*fixed, 0, 3, 3);
    EXPECT_TRUE(fixed->isReadOnly());
}

TEST(ByteBufferTest, ConstructorsTakeAnyOrder) {
    const auto buffer = make<ByteBuffer>(4u, QV_ENDIAN_UNSUPPORTED, false);
    EXPECT_EQ(buffer->getOrder(), QV_ENDIAN_UNSUPPORTED);
    buffer->putInt32(0x01020304);
    EXPECT_EQ(toHex(Bytes(buffer->getConstBuffer(), buffer->getConstBuffer() + 4)), "01020304")
        << "every order but 0 swaps";
}

TEST(ByteBufferTest, MayBeEmpty) {
    const auto owned = make<ByteBuffer>(0u, QV_ENDIAN_BIG, false);
    const ByteBuffer none(static_cast<signed char*>(nullptr), 0u, QV_ENDIAN_BIG, false);
    EXPECT_TRUE(owned->equals(none));
    EXPECT_EQ(owned->compareTo(none), 0);
    EXPECT_EQ(none.hashCode(), 0u);
    EXPECT_EQ(none.get(0, nullptr, 5), 0u);
    EXPECT_EQ(owned->put(Bytes(1).data(), 1), 0u);
    EXPECT_TRUE(none.duplicate(false, 0)->equals(none));
    EXPECT_EQ(none.slice()->getCapacity(), 0u);
}

TEST(ByteBufferTest, FlipReadsWhatWasWritten) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.putInt32(1);
    buffer.put(static_cast<signed char>(2));
    buffer.flip();
    expectPlace(buffer, 0, 5, 8);
    buffer.get();
    buffer.rewind();
    expectPlace(buffer, 0, 5, 8);
    buffer.get();
    buffer.clear();
    expectPlace(buffer, 0, 8, 8);
}

TEST(ByteBufferTest, PositionsAndLimitsHaveTheirBounds) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.setLimit(8);
    EXPECT_THROW(buffer.setLimit(9), RangeErrorException);
    buffer.setLimit(6);
    buffer.setPosition(6);
    EXPECT_EQ(buffer.remaining(), 0u);
    EXPECT_THROW(buffer.setPosition(7), RangeErrorException);
    EXPECT_THROW(buffer.setPosition(0xFFFFFFFF), RangeErrorException);
    expectPlace(buffer, 6, 6, 8);
}

TEST(ByteBufferTest, KeptALimitBelowThePositionLeavesIt) {
    Bytes bytes = fromHex("0102030405060708");
    const auto buffer = over(bytes);
    buffer->setPosition(5);
    buffer->setLimit(3);
    EXPECT_EQ(buffer->getPosition(), 5u);
    EXPECT_EQ(buffer->remaining(), 0xFFFFFFFEu);
    buffer->setPosition(1);
    EXPECT_EQ(buffer->remaining(), 2u);
}

TEST(ByteBufferTest, BlocksBehindTheLimitAreEmpty) {
    Bytes bytes = fromHex("0102030405060708");
    const auto buffer = over(bytes);
    buffer->setPosition(5);
    buffer->setLimit(3);
    Bytes out(4, 77);
    EXPECT_EQ(buffer->get(out.data(), 4), 0u);
    EXPECT_EQ(buffer->put(out.data(), 4), 0u);
    EXPECT_EQ(buffer->get(4, out.data(), 4), 0u);
    const auto source = make<support::SlowInputStream>(Bytes(4, 9));
    EXPECT_EQ(buffer->readFrom(source), 0u);
    EXPECT_EQ(buffer->readFully(source), 0u);
    EXPECT_EQ(buffer->slice()->getCapacity(), 0u);
    EXPECT_EQ(toHex(bytes), "0102030405060708");
}

TEST(ByteBufferTest, OneOrderIsRefused) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.setOrder(QV_ENDIAN_LITTLE);
    EXPECT_THROW(buffer.setOrder(QV_ENDIAN_UNSUPPORTED), UnsupportedOperationException);
    EXPECT_EQ(buffer.getOrder(), QV_ENDIAN_LITTLE);
}

struct Stored {
    const char* name;
    void (*putNext)(ByteBuffer&);
    void (*putAt)(ByteBuffer&, unsigned);
    bool (*isNext)(ByteBuffer&);
    bool (*isAt)(const ByteBuffer&, unsigned);
    const char* little;
    const char* big;
};

/// The four operations on one value.
#define STORED(Name, suffix, value, little, big)                                                   \
    Stored {                                                                                       \
#Name, [](ByteBuffer& b) { b.put##suffix(value); },                                        \
            [](ByteBuffer& b, unsigned at) { b.put##suffix(at, value); },                          \
            [](ByteBuffer& b) { return b.get##suffix() == (value); },                              \
            [](const ByteBuffer& b, unsigned at) { return b.get##suffix(at) == (value); }, little, \
            big       \
    }

const Stored forms[] = {
    STORED(Byte, , static_cast<signed char>(-2), "fe", "fe"),
    STORED(Int16, Int16, 0x0102, "0201", "0102"),
    STORED(NegativeInt16, Int16, -2, "feff", "fffe"),
    STORED(Int32, Int32, 0x01020304, "04030201", "01020304"),
    STORED(LeastInt32, Int32, std::numeric_limits<int>::min(), "00000080", "80000000"),
    STORED(Int64, Int64, 0x0102030405060708, "0807060504030201", "0102030405060708"),
    STORED(NegativeInt64, Int64, -2, "feffffffffffffff", "fffffffffffffffe"),
    STORED(Float, Float, 1.5f, "0000c03f", "3fc00000"),
    STORED(Double, Double, -2.0, "00000000000000c0", "c000000000000000")};

#undef STORED

class ByteBufferNumberTest : public testing::TestWithParam<Stored> {};

TEST_P(ByteBufferNumberTest, StandsInEitherOrderAtAnyAddress) {
    for (const ENUM_QV_ENDIAN order : {QV_ENDIAN_LITTLE, QV_ENDIAN_BIG}) {
        const std::string expected = order == QV_ENDIAN_LITTLE ? GetParam().little : GetParam().big;
        const unsigned width = static_cast<unsigned>(expected.size() / 2);
        for (unsigned at = 0; at <= 8; ++at) {
            Bytes bytes(at + width + 8, 0);
            const auto buffer = over(bytes, order);
            buffer->setPosition(at);
            GetParam().putNext(*buffer);
            EXPECT_EQ(buffer->getPosition(), at + width);
            const std::string zeros(static_cast<std::size_t>(at) * 2, '0');
            EXPECT_EQ(toHex(bytes), zeros + expected + std::string(16, '0'));
            buffer->setPosition(at);
            EXPECT_TRUE(GetParam().isNext(*buffer));
            EXPECT_EQ(buffer->getPosition(), at + width);
            std::fill(bytes.begin(), bytes.end(), 0);
            GetParam().putAt(*buffer, at);
            EXPECT_TRUE(GetParam().isAt(*buffer, at));
            EXPECT_EQ(toHex(bytes), zeros + expected + std::string(16, '0'));
            EXPECT_EQ(buffer->getPosition(), at + width) << "an index leaves the position alone";
        }
    }
}

TEST_P(ByteBufferNumberTest, ReachesTheLastByteAndNoFurther) {
    const support::GuardedBuffer page;
    const std::string expected = GetParam().big;
    const unsigned width = static_cast<unsigned>(expected.size() / 2);
    ByteBuffer buffer(page.atEnd<signed char>(width), width, QV_ENDIAN_BIG, false);
    GetParam().putNext(buffer);
    EXPECT_TRUE(GetParam().isAt(buffer, 0));
}

TEST_P(ByteBufferNumberTest, IsNotPutIntoAReadOnlyBuffer) {
    const Bytes bytes(8, 77);
    const auto buffer = readOnly(bytes);
    EXPECT_THROW(GetParam().putNext(*buffer), ReadOnlyException);
    EXPECT_THROW(GetParam().putAt(*buffer, 0), ReadOnlyException);
    EXPECT_EQ(buffer->getPosition(), 0u);
    EXPECT_EQ(bytes, Bytes(8, 77));
}

INSTANTIATE_TEST_SUITE_P(EveryForm, ByteBufferNumberTest, testing::ValuesIn(forms),
                         [](const auto& form) { return std::string(form.param.name); });

TEST(ByteBufferTest, BitPatternsOfNumbersThatAreNoneComeThrough) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.putInt32(0, 0x7FA00001);
    EXPECT_EQ(std::bit_cast<int>(buffer.getFloat(0)), 0x7FA00001);
    buffer.putInt64(0, 0x7FF0000000000001);
    EXPECT_EQ(std::bit_cast<std::int64_t>(buffer.getDouble(0)), 0x7FF0000000000001);
}

TEST(ByteBufferTest, BlocksAreCutAtTheLimit) {
    Bytes bytes = fromHex("0102030405060708");
    const auto buffer = over(bytes);
    buffer->setLimit(6);
    Bytes out(8, 77);
    EXPECT_EQ(buffer->get(4, out.data(), 8), 2u);
    EXPECT_EQ(toHex(out), "05064d4d4d4d4d4d");
    EXPECT_EQ(buffer->getPosition(), 0u);
    EXPECT_EQ(buffer->get(out.data(), 4), 4u);
    EXPECT_EQ(buffer->getPosition(), 4u);
    EXPECT_EQ(buffer->get(out.data(), 0xFFFFFFFF), 2u);
    EXPECT_EQ(buffer->get(out.data(), 1), 0u);
    EXPECT_EQ(buffer->getPosition(), 6u);
    EXPECT_EQ(buffer->put(4, fromHex("A1A2A3A4").data(), 4), 2u);
    EXPECT_EQ(toHex(bytes), "01020304a1a20708");
    EXPECT_EQ(buffer->put(fromHex("A1").data(), 1), 0u);
    buffer->setPosition(1);
    EXPECT_EQ(buffer->put(fromHex("B1B2").data(), 2), 2u);
    EXPECT_EQ(buffer->getPosition(), 3u);
    EXPECT_EQ(toHex(bytes), "01b1b204a1a20708");
}

TEST(ByteBufferTest, BlocksMayBeOfTheBuffersOwnBytes) {
    Bytes bytes = fromHex("0102030405060708");
    const auto buffer = over(bytes);
    EXPECT_EQ(buffer->put(2, bytes.data(), 6), 6u);
    EXPECT_EQ(toHex(bytes), "0102010203040506");
    EXPECT_EQ(buffer->get(0, bytes.data() + 1, 4), 4u);
    EXPECT_EQ(toHex(bytes), "0101020102040506");
}

TEST(ByteBufferTest, BlocksAreNotPutIntoAReadOnlyBuffer) {
    const Bytes bytes(4, 77);
    const auto buffer = readOnly(bytes);
    const Bytes in(4, 1);
    EXPECT_THROW(buffer->put(in.data(), 4), ReadOnlyException);
    EXPECT_THROW(buffer->put(0, in.data(), 4), ReadOnlyException);
    EXPECT_THROW(buffer->put(in.data(), 0), ReadOnlyException);
    EXPECT_THROW(buffer->put(readOnly(in)), ReadOnlyException);
    EXPECT_THROW(buffer->getBuffer(), ReadOnlyException);
    EXPECT_EQ(buffer->getConstBuffer(), bytes.data());
    EXPECT_EQ(bytes, Bytes(4, 77));
}

TEST(ByteBufferTest, PutsWhatRemainsInAnother) {
    Bytes bytes(4, 0);
    const auto buffer = over(bytes);
    const Bytes in = fromHex("010203040506");
    const auto source = readOnly(in);
    source->setPosition(1);
    buffer->setPosition(1);
    buffer->put(source);
    EXPECT_EQ(toHex(bytes), "00020304");
    EXPECT_EQ(buffer->getPosition(), 4u);
    EXPECT_EQ(source->getPosition(), 4u);
    buffer->put(source);
    EXPECT_EQ(source->getPosition(), 4u) << "there is no room";
    buffer->clear();
    buffer->put(source);
    EXPECT_EQ(toHex(bytes), "05060304");
    EXPECT_EQ(buffer->getPosition(), 2u);
}

TEST(ByteBufferTest, PutsItselfAndMovesOnce) {
    Bytes bytes = fromHex("01020304");
    const auto buffer = over(bytes);
    buffer->setPosition(1);
    buffer->put(buffer);
    EXPECT_EQ(toHex(bytes), "01020304");
    expectPlace(*buffer, 4, 4, 4);
}

TEST(ByteBufferTest, PutsASliceOfItself) {
    Bytes bytes = fromHex("0102030405060708");
    const auto buffer = over(bytes);
    const auto slice = buffer->slice();
    buffer->setPosition(2);
    buffer->put(slice);
    EXPECT_EQ(toHex(bytes), "0102010203040506");
}

TEST(ByteBufferTest, GoesOverToAnotherArea) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.setPosition(5);
    Bytes bytes = fromHex("0102");
    buffer.setBuffer(bytes.data(), 2, QV_ENDIAN_LITTLE, false);
    expectPlace(buffer, 0, 2, 2);
    EXPECT_EQ(buffer.getInt16(0), 0x0201);
    EXPECT_EQ(buffer.getBuffer(), bytes.data());
    const Bytes constant = fromHex("010203");
    buffer.setBuffer(constant.data(), 3, QV_ENDIAN_BIG);
    expectPlace(buffer, 0, 3, 3);
    EXPECT_TRUE(buffer.isReadOnly());
    buffer.setBuffer(bytes.data(), 2, QV_ENDIAN_LITTLE, true);
    EXPECT_TRUE(buffer.isReadOnly());
}

TEST(ByteBufferTest, AnOrderThatIsRefusedLeavesTheBufferAsItWas) {
    ByteBuffer buffer(8u, QV_ENDIAN_BIG, false);
    buffer.putInt32(0x01020304);
    Bytes bytes(2);
    EXPECT_THROW(buffer.setBuffer(bytes.data(), 2, QV_ENDIAN_UNSUPPORTED, true),
                 UnsupportedOperationException);
    expectPlace(buffer, 4, 8, 8);
    EXPECT_EQ(buffer.getInt32(0), 0x01020304);
    EXPECT_FALSE(buffer.isReadOnly());
}

TEST(ByteBufferTest, ReadsOnceFromAStream) {
    Bytes bytes(8, 0);
    const auto buffer = over(bytes);
    buffer->setPosition(1);
    buffer->setLimit(7);
    const auto source = make<support::SlowInputStream>(fromHex("0102030405"), 3);
    EXPECT_EQ(buffer->readFrom(source), 3u);
    EXPECT_EQ(buffer->getPosition(), 4u);
    EXPECT_EQ(toHex(bytes), "0001020300000000");
    EXPECT_EQ(buffer->readFrom(source), 2u);
    EXPECT_EQ(buffer->readFrom(source), 0u) << "the stream has ended";
    EXPECT_EQ(source->requests, (std::vector<std::int32_t>{6, 3, 1}));
    buffer->setPosition(7);
    EXPECT_EQ(buffer->readFrom(source), 0u);
    EXPECT_EQ(source->requests.size(), 3u) << "with nothing left it is not asked";
}

TEST(ByteBufferTest, ReadsFullyFromAStream) {
    Bytes bytes(8, 0);
    const auto buffer = over(bytes);
    const auto source = make<support::SlowInputStream>(support::sequence<signed char>(20), 3);
    EXPECT_EQ(buffer->readFully(source), 8u);
    EXPECT_EQ(bytes, support::sequence<signed char>(8));
    EXPECT_EQ(source->requests, (std::vector<std::int32_t>{8, 5, 2}));
    buffer->clear();
    const auto shortSource = make<support::SlowInputStream>(fromHex("0102"));
    EXPECT_EQ(buffer->readFully(shortSource), 2u);
    EXPECT_EQ(buffer->getPosition(), 2u);
    const auto pausing = make<support::SlowInputStream>(fromHex("0102"));
    pausing->emptyReads = 1;
    EXPECT_EQ(buffer->readFully(pausing), 0u) << "a read that gives nothing ends it";
}

TEST(ByteBufferTest, KeptReadsIntoAReadOnlyBufferWrite) {
    Bytes bytes(4, 0);
    const auto buffer = make<ByteBuffer>(bytes.data(), 4u, QV_ENDIAN_BIG, true);
    const auto source = make<support::SlowInputStream>(fromHex("0102"));
    EXPECT_EQ(buffer->readFrom(source), 2u);
    EXPECT_EQ(toHex(bytes), "01020000");
}

TEST(ByteBufferTest, AFailureOfTheSourceLeavesThePosition) {
    Bytes bytes(4, 0);
    const auto buffer = over(bytes);
    const auto source = make<support::SlowInputStream>(fromHex("0102"));
    source->failures = 1;
    EXPECT_THROW(buffer->readFrom(source), io::IoException);
    EXPECT_EQ(buffer->getPosition(), 0u);
}

TEST(ByteBufferTest, WritesWhatRemainsInOneBlock) {
    const Bytes bytes = fromHex("01020304050607");
    const auto buffer = readOnly(bytes);
    buffer->setPosition(2);
    buffer->setLimit(6);
    const auto sink = make<support::BlockOutputStream>();
    EXPECT_EQ(buffer->writeTo(sink), 4u);
    EXPECT_EQ(buffer->getPosition(), 6u);
    EXPECT_EQ(buffer->writeTo(sink), 0u);
    EXPECT_EQ(sink->blocks, (std::vector<Bytes>{fromHex("03040506"), Bytes()}));
    buffer->setPosition(3);
    sink->failures = 1;
    EXPECT_THROW(buffer->writeTo(sink), io::IoException);
    EXPECT_EQ(buffer->getPosition(), 3u);
}

/// Takes blocks without looking at them.
class CountingSink : public io::OutputStream {
public:
    using OutputStream::write;
    void write(const signed char*, std::int32_t length) override { lengths.push_back(length); }
    std::vector<std::int32_t> lengths;
};

class CountingSource : public io::InputStream {
public:
    using InputStream::read;
    std::int32_t read(signed char*, std::int32_t length) override {
        lengths.push_back(length);
        return length;
    }
    std::vector<std::int32_t> lengths;
};

TEST(ByteBufferTest, MoreThanAStreamTakesAtOnceGoesInPieces) {
    Bytes bytes(1);
    ByteBuffer buffer(bytes.data(), 0xFFFFFFFF, QV_ENDIAN_BIG, false); // nobody touches the rest
    const std::vector<std::int32_t> pieces{0x7FFFFFFF, 0x7FFFFFFF, 1};
    const auto sink = make<CountingSink>();
    EXPECT_EQ(buffer.writeTo(sink), 0xFFFFFFFFu);
    EXPECT_EQ(sink->lengths, pieces);
    buffer.rewind();
    const auto source = make<CountingSource>();
    EXPECT_EQ(buffer.readFully(source), 0xFFFFFFFFu);
    EXPECT_EQ(source->lengths, pieces);
}

TEST(ByteBufferTest, ComparesByCapacityFirst) {
    const Bytes small(4, 127);
    const Bytes large(8, 0);
    EXPECT_EQ(readOnly(small)->compareTo(*readOnly(large)), -1);
    EXPECT_EQ(readOnly(large)->compareTo(*readOnly(small)), 1);
}

TEST(ByteBufferTest, ComparesTheWholeAreasByUnsignedBytes) {
    const Bytes a = fromHex("01027F");
    const Bytes b = fromHex("010280");
    const auto left = readOnly(a);
    const auto right = readOnly(b, QV_ENDIAN_LITTLE);
    left->setLimit(1);
    EXPECT_EQ(left->compareTo(*right), -1);
    EXPECT_EQ(right->compareTo(*left), 1);
    EXPECT_EQ(left->compareTo(*left), 0);
    EXPECT_FALSE(left->equals(*right));
    const Bytes copy = a;
    EXPECT_EQ(left->compareTo(*readOnly(copy, QV_ENDIAN_LITTLE)), 0);
    EXPECT_TRUE(left->equals(*readOnly(copy, QV_ENDIAN_LITTLE)));
    EXPECT_TRUE(left->equals(*left));
}

TEST(ByteBufferTest, ComparesWithItsOwnKindAlone) {
    const auto buffer = make<ByteBuffer>(4u, QV_ENDIAN_BIG, false);
    const Object other;
    EXPECT_THROW(buffer->compareTo(other), CastFailedException);
    EXPECT_FALSE(buffer->equals(other));
    EXPECT_FALSE(buffer->equals(*make<ByteBuffer>(5u, QV_ENDIAN_BIG, false)));
}

TEST(ByteBufferTest, ComparesOnItsComponentFaceToo) {
    const Bytes a(1, 1);
    const Bytes b(1, 2);
    const auto left = readOnly(a);
    const auto right = readOnly(b);
    std::int32_t order = 0;
    const IQVUnknown* const other = static_cast<ComObject*>(right.get());
    EXPECT_EQ(left->CompareTo(other, &order), QV_S_OK);
    EXPECT_EQ(order, -1);
    std::uint32_t hash = 0;
    EXPECT_EQ(left->HashCode(&hash), QV_S_OK);
    EXPECT_EQ(hash, 1u);
}

std::uint32_t plainHash(const Bytes& bytes, std::size_t step) {
    std::uint32_t hash = 0;
    for (std::size_t i = 0; i < bytes.size(); i += step) {
        hash = hash * 37 + static_cast<std::uint32_t>(int{bytes[i]});
    }
    return hash;
}

TEST(ByteBufferTest, HashesSampledBytesWithTheirSign) {
    const std::pair<int, int> steps[] = {{1, 1},  {31, 1}, {32, 1}, {33, 1},   {63, 1},
                                         {64, 2}, {95, 2}, {96, 3}, {1056, 33}};
    for (const auto& [capacity, step] : steps) {
        Bytes bytes;
        for (int i = 0; i < capacity; ++i) {
            bytes.push_back(static_cast<signed char>(200 + i * 3));
        }
        EXPECT_EQ(readOnly(bytes)->hashCode(), plainHash(bytes, static_cast<std::size_t>(step)))
            << capacity;
    }
}

TEST(ByteBufferTest, ADuplicateHasBytesOfItsOwn) {
    Bytes bytes = fromHex("01020304");
    const auto buffer = over(bytes, QV_ENDIAN_LITTLE);
    buffer->setPosition(1);
    buffer->setLimit(2);
    const auto copy = buffer->duplicate(false, 0);
    expectPlace(*copy, 0, 4, 4);
    EXPECT_EQ(copy->getOrder(), QV_ENDIAN_LITTLE);
    EXPECT_TRUE(copy->equals(*buffer));
    copy->put(0, static_cast<signed char>(9));
    EXPECT_EQ(bytes[0], 1);
    EXPECT_TRUE(buffer->duplicate(true, 0)->isReadOnly());
    EXPECT_FALSE(readOnly(bytes)->duplicate(false, 0)->isReadOnly());
}

TEST(ByteBufferTest, ADuplicateMayHaveMoreRoom) {
    Bytes bytes = fromHex("01020304");
    const auto copy = over(bytes)->duplicate(false, 10);
    expectPlace(*copy, 0, 4, 10);
    EXPECT_EQ(copy->getInt32(0), 0x01020304);
    expectPlace(*over(bytes)->duplicate(false, 4), 0, 4, 4);
    EXPECT_THROW(over(bytes)->duplicate(false, 3), RangeErrorException);
}

TEST(ByteBufferTest, ASliceIsWhatRemainsInTheSameMemory) {
    Bytes bytes = fromHex("000102030405060708090A0B");
    const auto buffer = over(bytes);
    buffer->setPosition(2);
    buffer->setLimit(10);
    const auto slice = buffer->slice();
    expectPlace(*slice, 0, 8, 8);
    EXPECT_EQ(slice->getOrder(), QV_ENDIAN_BIG);
    EXPECT_FALSE(slice->isReadOnly());
    buffer->put(2, static_cast<signed char>(77));
    EXPECT_EQ(slice->get(0), 77);
    slice->put(1, static_cast<signed char>(78));
    EXPECT_EQ(bytes[3], 78);
    EXPECT_EQ(buffer->getPosition(), 2u);
    EXPECT_TRUE(readOnly(bytes)->slice()->isReadOnly());
}

} // namespace
