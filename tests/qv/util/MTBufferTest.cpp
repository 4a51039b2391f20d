#include "qv/util/MTBuffer.h"

#include "qv/util/BufferLocks.h"
#include "tests/support/StartedThread.h"
#include "tests/support/Throws.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <thread>

namespace {

using namespace qv;

/// A thread asked for a side of a lock that it would have to wait for by its own doing.
constexpr auto wouldDeadlock = static_cast<std::int32_t>(0x8007046B);

/// Shows the room.
template <class Unit>
class OpenBuffer : public util::MTBuffer<Unit> {
public:
    using util::MTBuffer<Unit>::MTBuffer;
    using util::MTBuffer<Unit>::getCapacity;
    Unit* ensureCapacity(int capacity) override {
        asked.push_back(capacity);
        return util::MTBuffer<Unit>::ensureCapacity(capacity);
    }
    /// What room was asked for.
    std::vector<int> asked;
};

template <class Unit>
class MTBufferTest : public testing::Test {
protected:
    using Buffer = util::MTBuffer<Unit>;

    static std::vector<Unit> contents(const Buffer& buffer) {
        return {buffer.getData(), buffer.getData() + buffer.getLength()};
    }

    const Unit units_[3] = {Unit{1}, Unit{2}, Unit{3}};
    const std::vector<Unit> expected_{Unit{1}, Unit{2}, Unit{3}};
};

template <class Unit>
class MTBufferThreadsTest : public MTBufferTest<Unit> {};

using Units = testing::Types<signed char, char16_t>;
TYPED_TEST_SUITE(MTBufferTest, Units);
TYPED_TEST_SUITE(MTBufferThreadsTest, Units);

TYPED_TEST(MTBufferTest, StartsEmpty) {
    util::MTBuffer<TypeParam> buffer;
    EXPECT_EQ(buffer.getLength(), 0);
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_TRUE(buffer.isWritable());
}

TYPED_TEST(MTBufferTest, MakesRoomAtConstruction) {
    util::MTBuffer<TypeParam> buffer(17);
    const TypeParam* const data = buffer.getData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(buffer.getLength(), 0);
    EXPECT_EQ(buffer.getWriteLock(32), data);
    buffer.releaseWriteLock(0);
}

TYPED_TEST(MTBufferTest, CopiesUnitsAtConstruction) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 100);
    EXPECT_EQ(this->contents(buffer), this->expected_);
}

TYPED_TEST(MTBufferTest, AWriterSetsTheLength) {
    util::MTBuffer<TypeParam> buffer;
    TypeParam* const data = buffer.getWriteLock(3);
    std::copy_n(this->units_, 3, data);
    buffer.releaseWriteLock(3);
    EXPECT_EQ(this->contents(buffer), this->expected_);
    buffer.getWriteLock(3);
    buffer.releaseWriteLock(-1);
    EXPECT_EQ(buffer.getLength(), 3);
}

TYPED_TEST(MTBufferTest, ACopyHasALockOfItsOwn) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    buffer.getWriteLock(3);
    util::MTBuffer<TypeParam> copy(buffer);
    EXPECT_EQ(copy.getReadLock()[2], TypeParam{3});
    copy.releaseReadLock();
    buffer.releaseWriteLock(-1);
}

TYPED_TEST(MTBufferTest, AssignmentTakesNoLockOfEitherSide) {
    util::MTBuffer<TypeParam> source(this->units_, 3, 0);
    util::MTBuffer<TypeParam> target;
    target = source;
    EXPECT_EQ(this->contents(target), this->expected_);

    source.getWriteLock(3);
    target.getReadLock();
    target = source;
    EXPECT_EQ(this->contents(target), this->expected_);
    target.releaseReadLock();
    source.releaseWriteLock(-1);
}

TYPED_TEST(MTBufferTest, AssignmentToItselfChangesNothing) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    const util::MTBuffer<TypeParam>& same = buffer;
    buffer = same;
    EXPECT_EQ(this->contents(buffer), this->expected_);
}

TYPED_TEST(MTBufferTest, AWriteLockMakesItsRoomThroughTheSlotOfEnsureCapacity) {
    OpenBuffer<TypeParam> buffer(this->units_, 3, 0);
    const TypeParam* const data = buffer.getWriteLock(40);
    EXPECT_EQ(data, buffer.getData());
    EXPECT_EQ(buffer.asked, std::vector<int>{40});
    EXPECT_EQ(buffer.getCapacity(), 48);
    buffer.releaseWriteLock(-1);
}

TYPED_TEST(MTBufferTest, AWriterMayGrowTheBufferUnderItsLock) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    buffer.getWriteLock(3);
    TypeParam* const grown = buffer.ensureCapacity(1000);
    grown[999] = TypeParam{9};
    EXPECT_EQ(grown[2], TypeParam{3});
    buffer.releaseWriteLock(1000);
    EXPECT_EQ(buffer.getLength(), 1000);
}

TYPED_TEST(MTBufferTest, FreeExtraCutsTheRoomAndGivesTheLockBack) {
    util::MTBuffer<TypeParam> buffer(1000);
    buffer.freeExtra();
    EXPECT_EQ(buffer.getData(), nullptr);
    buffer.getWriteLock(1);
    buffer.releaseWriteLock(0);
}

TYPED_TEST(MTBufferTest, FreeExtraCutsTheRoomToTheUnits) {
    OpenBuffer<TypeParam> buffer(this->units_, 3, 1000);
    EXPECT_EQ(buffer.getCapacity(), 1008);
    buffer.freeExtra();
    EXPECT_EQ(buffer.getCapacity(), 16);
    EXPECT_EQ(this->contents(buffer), this->expected_);
    util::IBuffer<TypeParam>& face = buffer;
    TypeParam* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(100, &data), QV_S_OK);
    ASSERT_EQ(face.ReleaseWriteLock(-1), QV_S_OK);
    EXPECT_EQ(buffer.getCapacity(), 112);
    EXPECT_EQ(face.FreeExtra(), QV_S_OK);
    EXPECT_EQ(buffer.getCapacity(), 16);
    EXPECT_EQ(this->contents(buffer), this->expected_);
}

TYPED_TEST(MTBufferTest, FreeExtraIsRefusedToAThreadThatHoldsALock) {
    OpenBuffer<TypeParam> buffer(this->units_, 3, 1000);
    util::IBuffer<TypeParam>& face = buffer;
    buffer.getReadLock();
    EXPECT_EQ(support::thrownResult([&] { buffer.freeExtra(); }), wouldDeadlock);
    EXPECT_EQ(face.FreeExtra(), wouldDeadlock);
    buffer.releaseReadLock();
    buffer.getWriteLock(3);
    EXPECT_EQ(support::thrownResult([&] { buffer.freeExtra(); }), wouldDeadlock);
    buffer.releaseWriteLock(-1);
    EXPECT_EQ(buffer.getCapacity(), 1008);
    EXPECT_EQ(this->contents(buffer), this->expected_);
}

TYPED_TEST(MTBufferTest, AComponentWriteLockWithoutMemoryStaysHeld) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    util::IBuffer<TypeParam>& face = buffer;
    TypeParam unit{};
    TypeParam* data = &unit;
    EXPECT_EQ(face.GetWriteLock(std::numeric_limits<int>::max(), &data), QV_E_OUTOFMEMORY);
    EXPECT_EQ(data, nullptr);
    const TypeParam* read = &unit;
    EXPECT_EQ(face.GetReadLock(&read), wouldDeadlock);
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(face.ReleaseWriteLock(-1), QV_S_OK);
    EXPECT_EQ(face.GetReadLock(&read), QV_S_OK);
    EXPECT_EQ(read, buffer.getData());
    EXPECT_EQ(face.ReleaseReadLock(), QV_S_OK);
}

TYPED_TEST(MTBufferThreadsTest, FreeExtraWaitsForReadersAndWriters) {
    for (const bool isWriting : {false, true}) {
        util::MTBuffer<TypeParam> buffer(1000);
        std::atomic<bool> isReleased = false;
        isWriting ? static_cast<void>(buffer.getWriteLock(0))
                  : static_cast<void>(buffer.getReadLock());
        std::thread other = support::startedThread([&] {
            buffer.freeExtra();
            EXPECT_TRUE(isReleased);
        });
        EXPECT_NE(buffer.getData(), nullptr);
        isReleased = true;
        isWriting ? buffer.releaseWriteLock(0) : buffer.releaseReadLock();
        other.join();
        EXPECT_EQ(buffer.getData(), nullptr);
    }
}

TYPED_TEST(MTBufferTest, ALockThatIsNotHeldIsNotReleased) {
    util::MTBuffer<TypeParam> buffer(16);
    EXPECT_EQ(support::thrownResult([&] { buffer.releaseReadLock(); }), QV_E_NOTOWNER);
    EXPECT_EQ(support::thrownResult([&] { buffer.releaseWriteLock(5); }), QV_E_NOTOWNER);
    EXPECT_EQ(buffer.getLength(), 5) << "the length is stored before the lock is given back";
}

TYPED_TEST(MTBufferTest, AnswersOnTheComponentFace) {
    util::MTBuffer<TypeParam> buffer;
    util::IBuffer<TypeParam>& face = buffer;
    EXPECT_EQ(face.IsWritable(), 1);
    TypeParam* data = nullptr;
    ASSERT_EQ(face.GetWriteLock(2, &data), QV_S_OK);
    data[0] = TypeParam{7};
    EXPECT_EQ(face.EnsureCapacity(100, &data), QV_S_OK);
    EXPECT_EQ(face.ReleaseWriteLock(1), QV_S_OK);
    const TypeParam* read = nullptr;
    ASSERT_EQ(face.GetReadLock(&read), QV_S_OK);
    EXPECT_EQ(read[0], TypeParam{7});
    EXPECT_EQ(face.ReleaseReadLock(), QV_S_OK);
    EXPECT_EQ(face.ReleaseReadLock(), QV_E_NOTOWNER);
    EXPECT_EQ(face.FreeExtra(), QV_S_OK);
    EXPECT_EQ(face.GetLength(), 1);
}

TYPED_TEST(MTBufferThreadsTest, AWriteLockWithoutMemoryStaysHeld) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    EXPECT_THROW(buffer.getWriteLock(std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(support::thrownResult([&] { buffer.getReadLock(); }), wouldDeadlock);
    std::atomic<bool> isRead = false;
    std::thread reader = support::startedThread([&] {
        const util::BufferReadLock<TypeParam> lock(buffer);
        isRead = true;
    });
    EXPECT_FALSE(isRead);
    buffer.releaseWriteLock(-1);
    reader.join();
    EXPECT_TRUE(isRead);
}

TYPED_TEST(MTBufferThreadsTest, ReadersHoldTheirLocksTogetherAndAWriterWaitsForBoth) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    std::promise<void> bothRead;
    std::promise<void> mayEnd;
    std::shared_future<void> ending = mayEnd.get_future().share();
    std::atomic<bool> isWritten = false;

    buffer.getReadLock();
    std::thread otherReader([&] {
        buffer.getReadLock();
        bothRead.set_value();
        ending.wait();
        EXPECT_FALSE(isWritten);
        buffer.releaseReadLock();
    });
    bothRead.get_future().wait();
    std::thread writer = support::startedThread([&] {
        buffer.getWriteLock(3);
        isWritten = true;
        buffer.releaseWriteLock(0);
    });
    buffer.releaseReadLock();
    EXPECT_FALSE(isWritten);
    mayEnd.set_value();
    otherReader.join();
    writer.join();
    EXPECT_TRUE(isWritten);
    EXPECT_EQ(buffer.getLength(), 0);
}

TYPED_TEST(MTBufferThreadsTest, TheUnlockedOperationsDoNotWaitForAWriter) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    const TypeParam* const data = buffer.getWriteLock(3);
    std::thread([&] {
        EXPECT_EQ(buffer.getLength(), 3);
        EXPECT_EQ(buffer.getData(), data);
        EXPECT_EQ(buffer.ensureCapacity(16), data);
    }).join();
    buffer.releaseWriteLock(-1);
}

TYPED_TEST(MTBufferThreadsTest, ACopyDoesNotWaitForAWriter) {
    util::MTBuffer<TypeParam> buffer(this->units_, 3, 0);
    buffer.getWriteLock(3);
    std::thread([&] {
        const util::MTBuffer<TypeParam> copy(buffer);
        EXPECT_EQ(this->contents(copy), this->expected_);
    }).join();
    buffer.releaseWriteLock(-1);
}

TYPED_TEST(MTBufferThreadsTest, WritersTakeTurns) {
    util::MTBuffer<TypeParam> buffer;
    const auto appendMany = [&] {
        for (int i = 0; i < 200; ++i) {
            buffer.getWriteLock(0);
            const int length = buffer.getLength();
            buffer.ensureCapacity(length + 1)[length] = TypeParam{1};
            buffer.releaseWriteLock(length + 1);
        }
    };
    std::thread first(appendMany);
    std::thread second(appendMany);
    first.join();
    second.join();
    EXPECT_EQ(this->contents(buffer), std::vector<TypeParam>(400, TypeParam{1}));
}

} // namespace
