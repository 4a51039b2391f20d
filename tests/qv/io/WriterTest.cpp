#include "qv/io/Writer.h"

#include "qv/String.h"
#include "qv/io/NullWriter.h"
#include "qv/io/StringWriter.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

constexpr auto toUnits = support::unitsOf<char16_t>;

TEST(WriterTest, WritesTextsOfEveryForm) {
    support::BlockWriter writer;
    writer.write(String(u"one"));
    writer.write(u"two");
    writer.write(u"three", 2);
    writer.write(u'4');
    EXPECT_EQ(writer.blocks, (std::vector<std::vector<char16_t>>{toUnits("one"), toUnits("two"),
                                                                 toUnits("th"), toUnits("4")}));
}

TEST(WriterTest, WritesAStringByItsLength) {
    support::BlockWriter writer;
    writer.write(String(u"a\0b", 3));
    EXPECT_EQ(writer.all(), (std::vector<char16_t>{'a', 0, 'b'}));
}

TEST(WriterTest, WritesEmptyTexts) {
    support::BlockWriter writer;
    writer.write(String());
    writer.write(u"");
    EXPECT_TRUE(writer.all().empty());
}

/// A buffer that refuses to be read.
class LockedBuffer : public util::RWCharBuffer {
public:
    const char16_t* getReadLock() const override { throw IllegalStateException(); }
};

TEST(WriterTest, RaisesWhatTheTextsBufferRefuses) {
    support::BlockWriter writer;
    const Reference<LockedBuffer> buffer = make<LockedBuffer>();
    const String text(String::ACQUIRE_SHARE, buffer);
    EXPECT_EQ(support::thrownResult([&] { writer.write(text); }), QV_E_FAIL);
}

/// A buffer that cannot be given back.
class StuckBuffer : public util::RWCharBuffer {
public:
    StuckBuffer() : util::RWCharBuffer(u"ab", 3) {}
    void releaseReadLock() const override { throw IllegalStateException(); }
};

TEST(WriterTest, RaisesWhatTheTextsBufferRefusesAtItsRelease) {
    support::BlockWriter writer;
    const Reference<StuckBuffer> buffer = make<StuckBuffer>();
    const String text(String::ACQUIRE_SHARE, buffer);
    EXPECT_EQ(support::thrownResult([&] { writer.write(text); }), QV_E_FAIL);
    EXPECT_EQ(writer.all(), toUnits("ab")) << "it was written by then";
}

/// Tells how many read locks it has given.
class CountingBuffer : public util::RWCharBuffer {
public:
    CountingBuffer() : util::RWCharBuffer(u"ab", 3) {}
    const char16_t* getReadLock() const override {
        ++locks;
        return util::RWCharBuffer::getReadLock();
    }
    void releaseReadLock() const override { --locks; }
    mutable int locks = 0;
};

TEST(WriterTest, GivesTheTextsLockBack) {
    support::BlockWriter writer;
    const Reference<CountingBuffer> buffer = make<CountingBuffer>();
    const String text(String::ACQUIRE_SHARE, buffer);
    writer.write(text);
    EXPECT_EQ(buffer->locks, 0);
    writer.failures = 1;
    EXPECT_THROW(writer.write(text), io::IoException);
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_EQ(writer.all(), toUnits("ab"));
}

/// Only what a writer must have.
class BareWriter : public io::Writer {
public:
    using Writer::write;
    void write(const char16_t*, std::int32_t) override {}
};

TEST(WriterTest, FlushesAndClosesWithoutEffect) {
    BareWriter writer;
    EXPECT_NO_THROW(writer.flush());
    EXPECT_NO_THROW(writer.close());
    EXPECT_NO_THROW(writer.write(u"text"));
}

TEST(WriterTest, HasItsOperationsInOrder) {
    using io::Writer;
    const std::ptrdiff_t first = support::slotOf<void (Writer::*)(const String&)>(&Writer::write);
    support::expectConsecutive({
        first,
        support::slotOf<void (Writer::*)(const char16_t*)>(&Writer::write),
        support::slotOf<void (Writer::*)(const char16_t*, std::int32_t)>(&Writer::write),
        support::slotOf<void (Writer::*)(char16_t)>(&Writer::write),
        support::slotOf(&Writer::flush),
        support::slotOf(&Writer::close),
    });
    EXPECT_EQ(first, support::slotOf(&Object::toString) + 1);
}

TEST(StringWriterTest, IsEmptyAtFirst) { EXPECT_EQ(io::StringWriter().toString(), u""); }

TEST(StringWriterTest, CollectsWhatIsWritten) {
    io::StringWriter writer(100);
    writer.write(u"one ");
    writer.write(String(u"two "));
    writer.write(u"three", 2);
    writer.write(u'!');
    EXPECT_EQ(writer.toString(), u"one two th!");
    writer.flush();
    writer.close();
    writer.write(u"?");
    EXPECT_EQ(writer.toString(), u"one two th!?");
}

TEST(StringWriterTest, WritesNothingForLengthsBelowOne) {
    io::StringWriter writer;
    writer.write(u"text", 0);
    writer.write(u"text", -1);
    EXPECT_EQ(writer.toString(), u"");
}

TEST(StringWriterTest, GivesACopyOfItsText) {
    io::StringWriter writer;
    writer.write(u"before");
    const Object& object = writer;
    String text = object.toString();
    text.append(u" changed");
    writer.write(u" after");
    EXPECT_EQ(text, u"before changed");
    EXPECT_EQ(writer.toString(), u"before after");
}

TEST(StringWriterTest, KeepsUnitsOfEveryValue) {
    io::StringWriter writer;
    writer.write(u"\0\xD800\xFFFF", 3);
    EXPECT_EQ(support::units(writer.toString()), std::u16string(u"\0\xD800\xFFFF", 3));
}

TEST(NullWriterTest, DiscardsEverything) {
    io::NullWriter writer;
    writer.write(String(u"text"));
    writer.write(u"text");
    writer.write(static_cast<const char16_t*>(nullptr), 1000);
    writer.write(u't');
    writer.flush();
    writer.close();
    EXPECT_NO_THROW(writer.write(u"text"));
}

} // namespace
