// Storage that cannot grow stays as it was. On this system only: see AllocationTest.cpp. And not
// under the sanitizers: storage grows by `realloc`, which fails on request only outside of them.

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#    include "qv/Exceptions.h"
#    include "qv/Str1.h"
#    include "qv/String.h"
#    include "qv/util/RWBuffer.h"
#    include "tests/support/Allocations.h"
#    include "tests/support/Printing.h"

#    include <gtest/gtest.h>

using namespace qv;
using support::Allocations;

namespace {

/// Lets the one allocation of `grow` fail.
template <class Grow>
void expectRefused(Grow grow) {
    const Allocations allocations(1);
    EXPECT_THROW(grow(), std::bad_alloc);
}

void expectUnchangedWhereItCannotGrow(util::RWCharBuffer& buffer) {
    const char16_t* const units = buffer.getData();
    expectRefused([&] { buffer.ensureCapacity(5000); });
    EXPECT_EQ(buffer.getData(), units);
    EXPECT_EQ(buffer.getLength(), 4);
    EXPECT_EQ(std::u16string(buffer.getData(), 4), u"text");
    EXPECT_EQ(buffer.ensureCapacity(16), units) << "the room is the old room";
    EXPECT_NE(buffer.ensureCapacity(5000), nullptr);
    EXPECT_EQ(std::u16string(buffer.getData(), 4), u"text");
}

TEST(BufferAllocationTest, StorageThatCannotGrowStays) {
    util::RWCharBuffer buffer(u"text", 4);
    expectUnchangedWhereItCannotGrow(buffer);
}

TEST(BufferAllocationTest, StorageBehindItsBufferThatCannotGrowStays) {
    const auto buffer = util::RWCharBuffer::makeWhole(16);
    std::copy_n(u"text", 4, buffer->getWriteLock(4));
    buffer->releaseWriteLock(4);
    expectUnchangedWhereItCannotGrow(*buffer);
}

TEST(BufferAllocationTest, StringThatCannotGrowStays) {
    String text(u"text");
    const char16_t* const units = text.getData();
    expectRefused([&] { text.append(u'x', 5000); });
    EXPECT_EQ(text, u"text");
    EXPECT_EQ(text.getData(), units);
    while (text.getLength() < 14) { // an edit asks for a unit of room more than it needs
        text.append(u'x');
    }
    ASSERT_EQ(text.getData(), units);
    expectRefused([&] { text.append(u'y'); }); // a unit at a time grows on a path of its own
    EXPECT_EQ(text, u"textxxxxxxxxxx");
    EXPECT_EQ(text.getData(), units);
}

TEST(BufferAllocationTest, LightStringThatCannotGrowStays) {
    Str1 text = Str1Copy(u"text");
    const char16_t* const units = text.getData0();
    expectRefused([&] { text.append(u'x', 5000); });
    EXPECT_EQ(text.toQVString(), u"text");
    EXPECT_EQ(text.getData0(), units);
    while (text.getLength() < 16) {
        text.append(u'x');
    }
    ASSERT_EQ(text.getData0(), units);
    expectRefused([&] { text.append(u'y'); });
    EXPECT_EQ(text.toQVString(), u"textxxxxxxxxxxxx");
    EXPECT_EQ(text.getData0(), units);
    text.append(u'y', 5000);
    EXPECT_EQ(text.getLength(), 5016);
}

} // namespace

#endif
