#include "qv/sync/ReaderWriterLock.h"

#include "qv/sync/ScopedLock.h"
#include "tests/support/Abandoned.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;

/// What another thread is answered, which gives back what it got.
bool isFreeForWriter(sync::ReaderWriterLock& lock) {
    bool acquired = false;
    std::thread([&] {
        acquired = lock.tryWait();
        if (acquired) {
            lock.signal();
        }
    }).join();
    return acquired;
}

bool isFreeForReader(sync::ReaderWriterLock& lock) {
    bool acquired = false;
    std::thread([&] {
        acquired = lock.tryWaitShared();
        if (acquired) {
            lock.signalShared();
        }
    }).join();
    return acquired;
}

TEST(ReaderWriterLockThreadsTest, LetsReadersInTogether) {
    sync::ReaderWriterLock lock;
    lock.waitShared();
    EXPECT_TRUE(isFreeForReader(lock));
    EXPECT_FALSE(isFreeForWriter(lock));
    lock.signalShared();
    EXPECT_TRUE(isFreeForWriter(lock));
}

TEST(ReaderWriterLockThreadsTest, LetsAWriterInAlone) {
    sync::ReaderWriterLock lock("a name", 0);
    lock.wait();
    EXPECT_FALSE(isFreeForReader(lock));
    EXPECT_FALSE(isFreeForWriter(lock));
    lock.signal();
    EXPECT_TRUE(isFreeForReader(lock));
    EXPECT_TRUE(isFreeForWriter(lock));
}

TEST(ReaderWriterLockThreadsTest, HoldsAWriterBackUntilTheLastReaderIsGone) {
    sync::ReaderWriterLock lock;
    std::atomic<bool> isWritten = false;
    lock.waitShared();
    std::thread writer([&] {
        lock.wait();
        isWritten = true;
        lock.signal();
    });
    EXPECT_FALSE(isWritten);
    lock.signalShared();
    writer.join();
    EXPECT_TRUE(isWritten);
}

TEST(ReaderWriterLockThreadsTest, ShowsReadersWholeWrites) {
    sync::ReaderWriterLock lock;
    int first = 0;
    int second = 0;
    std::thread writer([&] {
        for (int i = 0; i < 500; ++i) {
            const sync::ScopedLock guard(lock);
            ++first;
            ++second;
        }
    });
    std::thread reader([&] {
        for (int i = 0; i < 500; ++i) {
            const sync::ScopedSharedLock guard(lock);
            EXPECT_EQ(first, second);
        }
    });
    writer.join();
    reader.join();
    EXPECT_EQ(first, 500);
}

TEST(ReaderWriterLockTest, RefusesToGiveBackASideThatIsNotHeld) {
    sync::ReaderWriterLock lock;
    EXPECT_EQ(support::thrownResult([&] { lock.signal(); }), QV_E_NOTOWNER);
    EXPECT_EQ(support::thrownResult([&] { lock.signalShared(); }), QV_E_NOTOWNER);
    lock.wait();
    EXPECT_EQ(support::thrownResult([&] { lock.signalShared(); }), QV_E_NOTOWNER);
    lock.signal();
}

TEST(ReaderWriterLockTest, RaisesWhereThePlatformRefusesItsEnd) {
    support::Abandoned<sync::ReaderWriterLock> lock;
    lock->waitShared();
    EXPECT_EQ(support::thrownResult([&] { lock.end(); }), QV_E_BUSY);
}

TEST(ReaderWriterLockTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&sync::ReaderWriterLock::waitShared),
        support::slotOf(&sync::ReaderWriterLock::tryWaitShared),
        support::slotOf(&sync::ReaderWriterLock::signalShared),
    });
    EXPECT_EQ(support::slotOf(&sync::ReaderWriterLock::waitShared),
              support::slotOf(&sync::LockObject::signal) + 1);
}

} // namespace
