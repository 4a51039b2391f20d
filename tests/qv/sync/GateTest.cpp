#include "qv/sync/Gate.h"

#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;

TEST(GateTest, IsClosedAtFirst) {
    sync::Gate gate;
    EXPECT_FALSE(gate.tryWait());
    EXPECT_FALSE(gate.wait(0));
    EXPECT_FALSE(gate.wait(5));
}

TEST(GateTest, StaysOpenForEveryWaiter) {
    sync::Gate gate("a name", 0);
    gate.open();
    EXPECT_TRUE(gate.tryWait());
    EXPECT_TRUE(gate.tryWait());
    EXPECT_TRUE(gate.wait(0));
    gate.wait();
}

TEST(GateTest, HoldsWaitersAgainOnceClosed) {
    sync::Gate gate;
    gate.open();
    gate.close();
    EXPECT_FALSE(gate.tryWait());
    EXPECT_FALSE(gate.wait(0));
}

TEST(GateThreadsTest, HoldsItsWaitersUntilItOpensAndLetsAllPass) {
    sync::Gate gate;
    std::atomic<bool> isOpen = false;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.push_back(support::startedThread([&] {
            gate.wait();
            EXPECT_TRUE(isOpen);
        }));
    }
    waiters.push_back(support::startedThread([&] {
        EXPECT_TRUE(gate.wait(0xFFFFFFFF));
        EXPECT_TRUE(isOpen);
    }));
    isOpen = true;
    gate.open();
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(GateTest, HasItsOperationsInOrder) {
    using Timed = bool (sync::Gate::*)(std::uint32_t);
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::Object::wait),
        support::slotOf(&sync::Object::tryWait),
        support::slotOf(static_cast<Timed>(&sync::Gate::wait)),
        support::slotOf(&sync::Gate::open),
        support::slotOf(&sync::Gate::close),
    });
}

} // namespace
