#include "qv/io/DataInputStream.h"
#include "qv/io/DataOutputStream.h"

#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"
#include "tests/support/OneByteStreams.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <bit>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace qv;
using support::Bytes;
using support::CallsSink;
using support::CallsSource;
using support::fromHex;
using support::toHex;

using Write = std::function<void(io::DataOutputStream&)>;

Bytes contents(const io::ByteArrayOutputStream& out) {
    Bytes bytes(1000);
    bytes.resize(static_cast<std::size_t>(out.getBytes(bytes.data(), 1000)));
    return bytes;
}

/// What reaches each kind of sink: one of the user's own, and the library's over memory.
std::vector<std::string> onTheWire(const Write& write) {
    const auto own = make<CallsSink>();
    io::DataOutputStream toOwn(own);
    write(toOwn);
    const auto array = make<io::ByteArrayOutputStream>(1);
    io::DataOutputStream toArray(array);
    write(toArray);
    const auto buffer = make<io::ByteBuffer>(64u, QV_ENDIAN_LITTLE, false);
    io::DataOutputStream toBuffer(make<io::ByteBufferOutputStream>(buffer));
    write(toBuffer);
    const Bytes inBuffer(buffer->getConstBuffer(),
                         buffer->getConstBuffer() + buffer->getPosition());
    return {toHex(own->bytes), toHex(contents(*array)), toHex(inBuffer)};
}

struct WireForm {
    const char* name;
    Write write;
    const char* bytes;
};

class DataWireTest : public testing::TestWithParam<WireForm> {};

TEST_P(DataWireTest, StandsOnTheWireAsLaidDown) {
    EXPECT_EQ(onTheWire(GetParam().write), std::vector<std::string>(3, GetParam().bytes));
}

TEST_P(DataWireTest, GoesOutByteByByte) {
    const auto sink = make<CallsSink>();
    io::DataOutputStream out(sink);
    GetParam().write(out);
    EXPECT_EQ(sink->calls, std::string(sink->bytes.size(), 'w'));
}

using Out = io::DataOutputStream;

INSTANTIATE_TEST_SUITE_P(
    EveryForm, DataWireTest,
    testing::Values(
        WireForm{"True", [](Out& out) { out.writeBool(true); }, "01"},
        WireForm{"False", [](Out& out) { out.writeBool(false); }, "00"},
        WireForm{"Byte", [](Out& out) { out.writeByte(-2); }, "fe"},
        WireForm{"Char16", [](Out& out) { out.writeChar16(u'\u4E2D'); }, "4e2d"},
        WireForm{"Char32", [](Out& out) { out.writeChar32(0x8001F600); }, "8001f600"},
        WireForm{"Int16", [](Out& out) { out.writeInt16(-2); }, "fffe"},
        WireForm{"Int16Positive", [](Out& out) { out.writeInt16(0x1234); }, "1234"},
        WireForm{"Int32", [](Out& out) { out.writeInt32(0x01020304); }, "01020304"},
        WireForm{"Int32Least", [](Out& out) { out.writeInt32(std::numeric_limits<int>::min()); },
                 "80000000"},
        WireForm{"Int64", [](Out& out) { out.writeInt64(0x0102030405060708); }, "0102030405060708"},
        WireForm{"Int64Negative", [](Out& out) { out.writeInt64(-2); }, "fffffffffffffffe"},
        WireForm{"Int64HighBitOfTheLowHalf", [](Out& out) { out.writeInt64(0x80000000); },
                 "0000000080000000"},
        WireForm{"Float", [](Out& out) { out.writeFloat(1.5f); }, "3fc00000"},
        WireForm{"Double", [](Out& out) { out.writeDouble(-2.0); }, "c000000000000000"},
        WireForm{"String", [](Out& out) { out.writeString(String(u"text")); }, ""},
        WireForm{"Char", [](Out& out) { out.writeChar(u'\xFFFE'); }, "fffe"},
        WireForm{"Short", [](Out& out) { out.writeShort(-1); }, "ffff"},
        WireForm{"UnsignedShort", [](Out& out) { out.writeUnsignedShort(0xFFFE); }, "fffe"},
        WireForm{"UnsignedInt16", [](Out& out) { out.writeUnsignedInt16(0x8000); }, "8000"},
        WireForm{"Int", [](Out& out) { out.writeInt(-1); }, "ffffffff"},
        WireForm{"UnsignedInt", [](Out& out) { out.writeUnsignedInt(0xFEDCBA98); }, "fedcba98"},
        WireForm{"UnsignedInt32", [](Out& out) { out.writeUnsignedInt32(1); }, "00000001"},
        WireForm{"Long", [](Out& out) { out.writeLong(-3); }, "fffffffd"},
        WireForm{"UnsignedLong", [](Out& out) { out.writeUnsignedLong(0x80000001); }, "80000001"},
        WireForm{"UnsignedByte", [](Out& out) { out.writeUnsignedByte(0xFF); }, "ff"},
        WireForm{"UnsignedInt64", [](Out& out) { out.writeUnsignedInt64(0xFEDCBA9876543210); },
                 "fedcba9876543210"}),
    [](const auto& form) { return std::string(form.param.name); });

/// Reads from each kind of source, and expects the same of each.
template <class Read>
void expectRead(const char* hex, Read read,
                decltype(read(std::declval<io::DataInputStream&>())) is) {
    const Bytes bytes = fromHex(hex);
    const auto length = static_cast<std::int32_t>(bytes.size());
    const auto own = make<CallsSource>(bytes);
    io::DataInputStream fromOwn(own);
    EXPECT_EQ(read(fromOwn), is) << hex;
    EXPECT_EQ(own->calls, std::string(bytes.size(), 'r')) << hex;
    io::DataInputStream fromArray(make<io::ByteArrayInputStream>(bytes.data(), length));
    EXPECT_EQ(read(fromArray), is) << hex;
    const auto buffer =
        make<io::ByteBuffer>(bytes.data(), static_cast<unsigned>(length), QV_ENDIAN_LITTLE);
    io::DataInputStream fromBuffer(make<io::ByteBufferInputStream>(buffer));
    EXPECT_EQ(read(fromBuffer), is) << hex;
}

using In = io::DataInputStream;

TEST(DataInputStreamTest, ReadsEveryForm) {
    expectRead(
        "00", [](In& in) { return in.readBool(); }, false);
    expectRead(
        "01", [](In& in) { return in.readBool(); }, true);
    expectRead(
        "80", [](In& in) { return in.readBool(); }, true);
    expectRead(
        "FE", [](In& in) { return in.readByte(); }, -2);
    expectRead(
        "4E2D", [](In& in) { return in.readChar16(); }, u'\u4E2D');
    expectRead(
        "FEDCBA98", [](In& in) { return in.readChar32(); }, 0xFEDCBA98u);
    expectRead(
        "FFFE", [](In& in) { return in.readInt16(); }, -2);
    expectRead(
        "1234", [](In& in) { return in.readInt16(); }, 0x1234);
    expectRead(
        "01020304", [](In& in) { return in.readInt32(); }, 0x01020304);
    expectRead(
        "FFFFFFFF", [](In& in) { return in.readInt32(); }, -1);
    expectRead(
        "0102030405060708", [](In& in) { return in.readInt64(); }, 0x0102030405060708);
    expectRead(
        "3FC00000", [](In& in) { return in.readFloat(); }, 1.5f);
    expectRead(
        "C000000000000000", [](In& in) { return in.readDouble(); }, -2.0);
}

TEST(DataInputStreamTest, ReadsEveryFormUnderItsOtherNames) {
    expectRead(
        "FFFE", [](In& in) { return in.readChar(); }, u'\xFFFE');
    expectRead(
        "FFFE", [](In& in) { return in.readShort(); }, -2);
    expectRead(
        "FFFE", [](In& in) { return in.readUnsignedShort(); }, 0xFFFE);
    expectRead(
        "FFFE", [](In& in) { return in.readUnsignedInt16(); }, 0xFFFE);
    expectRead(
        "FFFFFFFE", [](In& in) { return in.readInt(); }, -2);
    expectRead(
        "FFFFFFFE", [](In& in) { return in.readUnsignedInt(); }, 0xFFFFFFFEu);
    expectRead(
        "FFFFFFFE", [](In& in) { return in.readUnsignedInt32(); }, 0xFFFFFFFEu);
    expectRead(
        "FFFFFFFE", [](In& in) { return in.readLong(); }, -2);
    expectRead(
        "FFFFFFFE", [](In& in) { return in.readUnsignedLong(); }, 0xFFFFFFFEu);
    expectRead(
        "FE", [](In& in) { return in.readUnsignedByte(); }, 0xFE);
    expectRead(
        "FFFFFFFF00000001", [](In& in) { return in.readUnsignedInt64(); }, 0xFFFFFFFF00000001u);
}

TEST(DataInputStreamTest, KeptSignOfTheLowHalfFillsTheHighHalf) {
    expectRead(
        "0000000080000000", [](In& in) { return in.readInt64(); },
        static_cast<std::int64_t>(0xFFFFFFFF80000000));
    expectRead(
        "1234567880000001", [](In& in) { return in.readInt64(); },
        static_cast<std::int64_t>(0xFFFFFFFF80000001));
    expectRead(
        "123456787FFFFFFF", [](In& in) { return in.readInt64(); }, 0x123456787FFFFFFF);
    expectRead(
        "1234567880000001", [](In& in) { return in.readUnsignedInt64(); }, 0xFFFFFFFF80000001u);
}

TEST(DataInputStreamTest, KeptSignOfTheLowHalfSpoilsDoublesToo) {
    const auto array = make<io::ByteArrayOutputStream>();
    io::DataOutputStream out(array);
    out.writeDouble(0.1); // 3FB999999999999A
    const Bytes bytes = contents(*array);
    io::DataInputStream in(make<io::ByteArrayInputStream>(bytes.data(), 8));
    const double read = in.readDouble();
    EXPECT_EQ(std::bit_cast<std::uint64_t>(read), 0xFFFFFFFF9999999Au);
    EXPECT_TRUE(std::isnan(read));
}

TEST(DataInputStreamTest, BitPatternsOfNumbersThatAreNoneComeThrough) {
    expectRead(
        "7FA00001", [](In& in) { return std::bit_cast<std::uint32_t>(in.readFloat()); },
        0x7FA00001u);
    expectRead(
        "7FF0000000000001", [](In& in) { return std::bit_cast<std::uint64_t>(in.readDouble()); },
        0x7FF0000000000001u);
}

TEST(DataInputStreamTest, KeptTextsTakeNothingAndAreEmpty) {
    const auto source = make<CallsSource>(fromHex("0102"));
    io::DataInputStream in(source);
    EXPECT_EQ(in.readString(), u"");
    EXPECT_EQ(source->calls, "");
}

TEST(DataOutputStreamTest, KeptTextsWriteNothing) {
    const auto sink = make<CallsSink>();
    io::DataOutputStream out(sink);
    out.writeString(String(u"text"));
    EXPECT_EQ(sink->calls, "");
}

/// Every read of a number of that many bytes from a source that is one byte short.
void expectEnd(const std::function<void(In&)>& read, int width) {
    for (int there = 0; there < width; ++there) {
        const Bytes bytes(static_cast<std::size_t>(there), 1);
        const auto own = make<CallsSource>(bytes);
        io::DataInputStream fromOwn(own);
        EXPECT_EQ(support::thrownText<io::UnexpectedEOFException>([&] { read(fromOwn); }), "");
        EXPECT_EQ(own->at, there) << "what there was is passed";
        const auto array = make<io::ByteArrayInputStream>(bytes.data(), there);
        io::DataInputStream fromArray(array);
        EXPECT_THROW(read(fromArray), io::UnexpectedEOFException);
        EXPECT_EQ(array->read(), -1);
        const auto buffer =
            make<io::ByteBuffer>(bytes.data(), static_cast<unsigned>(there), QV_ENDIAN_LITTLE);
        io::DataInputStream fromBuffer(make<io::ByteBufferInputStream>(buffer));
        EXPECT_THROW(read(fromBuffer), io::UnexpectedEOFException);
        EXPECT_EQ(buffer->remaining(), 0u);
    }
}

TEST(DataInputStreamTest, TheEndWithinANumberThrows) {
    expectEnd([](In& in) { in.readBool(); }, 1);
    expectEnd([](In& in) { in.readByte(); }, 1);
    expectEnd([](In& in) { in.readUnsignedByte(); }, 1);
    expectEnd([](In& in) { in.readChar16(); }, 2);
    expectEnd([](In& in) { in.readInt16(); }, 2);
    expectEnd([](In& in) { in.readChar32(); }, 4);
    expectEnd([](In& in) { in.readInt32(); }, 4);
    expectEnd([](In& in) { in.readFloat(); }, 4);
    expectEnd([](In& in) { in.readInt64(); }, 8);
    expectEnd([](In& in) { in.readDouble(); }, 8);
}

TEST(DataInputStreamTest, AllBytesAreAskedForBeforeAnyIsLookedAt) {
    const auto source = make<CallsSource>(Bytes());
    io::DataInputStream in(source);
    EXPECT_THROW(in.readInt32(), io::UnexpectedEOFException);
    EXPECT_EQ(source->calls, "rrrr");
    EXPECT_THROW(in.readInt16(), io::UnexpectedEOFException);
    EXPECT_EQ(source->calls, "rrrrrr");
    EXPECT_THROW(in.readInt64(), io::UnexpectedEOFException);
    EXPECT_EQ(source->calls, "rrrrrrrrrr");
}

TEST(DataInputStreamTest, TheEndIsNoIoException) {
    io::DataInputStream in(make<CallsSource>(Bytes()));
    try {
        in.readByte();
        ADD_FAILURE() << "nothing thrown";
    } catch (const io::IoException&) {
        ADD_FAILURE() << "callers tell the two apart";
    } catch (const Exception& end) {
        EXPECT_EQ(end.getResult(), QV_E_FAIL);
    }
}

TEST(DataInputStreamTest, KeptBytesFromABufferedStreamEndAt0x80) {
    const Bytes bytes = fromHex("01028004");
    io::DataInputStream in(
        make<io::BufferedInputStream>(make<io::ByteArrayInputStream>(bytes.data(), 4)));
    EXPECT_THROW(in.readInt32(), io::UnexpectedEOFException);
    EXPECT_EQ(in.read(), -1);
}

TEST(DataInputStreamTest, ReadsFullyInAsManyBlocksAsItTakes) {
    const auto source = make<support::SlowInputStream>(support::sequence<signed char>(20), 7);
    source->emptyReads = 3;
    io::DataInputStream in(source);
    Bytes area(20);
    in.readFully(area.data(), 20);
    EXPECT_EQ(area, support::sequence<signed char>(20));
    EXPECT_EQ(source->requests, (std::vector<std::int32_t>{20, 20, 20, 20, 13, 6}));
}

TEST(DataInputStreamTest, ReadsNothingFullyForLengthsBelowOne) {
    const auto source = make<CallsSource>(Bytes());
    io::DataInputStream in(source);
    in.readFully(nullptr, 0);
    in.readFully(nullptr, -1);
    EXPECT_EQ(source->calls, "");
}

TEST(DataInputStreamTest, TheEndBeforeTheAreaIsFullThrows) {
    io::DataInputStream in(make<CallsSource>(fromHex("010203")));
    Bytes area(4);
    EXPECT_EQ(
        support::thrownText<io::UnexpectedEOFException>([&] { in.readFully(area.data(), 4); }), "");
    EXPECT_EQ(area[2], 3);
}

TEST(DataInputStreamTest, FailuresOfTheSourcePassThrough) {
    const auto source = make<CallsSource>(fromHex("0102030405"));
    source->failsAt = 2;
    io::DataInputStream in(source);
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.readInt32(); }), "the source failed");
    EXPECT_EQ(in.readInt16(), 0x0304);
}

TEST(DataStreamTest, FailOnFirstUseWithNothingToWrap) {
    io::DataInputStream in(nullptr);
    EXPECT_THROW(in.readByte(), IllegalStateException);
    io::DataOutputStream out(nullptr);
    EXPECT_THROW(out.writeByte(1), IllegalStateException);
}

TEST(DataStreamTest, NumbersComeBackThroughBufferedStreamsWhileTheirBytesAreSmall) {
    const auto array = make<io::ByteArrayOutputStream>();
    io::DataOutputStream out(make<io::BufferedOutputStream>(array.get(), 16));
    for (int i = 0; i < 100; ++i) {
        out.writeInt32(i);
    }
    out.flush();
    const Bytes bytes = contents(*array);
    ASSERT_EQ(bytes.size(), 400u);
    io::DataInputStream in(
        make<io::BufferedInputStream>(make<io::ByteArrayInputStream>(bytes.data(), 400), 16));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(in.readInt32(), i);
    }
}

/// Sees each number of four bytes.
class SeeingOutput : public io::DataOutputStream {
public:
    using DataOutputStream::DataOutputStream;
    void writeInt32(int value) override { seen.push_back(value); }
    void writeInt16(short value) override { seen.push_back(value); }

    std::vector<int> seen;
};

TEST(DataOutputStreamTest, OtherFormsAreMadeOfTheBasicOnes) {
    SeeingOutput out(make<CallsSink>());
    out.writeInt64(0x0000000100000002);
    out.writeChar32(3);
    out.writeFloat(0.0f);
    out.writeChar16(4);
    out.writeLong(5);
    EXPECT_EQ(out.seen, (std::vector<int>{1, 2, 3, 0, 4, 5}));
}

TEST(DataStreamTest, OperationsStandBehindThoseOfFiltersInOrder) {
    using support::slotOf;
    support::expectConsecutive(
        {slotOf(static_cast<void (Out::*)()>(&Out::close)), slotOf(&Out::writeBool),
         slotOf(&Out::writeByte), slotOf(&Out::writeChar16), slotOf(&Out::writeChar32),
         slotOf(&Out::writeInt16), slotOf(&Out::writeInt32), slotOf(&Out::writeInt64),
         slotOf(&Out::writeFloat), slotOf(&Out::writeDouble), slotOf(&Out::writeString)});
    support::expectConsecutive(
        {slotOf(&In::reset), slotOf(&In::readFully), slotOf(&In::readBool), slotOf(&In::readByte),
         slotOf(&In::readChar16), slotOf(&In::readChar32), slotOf(&In::readInt16),
         slotOf(&In::readInt32), slotOf(&In::readInt64), slotOf(&In::readFloat),
         slotOf(&In::readDouble), slotOf(&In::readString)});
}

} // namespace
