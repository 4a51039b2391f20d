#include "qv/sync/Condition.h"

#include "tests/support/Abandoned.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace {

using namespace qv;

constexpr std::int32_t timedOut = static_cast<std::int32_t>(0x800705B4);

/// True if nobody holds the condition's mutex: another thread gets as far as waiting on it.
bool isReleased(sync::Condition& condition) {
    std::int32_t result = 0;
    std::thread([&] {
        const sync::Condition::Holder holder(condition);
        result = support::thrownResult([&] { condition.wait(0); });
    }).join();
    return result == timedOut;
}

TEST(ConditionTest, RaisesATimeout) {
    sync::Condition condition;
    const sync::Condition::Holder holder(condition);
    EXPECT_EQ(support::thrownResult([&] { condition.wait(10); }), timedOut);
    EXPECT_EQ(support::thrownText<ResultException>([&] { condition.wait(0); }), "");
}

TEST(ConditionTest, HasItsMutexBackBehindATimeout) {
    sync::Condition condition;
    condition.acquire();
    EXPECT_THROW(condition.wait(0), ResultException);
    EXPECT_NO_THROW(condition.release());
}

TEST(ConditionTest, RefusesAReleaseWithoutHolder) {
    sync::Condition condition("a name", 0);
    EXPECT_EQ(support::thrownResult([&] { condition.release(); }), QV_E_NOTOWNER);
}

TEST(ConditionTest, RefusesAWaitWithoutHolder) {
    sync::Condition condition;
    EXPECT_EQ(support::thrownResult([&] { condition.wait(); }), QV_E_NOTOWNER);
    EXPECT_EQ(support::thrownResult([&] { condition.wait(0); }), QV_E_NOTOWNER);
}

TEST(ConditionTest, ASignalWithoutWaiterLeavesNothingBehind) {
    sync::Condition condition;
    const sync::Condition::Holder holder(condition);
    condition.signal();
    condition.broadcast();
    EXPECT_EQ(support::thrownResult([&] { condition.wait(0); }), timedOut);
}

TEST(ConditionTest, IgnoresARefusalAtItsEnd) {
    support::Abandoned<sync::Condition> condition;
    condition->acquire();
    EXPECT_NO_THROW(condition.end());
}

TEST(ConditionThreadsTest, AHolderReleasesAtTheEndOfItsScope) {
    sync::Condition condition;
    { const sync::Condition::Holder holder(condition); }
    EXPECT_TRUE(isReleased(condition));
}

TEST(ConditionThreadsTest, AHolderReleasesWhenAnExceptionLeavesItsScope) {
    sync::Condition condition;
    EXPECT_THROW(
        {
            const sync::Condition::Holder holder(condition);
            throw std::runtime_error("on the way out");
        },
        std::runtime_error);
    EXPECT_TRUE(isReleased(condition));
}

TEST(ConditionThreadsTest, AHolderReleasesOnReturn) {
    sync::Condition condition;
    const auto leave = [&] {
        const sync::Condition::Holder holder(condition);
        return 1;
    };
    EXPECT_EQ(leave(), 1);
    EXPECT_TRUE(isReleased(condition));
}

TEST(ConditionThreadsTest, ASignalWakesAWaiter) {
    sync::Condition condition;
    bool isWaiting = false;
    bool isReady = false;
    std::thread waiter([&] {
        const sync::Condition::Holder holder(condition);
        isWaiting = true;
        condition.wait();
        EXPECT_TRUE(isReady);
    });
    for (bool isSignalled = false; !isSignalled; std::this_thread::yield()) {
        const sync::Condition::Holder holder(condition);
        if (isWaiting) {
            isReady = true;
            condition.signal();
            isSignalled = true;
        }
    }
    waiter.join();
}

TEST(ConditionThreadsTest, ASignalWakesOneOfTwoWaitersAndABroadcastTheOther) {
    sync::Condition condition;
    int waiting = 0;
    int woken = 0;
    const auto wait = [&] {
        const sync::Condition::Holder holder(condition);
        ++waiting;
        condition.wait();
        ++woken;
    };
    std::thread first(wait);
    std::thread second(wait);
    const auto await = [&](const int& counter, int count) {
        for (bool isReached = false; !isReached; std::this_thread::yield()) {
            const sync::Condition::Holder holder(condition);
            isReached = counter >= count;
        }
    };
    await(waiting, 2);
    condition.signal();
    await(woken, 1);
    {
        const sync::Condition::Holder holder(condition);
        EXPECT_EQ(support::thrownResult([&] { condition.wait(50); }), timedOut)
            << "time for another that was woken to go on";
        EXPECT_EQ(woken, 1);
    }
    condition.broadcast();
    first.join();
    second.join();
    EXPECT_EQ(woken, 2);
}

TEST(ConditionThreadsTest, ABroadcastWakesAllWaiters) {
    sync::Condition condition;
    int waiting = 0;
    bool isReady = false;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] {
            const sync::Condition::Holder holder(condition);
            ++waiting;
            while (!isReady) {
                condition.wait(0xFFFFFFFF);
            }
        });
    }
    for (bool allWait = false; !allWait; std::this_thread::yield()) {
        const sync::Condition::Holder holder(condition);
        allWait = waiting == 3;
    }
    {
        const sync::Condition::Holder holder(condition);
        isReady = true;
        condition.broadcast();
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(ConditionThreadsTest, AWaitGivesUpARecursivelyTakenMutexWhole) {
    sync::Condition condition;
    bool isReady = false;
    condition.acquire();
    condition.acquire();
    std::thread signaller([&] {
        const sync::Condition::Holder holder(condition);
        isReady = true;
        condition.signal();
    });
    while (!isReady) {
        condition.wait();
    }
    signaller.join();
    condition.release();
    EXPECT_NO_THROW(condition.release());
    EXPECT_TRUE(isReleased(condition));
}

} // namespace
