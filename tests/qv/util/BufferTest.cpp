#include "qv/Exceptions.h"
#include "qv/util/BufferLocks.h"
#include "qv/util/ROBuffer.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/Printing.h"
#include "tests/support/Table.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::util;

namespace {

template <class Unit>
std::vector<Unit> numbered(int count) {
    std::vector<Unit> units;
    for (int i = 0; i < count; ++i) {
        units.push_back(static_cast<Unit>('A' + i % 26));
    }
    return units;
}

template <class Unit>
std::vector<Unit> content(const AbstractBuffer<Unit>& buffer) {
    return {buffer.getData(), buffer.getData() + buffer.getLength()};
}

/// Shows how much room a buffer has: the size below which it does not move its units.
template <class Unit>
bool holds(RWBuffer<Unit>& buffer, int capacity) {
    const Unit* const before = buffer.getData();
    const int length = buffer.getLength();
    const bool stayed = buffer.ensureCapacity(capacity) == before;
    buffer.freeExtra();
    EXPECT_EQ(buffer.getLength(), length);
    return stayed;
}

template <class Unit>
class RWBufferTest : public testing::Test {};
template <class Unit>
class ROBufferTest : public testing::Test {};
template <class Unit>
class BufferComponentTest : public testing::Test {};
using Units = testing::Types<signed char, char16_t>;
TYPED_TEST_SUITE(RWBufferTest, Units);
TYPED_TEST_SUITE(ROBufferTest, Units);
TYPED_TEST_SUITE(BufferComponentTest, Units);

TYPED_TEST(RWBufferTest, NewBufferHasNoStorage) {
    const RWBuffer<TypeParam> buffer;
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_EQ(buffer.getLength(), 0);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_TRUE(buffer.isWritable());
    EXPECT_EQ(RWBuffer<TypeParam>(0).getData(), nullptr);
}

TYPED_TEST(RWBufferTest, CapacityIsRoundedUpToSixteen) {
    for (const int asked : {1, 16}) {
        RWBuffer<TypeParam> buffer(asked);
        TypeParam* const data = buffer.getWriteLock(16);
        EXPECT_EQ(data, buffer.getData());
        data[15] = 1;
        EXPECT_EQ(buffer.ensureCapacity(8), data);
        EXPECT_EQ(buffer.getLength(), 0);
    }
    RWBuffer<TypeParam> more(17);
    const TypeParam* const data = more.getData();
    EXPECT_EQ(more.ensureCapacity(32), data);
}

TYPED_TEST(RWBufferTest, CopiesTheUnitsGiven) {
    const auto units = numbered<TypeParam>(20);
    const RWBuffer<TypeParam> buffer(units.data(), 20, 5);
    EXPECT_EQ(content(buffer), units);
    EXPECT_NE(buffer.getData(), units.data());
}

TYPED_TEST(RWBufferTest, LengthBelowOneGivesNone) {
    const auto units = numbered<TypeParam>(4);
    EXPECT_EQ(RWBuffer<TypeParam>(units.data(), 0, 8).getLength(), 0);
    EXPECT_NE(RWBuffer<TypeParam>(units.data(), 0, 8).getData(), nullptr);
    EXPECT_EQ(RWBuffer<TypeParam>(units.data(), -3, 0).getLength(), 0);
}

TYPED_TEST(RWBufferTest, CopyConstructorCopies) {
    const auto units = numbered<TypeParam>(40);
    RWBuffer<TypeParam> buffer(units.data(), 40, 40);
    RWBuffer<TypeParam> copy(buffer);
    EXPECT_EQ(content(copy), units);
    copy.getWriteLock(1)[0] = 1;
    copy.releaseWriteLock(-1);
    EXPECT_EQ(content(buffer), units);
}

TYPED_TEST(RWBufferTest, AssignmentCopiesAndSparesItself) {
    const auto units = numbered<TypeParam>(40);
    RWBuffer<TypeParam> buffer(units.data(), 40, 40);
    RWBuffer<TypeParam> other;
    other = buffer;
    EXPECT_EQ(content(other), units);
    const TypeParam* const data = other.getData();
    auto& same = other;
    other = same;
    EXPECT_EQ(other.getData(), data);
    other = RWBuffer<TypeParam>();
    EXPECT_EQ(other.getLength(), 0);
}

TYPED_TEST(RWBufferTest, ReadLockIsThePointer) {
    const RWBuffer<TypeParam> buffer(16);
    EXPECT_EQ(buffer.getReadLock(), buffer.getData());
    buffer.releaseReadLock();
}

TYPED_TEST(RWBufferTest, ReleaseSetsTheLengthUnlessNegative) {
    RWBuffer<TypeParam> buffer(16);
    buffer.getWriteLock(4);
    buffer.releaseWriteLock(4);
    EXPECT_EQ(buffer.getLength(), 4);
    buffer.releaseWriteLock(-1);
    EXPECT_EQ(buffer.getLength(), 4);
    buffer.releaseWriteLock(0);
    EXPECT_EQ(buffer.getLength(), 0);
    buffer.releaseWriteLock(1000);
    EXPECT_EQ(buffer.getLength(), 1000);
    buffer.releaseWriteLock(0);
}

TYPED_TEST(RWBufferTest, GrowingKeepsTheUnits) {
    const auto units = numbered<TypeParam>(10);
    RWBuffer<TypeParam> buffer(units.data(), 10);
    buffer.ensureCapacity(100000)[99999] = 1;
    EXPECT_EQ(content(buffer), units);
    EXPECT_NE(buffer.ensureCapacity(5), nullptr);
    EXPECT_EQ(content(buffer), units);
}

TYPED_TEST(RWBufferTest, FreeExtraOfAnEmptyBufferGivesTheStorageBack) {
    RWBuffer<TypeParam> buffer(100);
    buffer.freeExtra();
    EXPECT_EQ(buffer.getData(), nullptr);
    TypeParam* const data = buffer.getWriteLock(1);
    ASSERT_NE(data, nullptr);
    data[0] = 1;
    buffer.releaseWriteLock(1);
    EXPECT_EQ(buffer.getLength(), 1);
}

TYPED_TEST(RWBufferTest, FreeExtraKeepsTheLengthRoundedUp) {
    const auto units = numbered<TypeParam>(17);
    RWBuffer<TypeParam> buffer(units.data(), 17, 4000);
    buffer.freeExtra();
    EXPECT_EQ(content(buffer), units);
    const TypeParam* const data = buffer.getData();
    EXPECT_EQ(buffer.ensureCapacity(32), data);
}

TYPED_TEST(RWBufferTest, ImpossibleSizesAreOutOfMemory) {
    RWBuffer<TypeParam> buffer(numbered<TypeParam>(3).data(), 3);
    const TypeParam* const data = buffer.getData();
    EXPECT_THROW(buffer.ensureCapacity(std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(buffer.getData(), data);
    EXPECT_EQ(buffer.getLength(), 3);
    EXPECT_THROW(RWBuffer<TypeParam>(std::numeric_limits<int>::max()), std::bad_alloc);
    TypeParam* out = const_cast<TypeParam*>(data);
    EXPECT_EQ(buffer.GetWriteLock(std::numeric_limits<int>::max(), &out), QV_E_OUTOFMEMORY);
    EXPECT_EQ(out, nullptr);
}

TYPED_TEST(ROBufferTest, ReadsTheCallersMemory) {
    const auto units = numbered<TypeParam>(5);
    const ROBuffer<TypeParam> buffer(units.data(), 5, 99);
    EXPECT_EQ(buffer.getData(), units.data());
    EXPECT_EQ(buffer.getLength(), 5);
    EXPECT_EQ(buffer.getReadLock(), units.data());
    buffer.releaseReadLock();
    EXPECT_FALSE(buffer.isWritable());
    EXPECT_EQ(ROBuffer<TypeParam>().getData(), nullptr);
    EXPECT_EQ(ROBuffer<TypeParam>().getLength(), 0);
}

TYPED_TEST(ROBufferTest, CopySharesTheMemory) {
    const auto units = numbered<TypeParam>(5);
    const ROBuffer<TypeParam> buffer(units.data(), 5, 5);
    const ROBuffer<TypeParam> copy(buffer);
    EXPECT_EQ(copy.getData(), units.data());
    ROBuffer<TypeParam> assigned;
    assigned = buffer;
    EXPECT_EQ(assigned.getData(), units.data());
    EXPECT_EQ(assigned.getLength(), 5);
}

TYPED_TEST(ROBufferTest, NativeWriteSideThrows) {
    ROBuffer<TypeParam> buffer;
    EXPECT_EQ(support::thrownText<ReadOnlyException>([&] { buffer.getWriteLock(1); }), "");
    EXPECT_EQ(support::thrownText<ReadOnlyException>([&] { buffer.ensureCapacity(1); }), "");
    EXPECT_EQ(support::thrownText<ReadOnlyException>([&] { buffer.releaseWriteLock(1); }), "");
    EXPECT_NO_THROW(buffer.freeExtra());
}

TYPED_TEST(ROBufferTest, ComponentWriteSideIsNotProvided) {
    const auto units = numbered<TypeParam>(5);
    ROBuffer<TypeParam> buffer(units.data(), 5, 5);
    IBuffer<TypeParam>& face = buffer;
    TypeParam* out = const_cast<TypeParam*>(units.data());
    EXPECT_EQ(face.GetWriteLock(1, &out), QV_E_NOTIMPL);
    EXPECT_EQ(out, nullptr);
    out = const_cast<TypeParam*>(units.data());
    EXPECT_EQ(face.EnsureCapacity(1, &out), QV_E_NOTIMPL);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(face.ReleaseWriteLock(1), QV_E_NOTIMPL);
    EXPECT_EQ(face.ReleaseReadLock(), 0);
    EXPECT_EQ(face.FreeExtra(), 0);
    EXPECT_EQ(face.IsWritable(), 0);
    const TypeParam* data = nullptr;
    EXPECT_EQ(face.GetReadLock(&data), 0);
    EXPECT_EQ(data, units.data());
    EXPECT_EQ(face.GetLength(), 5);
    EXPECT_EQ(face.GetData(), units.data());
}

TYPED_TEST(BufferComponentTest, FaceRunsTheNativeTwins) {
    RWBuffer<TypeParam> buffer;
    IBuffer<TypeParam>& face = buffer;
    EXPECT_EQ(face.IsWritable(), 1);
    TypeParam* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(3, &data), 0);
    data[2] = 7;
    ASSERT_EQ(face.EnsureCapacity(300, &data), 0);
    data[299] = 9;
    EXPECT_EQ(face.ReleaseWriteLock(300), 0);
    EXPECT_EQ(face.GetLength(), 300);
    const TypeParam* read = nullptr;
    EXPECT_EQ(face.GetReadLock(&read), 0);
    EXPECT_EQ(read, face.GetData());
    EXPECT_EQ(read[2], 7);
    EXPECT_EQ(read[299], 9);
    EXPECT_EQ(face.ReleaseReadLock(), 0);
    EXPECT_EQ(face.ReleaseWriteLock(0), 0);
    EXPECT_EQ(face.FreeExtra(), 0);
    EXPECT_EQ(face.GetData(), nullptr);
}

TYPED_TEST(BufferComponentTest, TableHoldsTheOperationsInOrder) {
    struct Table {
        void* unknown[3];
        int (*getLength)(const void*);
        const TypeParam* (*getData)(const void*);
        std::int32_t (*getReadLock)(const void*, const TypeParam**);
        std::int32_t (*releaseReadLock)(const void*);
        short (*isWritable)(const void*);
        std::int32_t (*getWriteLock)(void*, int, TypeParam**);
        std::int32_t (*ensureCapacity)(void*, int, TypeParam**);
        std::int32_t (*releaseWriteLock)(void*, int);
        std::int32_t (*freeExtra)(void*);
    };
    RWBuffer<TypeParam> buffer;
    IBuffer<TypeParam>* const face = &buffer;
    const auto* const table = support::tableOf<Table>(face);
    TypeParam* data = nullptr;
    EXPECT_EQ(table->isWritable(face), 1);
    EXPECT_EQ(table->getWriteLock(face, 2, &data), 0);
    EXPECT_EQ(table->ensureCapacity(face, 20, &data), 0);
    data[0] = 65;
    EXPECT_EQ(table->releaseWriteLock(face, 1), 0);
    EXPECT_EQ(table->getLength(face), 1);
    const TypeParam* read = nullptr;
    EXPECT_EQ(table->getReadLock(face, &read), 0);
    EXPECT_EQ(table->releaseReadLock(face), 0);
    EXPECT_EQ(table->getData(face)[0], 65);
    EXPECT_EQ(table->freeExtra(face), 0);
    EXPECT_EQ(table->getLength(face), 1);
}

TYPED_TEST(BufferComponentTest, AnswersItsInterfaceAndThoseOfObjects) {
    RWBuffer<TypeParam> buffer;
    buffer.AddRef();
    void* out = nullptr;
    EXPECT_EQ(buffer.QueryInterface(util::detail::BufferInterface<TypeParam>::iid, &out), 0);
    EXPECT_EQ(out, static_cast<IBuffer<TypeParam>*>(&buffer));
    EXPECT_EQ(buffer.QueryInterface(IID_IQVComparable, &out), 0);
    EXPECT_EQ(out, static_cast<IQVComparable*>(&buffer));
    const GUID other = sizeof(TypeParam) == 1 ? IID_IQVCharBuffer : IID_IQVByteBuffer;
    EXPECT_EQ(buffer.QueryInterface(other, &out), QV_E_NOINTERFACE);
    EXPECT_EQ(static_cast<IBuffer<TypeParam>&>(buffer).QueryInterface(IID_IQVUnknown, &out), 0);
    EXPECT_EQ(out, static_cast<ComObject*>(&buffer));
    EXPECT_EQ(buffer.GetRefCount(), 4u);
}

/// A buffer whose locks fail on request.
class RefusingBuffer : public RWCharBuffer {
public:
    std::int32_t GetReadLock(const char16_t** data) const noexcept override {
        return refuseRead ? QV_E_BUSY : RWCharBuffer::GetReadLock(data);
    }
    std::int32_t GetWriteLock(int capacity, char16_t** data) noexcept override {
        return refuseWrite ? QV_E_BUSY : RWCharBuffer::GetWriteLock(capacity, data);
    }
    std::int32_t ReleaseWriteLock(int length) noexcept override {
        ++released;
        return refuseRelease ? QV_E_BUSY : RWCharBuffer::ReleaseWriteLock(length);
    }
    bool refuseRead = false;
    bool refuseWrite = false;
    bool refuseRelease = false;
    int released = 0;
};

TEST(QVCopyCharBufferTest, CopiesWithoutATerminator) {
    RWCharBuffer source(u"abc", 3);
    RWCharBuffer target(u"xyzuvw", 6);
    EXPECT_EQ(QVCopyCharBuffer(&target, &source), 0);
    EXPECT_EQ(content(target), (std::vector<char16_t>{u'a', u'b', u'c'}));
    EXPECT_EQ(target.getData()[3], u'u');
}

TEST(QVCopyCharBufferTest, CopiesAStringToAStringAndAnEmptyOne) {
    String source(u"text");
    String target;
    EXPECT_EQ(QVCopyCharBuffer(&target, &source), 0);
    EXPECT_EQ(target, u"text");
    String empty;
    EXPECT_EQ(QVCopyCharBuffer(&target, &empty), 0);
    EXPECT_EQ(target, u"");
    EXPECT_EQ(source, u"text");
}

TEST(QVCopyCharBufferTest, RefusedLocksThrowTheirResult) {
    RefusingBuffer target;
    RefusingBuffer source;
    source.refuseRead = true;
    EXPECT_EQ(support::thrownResult([&] { QVCopyCharBuffer(&target, &source); }), QV_E_BUSY);
    EXPECT_EQ(target.released, 1) << "the write lock is given back";
    source.refuseRead = false;
    target.refuseWrite = true;
    EXPECT_EQ(support::thrownResult([&] { QVCopyCharBuffer(&target, &source); }), QV_E_BUSY);
    target.refuseWrite = false;
    target.refuseRelease = true;
    EXPECT_EQ(support::thrownResult([&] { QVCopyCharBuffer(&target, &source); }), QV_E_BUSY);
    ROCharBuffer readOnly;
    EXPECT_EQ(support::thrownResult([&] { QVCopyCharBuffer(&readOnly, &source); }), QV_E_NOTIMPL);
}

TEST(BufferLocksTest, ScopeReleasesWithTheLengthSetLast) {
    RWCharBuffer buffer;
    {
        BufferWriteLock<char16_t> lock(buffer, 4);
        lock.getData()[0] = u'a';
        lock.ensureCapacity(100);
        EXPECT_EQ(lock.getData()[0], u'a');
        lock.setLength(1);
    }
    EXPECT_EQ(buffer.getLength(), 1);
    const BufferReadLock<char16_t> lock(buffer);
    EXPECT_EQ(lock.getData()[0], u'a');
}

TEST(BufferLocksDeathTest, FailedReleaseInADestructorEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    RefusingBuffer buffer;
    buffer.refuseRelease = true;
    EXPECT_DEATH({ BufferWriteLock<char16_t> lock(buffer, 4); }, "");
}

} // namespace
