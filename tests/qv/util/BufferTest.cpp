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

/// The room that a buffer has, which it tells its subclasses only.
template <class Unit>
int capacityOf(const RWBuffer<Unit>& buffer) {
    struct Open : RWBuffer<Unit> {
        static auto capacity() { return &Open::getCapacity; }
    };
    return (buffer.*Open::capacity())();
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
    const std::pair<int, int> roundings[] = {{0, 0},   {1, 16},  {15, 16}, {16, 16},
                                             {17, 32}, {32, 32}, {33, 48}, {1000, 1008}};
    for (const auto& [asked, given] : roundings) {
        RWBuffer<TypeParam> made(asked);
        EXPECT_EQ(capacityOf(made), given) << asked;
        EXPECT_EQ(made.getData() == nullptr, asked == 0) << asked;
        EXPECT_EQ(made.getLength(), 0);
        RWBuffer<TypeParam> grown;
        grown.ensureCapacity(asked);
        EXPECT_EQ(capacityOf(grown), given) << asked;
        RWBuffer<TypeParam> locked;
        locked.getWriteLock(asked);
        EXPECT_EQ(capacityOf(locked), given) << asked;
    }
}

TYPED_TEST(RWBufferTest, GrowthIsExactButForTheRounding) {
    RWBuffer<TypeParam> buffer(16);
    for (int asked = 17; asked < 1000; ++asked) {
        buffer.ensureCapacity(asked);
        EXPECT_EQ(capacityOf(buffer), (asked + 15) / 16 * 16);
    }
}

TYPED_TEST(RWBufferTest, EnsureCapacityNeverShrinks) {
    RWBuffer<TypeParam> buffer(100);
    TypeParam* const data = buffer.ensureCapacity(100);
    for (const int asked : {100, 16, 1, 0, -1}) {
        EXPECT_EQ(buffer.ensureCapacity(asked), data);
        EXPECT_EQ(buffer.getWriteLock(asked), data);
        EXPECT_EQ(capacityOf(buffer), 112);
    }
}

TYPED_TEST(RWBufferTest, ConstructorTakesTheGreaterOfLengthAndCapacity) {
    const auto units = numbered<TypeParam>(20);
    EXPECT_EQ(capacityOf(RWBuffer<TypeParam>(units.data(), 20, 5)), 32);
    EXPECT_EQ(capacityOf(RWBuffer<TypeParam>(units.data(), 20, 50)), 64);
    EXPECT_EQ(capacityOf(RWBuffer<TypeParam>(units.data(), 0, 8)), 16);
    EXPECT_EQ(capacityOf(RWBuffer<TypeParam>(units.data(), 0, 0)), 0);
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

TYPED_TEST(RWBufferTest, CopyHasAsMuchRoom) {
    const auto units = numbered<TypeParam>(3);
    const RWBuffer<TypeParam> buffer(units.data(), 3, 100);
    const RWBuffer<TypeParam> copy(buffer);
    EXPECT_EQ(capacityOf(copy), 112);
    EXPECT_EQ(content(copy), units);
    EXPECT_EQ(capacityOf(RWBuffer<TypeParam>(RWBuffer<TypeParam>(50))), 64);
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
    EXPECT_EQ(capacityOf(buffer), 4000);
    buffer.freeExtra();
    EXPECT_EQ(capacityOf(buffer), 32);
    EXPECT_EQ(content(buffer), units);
    buffer.releaseWriteLock(16);
    buffer.freeExtra();
    EXPECT_EQ(capacityOf(buffer), 16);
    buffer.releaseWriteLock(0);
    buffer.freeExtra();
    EXPECT_EQ(capacityOf(buffer), 0);
    EXPECT_EQ(buffer.getData(), nullptr);
}

/// Counts the calls that reach the virtual table.
template <class Unit>
class CountingBuffer : public RWBuffer<Unit> {
public:
    Unit* ensureCapacity(int capacity) override {
        asked.push_back(capacity);
        return RWBuffer<Unit>::ensureCapacity(capacity);
    }
    void releaseWriteLock(int length) override {
        released.push_back(length);
        RWBuffer<Unit>::releaseWriteLock(length);
    }
    std::vector<int> asked;
    std::vector<int> released;
};

TYPED_TEST(RWBufferTest, AssignmentGoesThroughTheVirtualOperations) {
    const auto units = numbered<TypeParam>(5);
    const RWBuffer<TypeParam> source(units.data(), 5, 40);
    CountingBuffer<TypeParam> buffer;
    RWBuffer<TypeParam>& base = buffer;
    base = source;
    EXPECT_EQ(buffer.asked, std::vector<int>{48});
    EXPECT_EQ(buffer.released, std::vector<int>{5});
    EXPECT_EQ(content(buffer), units);
    const RWBuffer<TypeParam>& same = buffer;
    base = same;
    EXPECT_EQ(buffer.asked.size(), 1u) << "itself is left alone";
    EXPECT_EQ(buffer.released.size(), 1u);
}

TYPED_TEST(RWBufferTest, WriteLockGoesThroughTheVirtualOperation) {
    CountingBuffer<TypeParam> buffer;
    buffer.getWriteLock(5);
    EXPECT_EQ(buffer.asked, std::vector<int>{5});
    EXPECT_TRUE(buffer.released.empty());
}

template <class Unit>
class WholeBufferTest : public testing::Test {
protected:
    /// A whole buffer with room for 20 units, which are in it.
    Reference<RWBuffer<Unit>> filled() {
        Reference buffer = RWBuffer<Unit>::makeWhole(20);
        std::copy(units.begin(), units.end(), buffer->getWriteLock(20));
        buffer->releaseWriteLock(20);
        return buffer;
    }
    const std::vector<Unit> units = numbered<Unit>(20);
};
TYPED_TEST_SUITE(WholeBufferTest, Units);

TYPED_TEST(WholeBufferTest, IsCountedAndRoundedAsOthers) {
    const Reference buffer = RWBuffer<TypeParam>::makeWhole(17);
    EXPECT_EQ(buffer->GetRefCount(), 1u);
    EXPECT_EQ(buffer->getLength(), 0);
    EXPECT_EQ(capacityOf(*buffer), 32);
    const TypeParam* const data = buffer->getData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(buffer->ensureCapacity(32), data);
}

TYPED_TEST(WholeBufferTest, GrowthBeyondItsFirstStorageKeepsTheUnits) {
    const auto buffer = this->filled();
    const TypeParam* const first = buffer->getData();
    TypeParam* const grown = buffer->ensureCapacity(33);
    EXPECT_NE(grown, first);
    EXPECT_EQ(capacityOf(*buffer), 48);
    grown[47] = 1;
    EXPECT_EQ(content(*buffer), this->units);
    buffer->ensureCapacity(5000)[4999] = 1;
    EXPECT_EQ(capacityOf(*buffer), 5008);
    EXPECT_EQ(content(*buffer), this->units);
    buffer->freeExtra();
    EXPECT_EQ(capacityOf(*buffer), 32);
    EXPECT_EQ(content(*buffer), this->units);
}

TYPED_TEST(WholeBufferTest, FreeExtraCutsToTheLength) {
    const auto buffer = this->filled();
    buffer->releaseWriteLock(3);
    buffer->freeExtra();
    EXPECT_EQ(capacityOf(*buffer), 16);
    const std::vector<TypeParam> start(this->units.begin(), this->units.begin() + 3);
    EXPECT_EQ(content(*buffer), start);
    buffer->ensureCapacity(17)[16] = 1;
    EXPECT_EQ(capacityOf(*buffer), 32);
    EXPECT_EQ(content(*buffer), start);
}

TYPED_TEST(WholeBufferTest, FreeExtraOfAnEmptyOneLeavesNoStorage) {
    const Reference buffer = RWBuffer<TypeParam>::makeWhole(100);
    buffer->freeExtra();
    EXPECT_EQ(buffer->getData(), nullptr);
    EXPECT_EQ(capacityOf(*buffer), 0);
    buffer->getWriteLock(1)[0] = 1;
    buffer->releaseWriteLock(1);
    EXPECT_EQ(capacityOf(*buffer), 16);
    EXPECT_EQ(buffer->getData()[0], 1);
}

TYPED_TEST(WholeBufferTest, CopiesHaveStorageOfTheirOwn) {
    const auto buffer = this->filled();
    const RWBuffer<TypeParam> copy(*buffer);
    RWBuffer<TypeParam> assigned;
    assigned = *buffer;
    buffer->getWriteLock(1)[0] = 1;
    EXPECT_EQ(content(copy), this->units);
    EXPECT_EQ(content(assigned), this->units);
}

TYPED_TEST(WholeBufferTest, ImpossibleSizesAreOutOfMemory) {
    EXPECT_THROW(RWBuffer<TypeParam>::makeWhole(std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_THROW(RWBuffer<TypeParam>::makeWhole(-1), std::bad_alloc);
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

/// A buffer whose native operations throw.
template <class Unit>
class ThrowingBuffer : public RWBuffer<Unit> {
public:
    const Unit* getReadLock() const override { throw ResultException(QV_E_BUSY); }
    void releaseReadLock() const override { throw Exception(); }
    Unit* getWriteLock(int) override { throw OutOfMemoryException(); }
    Unit* ensureCapacity(int) override { throw std::bad_alloc(); }
    void releaseWriteLock(int) override { throw ResultException(QV_E_TIMEOUT); }
    void freeExtra() override { throw 1; }
};

TYPED_TEST(BufferComponentTest, WhatTheNativeTwinsThrowBecomesResults) {
    ThrowingBuffer<TypeParam> buffer;
    IBuffer<TypeParam>& face = buffer;
    TypeParam unit = 0;
    const TypeParam* read = &unit;
    EXPECT_EQ(face.GetReadLock(&read), QV_E_BUSY);
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(face.ReleaseReadLock(), QV_E_FAIL);
    TypeParam* data = &unit;
    EXPECT_EQ(face.GetWriteLock(1, &data), QV_E_OUTOFMEMORY);
    EXPECT_EQ(data, nullptr);
    data = &unit;
    EXPECT_EQ(face.EnsureCapacity(1, &data), QV_E_OUTOFMEMORY);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(face.ReleaseWriteLock(1), QV_E_TIMEOUT);
    EXPECT_EQ(face.FreeExtra(), QV_E_FAIL);
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
    std::int32_t ReleaseReadLock() const noexcept override {
        return refuseReadRelease ? QV_E_BUSY : RWCharBuffer::ReleaseReadLock();
    }
    bool refuseRead = false;
    bool refuseReadRelease = false;
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

/// A buffer that writes its locks down, and whose release succeeds with a number of its own.
class TracedBuffer : public RWCharBuffer {
public:
    explicit TracedBuffer(std::string& trace) : trace_(trace) {}
    std::int32_t GetReadLock(const char16_t** data) const noexcept override {
        trace_ += "read ";
        return RWCharBuffer::GetReadLock(data);
    }
    std::int32_t ReleaseReadLock() const noexcept override {
        trace_ += "read-end ";
        return RWCharBuffer::ReleaseReadLock();
    }
    std::int32_t GetWriteLock(int capacity, char16_t** data) noexcept override {
        trace_ += "write(" + std::to_string(capacity) + ") ";
        return RWCharBuffer::GetWriteLock(capacity, data);
    }
    std::int32_t ReleaseWriteLock(int length) noexcept override {
        trace_ += "write-end(" + std::to_string(length) + ")";
        static_cast<void>(RWCharBuffer::ReleaseWriteLock(length));
        return 7;
    }

private:
    std::string& trace_;
};

TEST(QVCopyCharBufferTest, LocksTheTargetAroundTheSourceAndGivesItsReleasesResult) {
    std::string trace;
    TracedBuffer source(trace);
    TracedBuffer target(trace);
    std::copy_n(u"abc", 3, source.RWCharBuffer::getWriteLock(3));
    source.RWCharBuffer::releaseWriteLock(3);
    EXPECT_EQ(QVCopyCharBuffer(&target, &source), 7);
    EXPECT_EQ(trace, "write(3) read read-end write-end(3)");
    EXPECT_EQ(content(target), content(source));
}

TEST(QVCopyCharBufferTest, FailureLeavesTheLengthOfTheTarget) {
    String target(u"a\0b", 3);
    RefusingBuffer source;
    source.refuseRead = true;
    EXPECT_EQ(support::thrownResult([&] { QVCopyCharBuffer(&target, &source); }), QV_E_BUSY);
    EXPECT_EQ(target.getLength(), 3);
    EXPECT_EQ(target, String(u"a\0b", 3));
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

TEST(BufferLocksDeathTest, FailedReleaseOfAReaderEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    RefusingBuffer buffer;
    buffer.refuseReadRelease = true;
    EXPECT_DEATH({ const BufferReadLock<char16_t> lock(buffer); }, "");
}

TEST(BufferLocksTest, EarlyReleaseThrowsItsResult) {
    RefusingBuffer buffer;
    buffer.refuseReadRelease = true;
    BufferReadLock<char16_t> reading(buffer);
    EXPECT_EQ(support::thrownResult([&] { reading.release(); }), QV_E_BUSY);
    buffer.refuseRelease = true;
    BufferWriteLock<char16_t> writing(buffer, 4);
    EXPECT_EQ(support::thrownResult([&] { writing.release(); }), QV_E_BUSY);
}

/// A buffer of "abc" with its terminator.
RefusingBuffer* newTextBuffer() {
    auto* const buffer = new RefusingBuffer;
    std::copy_n(u"abc", 4, buffer->ensureCapacity(4));
    buffer->RWCharBuffer::releaseWriteLock(4);
    return buffer;
}

TEST(StringDeathTest, FailedReadReleaseOfTheInnerBufferEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto* const buffer = newTextBuffer();
    const String text(String::ACQUIRE_SHARE, buffer);
    EXPECT_TRUE(text.equals(u"abc"));
    buffer->refuseReadRelease = true;
    EXPECT_DEATH({ static_cast<void>(text.equals(u"abc")); }, "");
}

TEST(StringDeathTest, FailedWriteReleaseOfTheInnerBufferEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto* const buffer = newTextBuffer();
    String text(String::ACQUIRE_SHARE, buffer);
    text.append(u"d");
    EXPECT_EQ(text, u"abcd");
    buffer->refuseRelease = true;
    EXPECT_DEATH({ text.append(u"e"); }, "");
}

} // namespace
