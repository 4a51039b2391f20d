#include "qv/io/BitInputStream.h"
#include "qv/io/BitOutputStream.h"

#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"
#include "tests/support/OneByteStreams.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using namespace qv;
using support::Bytes;
using support::CallsSink;
using support::CallsSource;
using support::fromHex;
using support::toHex;

struct Writer {
    Reference<CallsSink> sink = make<CallsSink>();
    io::BitOutputStream out{sink.get()};
};

struct Reader {
    explicit Reader(const char* hex) : source(make<CallsSource>(fromHex(hex))), in(source.get()) {}

    Reference<CallsSource> source;
    io::BitInputStream in;
};

TEST(BitOutputStreamTest, TheFirstBitIsTheHighestOfTheFirstByte) {
    Writer w;
    w.out.writeBit(true);
    EXPECT_EQ(w.sink->calls, "");
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "80");
    EXPECT_EQ(w.sink->calls, "wf");
}

TEST(BitOutputStreamTest, FieldsStandMostSignificantBitFirst) {
    Writer w;
    w.out.write(5, 3);
    w.out.write(1, 1);
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "b0");
}

TEST(BitOutputStreamTest, AByteGoesOutWhenItIsFull) {
    Writer w;
    for (int i = 0; i < 7; ++i) {
        w.out.writeBit(i % 2 == 0);
    }
    EXPECT_EQ(w.sink->calls, "");
    w.out.writeBit(true);
    EXPECT_EQ(w.sink->calls, "w");
    EXPECT_EQ(toHex(w.sink->bytes), "ab");
}

TEST(BitOutputStreamTest, AFieldOverSeveralBytesGoesOutByteByByte) {
    Writer w;
    w.out.write(1, 1);
    w.out.write(0x7FFFFFFE, 31);
    EXPECT_EQ(toHex(w.sink->bytes), "fffffffe");
    EXPECT_EQ(w.sink->calls, "wwww");
}

TEST(BitOutputStreamTest, AValueThatItsWidthCannotHoldIsRefused) {
    Writer w;
    w.out.write(5, 3);
    EXPECT_EQ(support::thrownText<RangeErrorException>([&] { w.out.write(8, 3); }),
              "Number out of range");
    EXPECT_EQ(support::thrownText<RangeErrorException>([&] { w.out.write(0x80000000, 31); }),
              "Number out of range");
    w.out.write(1, 5);
    EXPECT_EQ(toHex(w.sink->bytes), "a1") << "what was refused left nothing";
}

TEST(BitOutputStreamTest, KeptOf32BitsOnlyZeroCanBeWritten) {
    Writer w;
    EXPECT_EQ(support::thrownText<RangeErrorException>([&] { w.out.write(1, 32); }),
              "Number out of range");
    EXPECT_THROW(w.out.write(0xFFFFFFFF, 32), RangeErrorException);
    w.out.write(0u, 32);
    EXPECT_EQ(toHex(w.sink->bytes), "00000000");
}

TEST(BitOutputStreamTest, WidthsOutsideOneTo32AreRefused) {
    Writer w;
    for (const int bits :
         {0, -1, 33, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(support::thrownResult([&] { w.out.write(0u, bits); }), QV_E_INVALIDARG) << bits;
    }
    w.out.flush();
    EXPECT_EQ(w.sink->calls, "f");
}

TEST(BitOutputStreamTest, KeptBytesFrom0x80UpAreOutOfRange) {
    Writer w;
    w.out.write(static_cast<signed char>(0x7F));
    EXPECT_EQ(support::thrownText<RangeErrorException>(
                  [&] { w.out.write(static_cast<signed char>(-128)); }),
              "Number out of range");
    EXPECT_EQ(toHex(w.sink->bytes), "7f");
}

TEST(BitOutputStreamTest, KeptABlockEndsAtTheFirstByteFrom0x80Up) {
    Writer w;
    EXPECT_THROW(w.out.write("\x01\x02\xFF\x03", 4), RangeErrorException);
    EXPECT_EQ(toHex(w.sink->bytes), "0102");
}

TEST(BitOutputStreamTest, BlocksStandBehindBits) {
    Writer w;
    w.out.write(0xF, 4);
    w.out.write("\x12\x34", 2);
    w.out.write("\x12", 0);
    w.out.write("\x12", -1);
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "f12340");
}

TEST(BitOutputStreamTest, AFlushBeginsAByte) {
    Writer w;
    w.out.flush();
    EXPECT_EQ(w.sink->calls, "f");
    w.out.write(3, 2);
    w.out.flush();
    w.out.write(3, 2);
    w.out.flush();
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "c0c0");
    EXPECT_EQ(w.sink->calls, "fwfwff");
}

TEST(BitOutputStreamTest, KeptACloseLosesTheBitsThatWait) {
    Writer w;
    w.out.write(3, 2);
    w.out.close();
    EXPECT_EQ(w.sink->bytes, Bytes());
    EXPECT_EQ(w.sink->closes, 1);
}

TEST(BitOutputStreamTest, AFailureOfTheSinkLeavesTheBitsAsTheyWere) {
    Writer w;
    w.out.write(5, 3);
    w.sink->failsAt = 0;
    EXPECT_THROW(w.out.write(0x1F, 5), io::IoException);
    w.out.write(0x1F, 5);
    w.out.flush(); // of nothing: all bits went out
    EXPECT_EQ(toHex(w.sink->bytes), "bf");
}

TEST(BitOutputStreamTest, AFlushThatFailsLeavesTheBitsAsTheyWere) {
    Writer w;
    w.out.write(5, 3);
    w.sink->failsAt = 0;
    EXPECT_THROW(w.out.flush(), io::IoException);
    w.out.write(1, 1);
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "b0");
}

TEST(BitOutputStreamTest, AFlushThatTheSinkRefusesLeavesTheBitsAsTheyWere) {
    Writer w;
    w.out.writeBit(true);
    w.sink->failsToFlush = true;
    EXPECT_THROW(w.out.flush(), io::IoException);
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "8080");
    w.out.flush();
    EXPECT_EQ(toHex(w.sink->bytes), "8080");
}

TEST(BitInputStreamTest, ReadsFieldsMostSignificantBitFirst) {
    Reader r("B0FF");
    EXPECT_EQ(r.in.read(3), 5);
    EXPECT_EQ(r.in.readBit(), 1);
    EXPECT_EQ(r.in.read(6), 3);
    EXPECT_EQ(r.in.read(), -1) << "fewer than eight bits are left";
    EXPECT_EQ(r.in.readBit(), -1);
}

TEST(BitInputStreamTest, TakesAByteWhenItsFirstBitIsAskedFor) {
    Reader r("8001");
    EXPECT_EQ(r.in.readBit(), 1);
    EXPECT_EQ(r.source->calls, "r");
    EXPECT_EQ(r.in.read(7), 0);
    EXPECT_EQ(r.source->calls, "r");
    EXPECT_EQ(r.in.read(8), 1);
    EXPECT_EQ(r.source->calls, "rr");
}

TEST(BitInputStreamTest, WidthsBelowOneGiveZeroAndTakeNothing) {
    Reader r("FF");
    EXPECT_EQ(r.in.read(0), 0);
    EXPECT_EQ(r.in.read(-5), 0);
    EXPECT_EQ(r.source->calls, "");
}

TEST(BitInputStreamTest, AFieldOf32BitsIsWhole) {
    Reader r("80000001FFFFFFFF");
    EXPECT_EQ(r.in.read(32), static_cast<int>(0x80000001));
    EXPECT_EQ(r.in.read(32), -1) << "and looks like the end";
    EXPECT_EQ(r.in.read(32), -1);
}

TEST(BitInputStreamTest, OfMoreThan32BitsTheLast32Count) {
    Reader r("FF12345678");
    EXPECT_EQ(r.in.read(40), 0x12345678);
}

TEST(BitInputStreamTest, TheEndWithinAFieldIsMinusOne) {
    Reader r("AB");
    EXPECT_EQ(r.in.read(4), 0xA);
    EXPECT_EQ(r.in.read(5), -1);
    EXPECT_EQ(r.in.readBit(), -1);
}

TEST(BitInputStreamTest, EveryBitBehindTheEndAsksTheSource) {
    Reader r("");
    EXPECT_EQ(r.in.read(3), -1);
    EXPECT_EQ(r.source->calls, "rrr");
}

TEST(BitInputStreamTest, ReadsBytesAsNaturalNumbers) {
    Reader r("80FF");
    EXPECT_EQ(r.in.read(), 0x80);
    EXPECT_EQ(r.in.read(), 0xFF);
    EXPECT_EQ(r.in.read(), -1);
}

TEST(BitInputStreamTest, ReadsBlocksThatNeedNotStandAtAByte) {
    Reader r("F12345");
    EXPECT_EQ(r.in.read(4), 0xF);
    Bytes bytes(5, 77);
    EXPECT_EQ(r.in.read(bytes.data(), 5), 2);
    EXPECT_EQ(toHex(bytes), "12344d4d4d");
    EXPECT_EQ(r.in.read(bytes.data(), 5), -1);
}

TEST(BitInputStreamTest, BlocksAreTakenByteByByte) {
    Reader r("0102030405");
    Bytes bytes(3);
    EXPECT_EQ(r.in.read(bytes.data(), 3), 3);
    EXPECT_EQ(r.source->calls, "rrr");
}

TEST(BitInputStreamTest, LengthsBelowOneGiveMinusOne) {
    Reader r("01");
    signed char byte = 0;
    EXPECT_EQ(r.in.read(&byte, 0), -1);
    EXPECT_EQ(r.in.read(&byte, -3), -1);
    EXPECT_EQ(r.source->calls, "");
}

TEST(BitInputStreamTest, AFailureOfTheSourceLeavesTheBitsAsTheyWere) {
    Reader r("B0FF");
    EXPECT_EQ(r.in.read(3), 5);
    r.source->failsAt = 1;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { r.in.read(8); }), "the source failed");
    EXPECT_EQ(r.in.read(8), 0x87);
    EXPECT_EQ(r.in.read(5), 0x1F);
}

TEST(BitInputStreamTest, KeptWhatIsSkippedLiesBehindTheByteInHand) {
    Reader r("F01234");
    EXPECT_EQ(r.in.read(4), 0xF);
    EXPECT_EQ(r.in.skip(1), 1);
    EXPECT_EQ(r.in.read(12), 0x034);
}

TEST(BitStreamTest, FieldsOfEveryWidthComeBackThroughEveryKindOfStream) {
    std::mt19937 numbers(7);
    const auto own = make<CallsSink>();
    const auto array = make<io::ByteArrayOutputStream>();
    const auto buffer = make<io::ByteBuffer>(100000u, QV_ENDIAN_LITTLE, false);
    io::BitOutputStream toOwn(own);
    io::BitOutputStream toArray(array);
    io::BitOutputStream toBuffer(make<io::ByteBufferOutputStream>(buffer));
    std::vector<std::pair<unsigned, int>> fields;
    for (int i = 0; i < 5000; ++i) {
        const int bits = i % 31 + 1;
        fields.emplace_back(static_cast<unsigned>(numbers()) >> (32 - bits), bits);
        for (io::BitOutputStream* const out : {&toOwn, &toArray, &toBuffer}) {
            out->write(fields.back().first, bits);
        }
    }
    for (io::BitOutputStream* const out : {&toOwn, &toArray, &toBuffer}) {
        out->flush();
    }
    Bytes inArray(own->bytes.size() + 1);
    ASSERT_EQ(array->getBytes(inArray.data(), static_cast<std::int32_t>(inArray.size())),
              static_cast<std::int32_t>(own->bytes.size()));
    inArray.pop_back();
    EXPECT_EQ(inArray, own->bytes);
    buffer->flip();
    ASSERT_EQ(buffer->remaining(), own->bytes.size());
    io::BitInputStream fromOwn(make<CallsSource>(own->bytes));
    io::BitInputStream fromArray(
        make<io::ByteArrayInputStream>(inArray.data(), static_cast<std::int32_t>(inArray.size())));
    io::BitInputStream fromBuffer(make<io::ByteBufferInputStream>(buffer));
    for (const auto& [value, bits] : fields) {
        for (io::BitInputStream* const in : {&fromOwn, &fromArray, &fromBuffer}) {
            ASSERT_EQ(in->read(bits), static_cast<int>(value));
        }
    }
}

/// Counts the bits that go through its operations on one bit.
class CountingOutput : public io::BitOutputStream {
public:
    using BitOutputStream::BitOutputStream;
    using BitOutputStream::write;
    void writeBit(bool bit) override {
        ++bits;
        BitOutputStream::writeBit(bit);
    }
    int bits = 0;
};

class CountingInput : public io::BitInputStream {
public:
    using BitInputStream::BitInputStream;
    using BitInputStream::read;
    int readBit() override {
        ++bits;
        return BitInputStream::readBit();
    }
    int bits = 0;
};

TEST(BitStreamTest, ADerivedClassSeesEveryBit) {
    const auto sink = make<CallsSink>();
    CountingOutput out(sink);
    out.write(0x123, 12);
    out.write("\x45", 1);
    out.write(6, 4);
    EXPECT_EQ(out.bits, 24);
    EXPECT_EQ(toHex(sink->bytes), "123456");
    CountingInput in(make<CallsSource>(sink->bytes));
    EXPECT_EQ(in.read(12), 0x123);
    EXPECT_EQ(in.read(), 0x45);
    EXPECT_EQ(in.read(5), -1);
    EXPECT_EQ(in.bits, 25);
}

TEST(BitStreamTest, AFailureLeavesTheBitsOfADerivedClassAsTheyWere) {
    const auto sink = make<CallsSink>();
    CountingOutput out(sink);
    out.write(5, 3);
    sink->failsAt = 0;
    EXPECT_THROW(out.write(0x1F, 5), io::IoException);
    out.write(0x1F, 5);
    out.flush(); // of nothing: all bits went out
    EXPECT_EQ(toHex(sink->bytes), "bf");
    const auto source = make<CallsSource>(support::fromHex("BFA5"));
    CountingInput in(source);
    EXPECT_EQ(in.read(3), 5);
    source->failsAt = 1;
    EXPECT_THROW(in.read(8), io::IoException);
    EXPECT_EQ(in.read(8), 0xFD);
}

template <class Output>
void failInTheMiddleOfAField() {
    const auto sink = make<CallsSink>();
    Output out(sink);
    out.write(5, 3);
    sink->failsAt = 1;
    EXPECT_THROW(out.write(0x1ABC, 13), io::IoException);
    EXPECT_EQ(toHex(sink->bytes), "ba") << "a byte went out";
    out.flush();
    EXPECT_EQ(toHex(sink->bytes), "baa0");
}

TEST(BitStreamTest, AFailureInTheMiddleOfAFieldLeavesTheBitsInFrontOfIt) {
    failInTheMiddleOfAField<io::BitOutputStream>();
    failInTheMiddleOfAField<CountingOutput>();
}

TEST(BitStreamTest, FailOnFirstUseWithNothingToWrap) {
    io::BitInputStream in(nullptr);
    EXPECT_THROW(in.readBit(), IllegalStateException);
    io::BitOutputStream out(nullptr);
    out.write(1, 7);
    EXPECT_THROW(out.writeBit(true), IllegalStateException);
    EXPECT_THROW(out.flush(), IllegalStateException);
}

TEST(BitStreamTest, OperationsStandBehindThoseOfFiltersInOrder) {
    using In = io::BitInputStream;
    using Out = io::BitOutputStream;
    using support::slotOf;
    support::expectConsecutive({slotOf(&Out::close),
                                slotOf(static_cast<void (Out::*)(unsigned, int)>(&Out::write)),
                                slotOf(&Out::writeBit)});
    support::expectConsecutive({slotOf(&In::reset),
                                slotOf(static_cast<int (In::*)(int)>(&In::read)),
                                slotOf(&In::readBit)});
}

} // namespace
