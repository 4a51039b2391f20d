#include "qv/sync/Mutex.h"

#include "qv/sync/FakeMutex.h"
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

/// What `tryWait` answers another thread, which gives back what it got.
bool isFreeForOthers(sync::LockObject& lock) {
    bool acquired = false;
    std::thread([&] {
        acquired = lock.tryWait();
        if (acquired) {
            lock.signal();
        }
    }).join();
    return acquired;
}

TEST(MutexThreadsTest, KeepsOthersOutUntilItIsSignalled) {
    sync::Mutex mutex;
    mutex.wait();
    EXPECT_FALSE(isFreeForOthers(mutex));
    mutex.signal();
    EXPECT_TRUE(isFreeForOthers(mutex));
}

TEST(MutexThreadsTest, IsGivenBackAsOftenAsItWasTaken) {
    sync::Mutex mutex("a name", 0);
    mutex.wait();
    EXPECT_TRUE(mutex.tryWait());
    mutex.signal();
    EXPECT_FALSE(isFreeForOthers(mutex));
    mutex.signal();
    EXPECT_TRUE(isFreeForOthers(mutex));
}

TEST(MutexThreadsTest, HoldsAWaiterUntilItIsSignalled) {
    sync::Mutex mutex;
    std::atomic<bool> isSignalled = false;
    mutex.wait();
    std::thread waiter = support::startedThread([&] {
        mutex.wait();
        EXPECT_TRUE(isSignalled);
        mutex.signal();
    });
    isSignalled = true;
    mutex.signal();
    waiter.join();
}

TEST(MutexThreadsTest, SerialisesItsHolders) {
    sync::Mutex mutex;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                const sync::ScopedLock lock(mutex);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 4000);
}

TEST(MutexThreadsTest, TwoOfOneNameAreTwo) {
    sync::Mutex first("same", 0);
    sync::Mutex second("same", 0);
    first.wait();
    EXPECT_TRUE(isFreeForOthers(second));
    first.signal();
}

TEST(MutexTest, RefusesASignalWithoutHolder) {
    sync::Mutex mutex;
    EXPECT_EQ(support::thrownResult([&] { mutex.signal(); }), QV_E_NOTOWNER);
}

TEST(MutexTest, ThrowsWithoutText) {
    sync::Mutex mutex;
    EXPECT_EQ(support::thrownText<ResultException>([&] { mutex.signal(); }), "");
}

TEST(MutexTest, RaisesWhereThePlatformRefusesItsEnd) {
    support::Abandoned<sync::Mutex> mutex;
    mutex->wait();
    EXPECT_EQ(support::thrownResult([&] { mutex.end(); }), QV_E_BUSY);
}

TEST(MutexTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::LockObject::wait),
        support::slotOf(&sync::LockObject::tryWait),
        support::slotOf(&sync::LockObject::signal),
    });
}

TEST(FakeMutexThreadsTest, IsFreeHoweverOftenItIsTaken) {
    sync::FakeMutex mutex;
    mutex.wait();
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(mutex.tryWait());
    }
    EXPECT_TRUE(isFreeForOthers(mutex));
}

TEST(FakeMutexTest, TakesASignalWithoutHolder) {
    sync::FakeMutex mutex("a name", 0);
    EXPECT_NO_THROW(mutex.signal());
}

TEST(FakeMutexTest, StandsInForAMutex) {
    sync::FakeMutex mutex;
    sync::LockObject& lock = mutex;
    const sync::ScopedLock guard(lock);
    EXPECT_TRUE(lock.tryWait());
}

} // namespace
