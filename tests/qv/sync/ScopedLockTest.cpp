#include "qv/sync/ScopedLock.h"

#include "qv/Exceptions.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

/// Anything that a scope can hold: writes down what it is asked, and may refuse.
class WrittenLock {
public:
    void wait() { take("wait "); }
    void signal() { take("signal "); }
    void waitShared() { take("waitShared "); }
    void signalShared() { take("signalShared "); }

    std::string asked;
    bool refuses = false;

private:
    void take(const char* operation) {
        if (refuses) {
            throw ResultException(QV_E_BUSY);
        }
        asked += operation;
    }
};

TEST(ScopedLockTest, HoldsForTheLengthOfAScope) {
    WrittenLock lock;
    {
        const sync::ScopedLock held(lock);
        EXPECT_EQ(lock.asked, "wait ");
    }
    EXPECT_EQ(lock.asked, "wait signal ");
}

TEST(ScopedSharedLockTest, HoldsTheSharedSideForTheLengthOfAScope) {
    WrittenLock lock;
    {
        const sync::ScopedSharedLock held(lock);
        EXPECT_EQ(lock.asked, "waitShared ");
    }
    EXPECT_EQ(lock.asked, "waitShared signalShared ");
}

TEST(ScopedLockTest, IsGivenBackWhereTheScopeIsLeftByAnException) {
    WrittenLock lock;
    try {
        const sync::ScopedLock held(lock);
        throw IllegalStateException();
    } catch (const IllegalStateException&) {
    }
    EXPECT_EQ(lock.asked, "wait signal ");
}

TEST(ScopedLockTest, LockThatRefusesIsNotHeld) {
    WrittenLock lock;
    lock.refuses = true;
    EXPECT_EQ(support::thrownResult([&] { const sync::ScopedLock held(lock); }), QV_E_BUSY);
    EXPECT_EQ(support::thrownResult([&] { const sync::ScopedSharedLock held(lock); }), QV_E_BUSY);
    EXPECT_EQ(lock.asked, "");
}

TEST(ScopedLockDeathTest, FailedReleaseEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    WrittenLock lock;
    EXPECT_DEATH(
        {
            const sync::ScopedLock held(lock);
            lock.refuses = true;
        },
        "");
}

TEST(ScopedSharedLockDeathTest, FailedReleaseEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    WrittenLock lock;
    EXPECT_DEATH(
        {
            const sync::ScopedSharedLock held(lock);
            lock.refuses = true;
        },
        "");
}

} // namespace
