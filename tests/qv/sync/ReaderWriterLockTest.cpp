#include "qv/sync/ReaderWriterLock.h"

#include "qv/sync/ScopedLock.h"
#include "tests/support/Abandoned.h"
#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"
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
    while (isFreeForReader(lock)) {
        // The writer does not wait yet: a waiting one goes before new readers.
    }
    EXPECT_FALSE(isWritten);
    lock.signalShared();
    writer.join();
    EXPECT_TRUE(isWritten);
}

TEST(ReaderWriterLockThreadsTest, HoldsReadersBackUntilTheWriterIsGone) {
    sync::ReaderWriterLock lock;
    std::atomic<bool> isWritten = false;
    lock.wait();
    std::thread reader = support::startedThread([&] {
        lock.waitShared();
        EXPECT_TRUE(isWritten);
        lock.signalShared();
    });
    isWritten = true;
    lock.signal();
    reader.join();
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

TEST(ReaderWriterLockTest, RefusesAThreadThatWouldWaitForItself) {
    constexpr auto wouldDeadlock = static_cast<std::int32_t>(0x8007046B);
    sync::ReaderWriterLock lock;
    lock.wait();
    EXPECT_EQ(support::thrownResult([&] { lock.wait(); }), wouldDeadlock);
    EXPECT_EQ(support::thrownResult([&] { lock.waitShared(); }), wouldDeadlock);
    EXPECT_FALSE(lock.tryWait());
    EXPECT_FALSE(lock.tryWaitShared());
    lock.signal();
    lock.waitShared();
    EXPECT_EQ(support::thrownResult([&] { lock.wait(); }), wouldDeadlock);
    EXPECT_FALSE(lock.tryWait());
    lock.signalShared();
    EXPECT_TRUE(lock.tryWait());
    lock.signal();
}

TEST(ReaderWriterLockTest, RaisesWhereThePlatformRefusesItsEnd) {
    support::Abandoned<sync::ReaderWriterLock> lock;
    lock->waitShared();
    EXPECT_EQ(support::thrownResult([&] { lock.end(); }), QV_E_BUSY);
    support::Abandoned<sync::ReaderWriterLock, 1> written;
    written->wait();
    EXPECT_EQ(support::thrownResult([&] { written.end(); }), QV_E_BUSY);
}

TEST(ReaderWriterLockTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::LockObject::wait),
        support::slotOf(&sync::LockObject::tryWait),
        support::slotOf(&sync::LockObject::signal),
        support::slotOf(&sync::ReaderWriterLock::waitShared),
        support::slotOf(&sync::ReaderWriterLock::tryWaitShared),
        support::slotOf(&sync::ReaderWriterLock::signalShared),
    });
}

} // namespace
