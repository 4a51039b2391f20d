#include "qv/sync/Semaphore.h"

#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"
#include "tests/support/Throws.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;

TEST(SemaphoreTest, CountsItsFreePlaces) {
    sync::Semaphore semaphore(2, "a name", 0);
    EXPECT_EQ(semaphore.getValue(), 2);
    semaphore.wait();
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_EQ(semaphore.getValue(), 0);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreTest, IsNotAcquiredAtZero) {
    sync::Semaphore semaphore(0);
    EXPECT_FALSE(semaphore.tryWait());
    EXPECT_EQ(semaphore.getValue(), 0);
}

TEST(SemaphoreTest, MayGrowBeyondItsStart) {
    sync::Semaphore semaphore(0);
    semaphore.signal();
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 2);
}

TEST(SemaphoreTest, RaisesWhatThePlatformRefuses) {
    sync::Semaphore semaphore(0x7FFFFFFF);
    EXPECT_EQ(support::thrownResult([&] { semaphore.signal(); }), QV_E_TOOMANYPOSTS);
    EXPECT_EQ(semaphore.getValue(), 0x7FFFFFFF);
}

TEST(SemaphoreTest, RaisesAStartThatThePlatformRefuses) {
    EXPECT_EQ(support::thrownResult([] { sync::Semaphore semaphore(0x80000000); }),
              QV_E_INVALIDARG);
    EXPECT_EQ(support::thrownText<ResultException>([] { sync::Semaphore semaphore(0xFFFFFFFF); }),
              "");
}

TEST(SemaphoreThreadsTest, HoldsAWaiterAtZero) {
    sync::Semaphore semaphore(0);
    std::atomic<bool> isPosted = false;
    std::thread waiter = support::startedThread([&] {
        semaphore.wait();
        EXPECT_TRUE(isPosted);
    });
    isPosted = true;
    semaphore.signal();
    waiter.join();
    EXPECT_EQ(semaphore.getValue(), 0);
}

TEST(SemaphoreThreadsTest, WakesAWaiterOfAnotherThread) {
    sync::Semaphore asked(0);
    sync::Semaphore answered(0);
    std::thread waiter([&] {
        asked.wait();
        answered.signal();
    });
    asked.signal();
    answered.wait();
    waiter.join();
    EXPECT_EQ(asked.getValue(), 0);
    EXPECT_EQ(answered.getValue(), 0);
}

TEST(SemaphoreThreadsTest, LosesNoPost) {
    sync::Semaphore semaphore(0);
    std::thread poster([&] {
        for (int i = 0; i < 1000; ++i) {
            semaphore.signal();
        }
    });
    for (int i = 0; i < 1000; ++i) {
        semaphore.wait();
    }
    poster.join();
    EXPECT_EQ(semaphore.getValue(), 0);
}

TEST(SemaphoreTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::Object::wait),
        support::slotOf(&sync::Object::tryWait),
        support::slotOf(&sync::Semaphore::signal),
        support::slotOf(&sync::Semaphore::getValue),
    });
}

} // namespace
