#include "qv/sync/Event.h"

#include "qv/sync/detail/TimedWait.h"
#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"
#include "tests/support/Throws.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;

TEST(EventTest, IsNotSignalledAtFirst) {
    sync::Event event;
    EXPECT_FALSE(event.wait(0));
}

TEST(EventTest, ASignalLetsOneWaitPass) {
    sync::Event event("a name", 0);
    event.signal();
    EXPECT_TRUE(event.wait(0));
    EXPECT_FALSE(event.wait(0));
}

TEST(EventTest, SignalsDoNotAddUp) {
    sync::Event event;
    event.signal();
    event.signal();
    event.wait();
    EXPECT_FALSE(event.wait(0));
}

TEST(EventTest, IsNeverAcquiredByTryWait) {
    sync::Event event;
    EXPECT_FALSE(event.tryWait());
    event.signal();
    EXPECT_FALSE(event.tryWait());
    EXPECT_TRUE(event.wait(0)) << "tryWait has used the signal up";
}

TEST(EventTest, ReportsTheEndOfTheTime) {
    sync::Event event;
    EXPECT_FALSE(event.wait(5));
}

TEST(EventThreadsTest, HoldsAWaiterUntilItIsSignalled) {
    sync::Event event;
    sync::Event timedEvent;
    std::atomic<bool> isSignalled = false;
    std::thread waiter = support::startedThread([&] {
        event.wait();
        EXPECT_TRUE(isSignalled);
    });
    std::thread timedWaiter = support::startedThread([&] {
        EXPECT_TRUE(timedEvent.wait(0xFFFFFFFF));
        EXPECT_TRUE(isSignalled);
    });
    isSignalled = true;
    event.signal();
    timedEvent.signal();
    waiter.join();
    timedWaiter.join();
}

TEST(EventThreadsTest, WakesAWaiter) {
    sync::Event ask;
    sync::Event answer;
    std::thread waiter([&] {
        ask.wait();
        answer.signal();
    });
    ask.signal();
    EXPECT_TRUE(answer.wait(0xFFFFFFFF));
    waiter.join();
}

TEST(EventTest, HasItsOperationsInOrder) {
    using Timed = bool (sync::Event::*)(std::uint32_t);
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::Object::wait),
        support::slotOf(&sync::Object::tryWait),
        support::slotOf(static_cast<Timed>(&sync::Event::wait)),
        support::slotOf(&sync::Event::signal),
    });
}

TEST(TimedWaitTest, OnlyZeroIsAnAcquisition) {
    EXPECT_TRUE(sync::detail::acquiredInTime(0));
    EXPECT_FALSE(sync::detail::acquiredInTime(1));
    EXPECT_FALSE(sync::detail::acquiredInTime(0x7FFFFFFF));
}

TEST(TimedWaitTest, ATimeoutIsNoFailure) {
    EXPECT_FALSE(sync::detail::acquiredInTime(static_cast<std::int32_t>(0x800705B4)));
}

TEST(TimedWaitTest, EveryOtherFailureIsRaised) {
    for (const std::int32_t failure : {QV_E_FAIL, QV_E_INVALIDHANDLE, -1}) {
        EXPECT_EQ(support::thrownResult(
                      [&] { static_cast<void>(sync::detail::acquiredInTime(failure)); }),
                  failure);
    }
}

} // namespace
