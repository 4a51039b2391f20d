#include "qv/Exceptions.h"
#include "qv/sync/Mutex.h"
#include "qv/util/SingletonImpl.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

using namespace qv;

namespace {

/// A lock that counts how often it is taken and given back.
class CountingLock : public sync::LockObject {
public:
    void wait() override {
        mutex_.wait();
        ++waits;
    }
    bool tryWait() override { return mutex_.tryWait(); }
    void signal() override {
        ++signals;
        mutex_.signal();
    }
    int waits = 0;
    int signals = 0;

private:
    sync::Mutex mutex_;
};

/// What one test makes one instance of: `Which` keeps the instances of the tests apart.
template <int Which>
struct Counted {
    Counted() { ++made; }
    ~Counted() { ++ended; }
    static inline std::atomic<int> made = 0;
    static inline std::atomic<int> ended = 0;
};

sync::LockObject* lockPointer = nullptr;

template <int Which>
using Single = util::Singleton<Counted<Which>, &lockPointer>;

/// The lock behind the pointer for the length of a scope.
class LockScope {
public:
    LockScope() { lockPointer = &lock; }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    ~LockScope() { lockPointer = nullptr; }
    CountingLock lock;
};

TEST(SingletonTest, IsMadeOnceUnderTheLockAndFoundWithoutIt) {
    using Kind = Counted<0>;
    LockScope scope;
    EXPECT_EQ(Kind::made, 0) << "nothing before the first use";
    Kind* const instance = Single<0>::getInstance();
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(scope.lock.waits, 1);
    EXPECT_EQ(scope.lock.signals, 1);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(Single<0>::getInstance(), instance);
    }
    EXPECT_EQ(scope.lock.waits, 1);
    EXPECT_EQ(scope.lock.signals, 1);
    EXPECT_EQ(Kind::made, 1);
    Single<0>::freeInstance();
}

TEST(SingletonTest, IsMadeAgainAfterItsEnd) {
    using Kind = Counted<1>;
    LockScope scope;
    Single<1>::getInstance();
    Single<1>::freeInstance();
    EXPECT_EQ(Kind::ended, 1);
    EXPECT_EQ(scope.lock.waits, 2);
    EXPECT_EQ(scope.lock.signals, 2);
    EXPECT_NE(Single<1>::getInstance(), nullptr);
    EXPECT_EQ(Kind::made, 2);
    EXPECT_EQ(scope.lock.waits, 3);
    Single<1>::freeInstance();
    EXPECT_EQ(Kind::ended, 2);
}

TEST(SingletonTest, EndOfNoInstanceTakesNoLock) {
    LockScope scope;
    Single<2>::freeInstance();
    EXPECT_EQ(scope.lock.waits, 0);
    EXPECT_EQ(Counted<2>::ended, 0);
}

TEST(SingletonTest, NothingIsMadeWithoutALock) {
    EXPECT_THROW(Single<3>::getInstance(), IllegalStateException);
    EXPECT_NO_THROW(Single<3>::freeInstance());
    EXPECT_EQ(Counted<3>::made, 0);
}

TEST(SingletonTest, InstanceIsFoundWithoutALockBehindThePointer) {
    Counted<4>* instance = nullptr;
    {
        LockScope scope;
        instance = Single<4>::getInstance();
    }
    EXPECT_EQ(Single<4>::getInstance(), instance);
    Single<4>::freeInstance();
    EXPECT_EQ(Counted<4>::ended, 0) << "nothing ends without the lock";
    LockScope scope;
    Single<4>::freeInstance();
    EXPECT_EQ(Counted<4>::ended, 1);
}

/// A kind whose first instance cannot be made.
struct Stubborn {
    Stubborn() {
        if (++attempts == 1) {
            throw std::bad_alloc();
        }
    }
    static inline int attempts = 0;
};

TEST(SingletonTest, FailedMakingGivesTheLockBackAndMayBeRepeated) {
    LockScope scope;
    using StubbornSingle = util::Singleton<Stubborn, &lockPointer>;
    EXPECT_THROW(StubbornSingle::getInstance(), std::bad_alloc);
    EXPECT_EQ(scope.lock.waits, 1);
    EXPECT_EQ(scope.lock.signals, 1);
    EXPECT_NE(StubbornSingle::getInstance(), nullptr);
    StubbornSingle::freeInstance();
}

TEST(SingletonThreadsTest, ThreadsThatRaceFindOneInstance) {
    constexpr int threads = 8;
    constexpr int rounds = 50;
    using Kind = Counted<5>;
    LockScope scope;
    for (int round = 1; round <= rounds; ++round) {
        std::latch start(threads);
        std::vector<Kind*> found(threads);
        std::vector<std::thread> running;
        for (Kind*& place : found) {
            running.emplace_back([&start, &place] {
                start.arrive_and_wait();
                place = Single<5>::getInstance();
            });
        }
        for (std::thread& thread : running) {
            thread.join();
        }
        EXPECT_EQ(found, std::vector<Kind*>(threads, Single<5>::getInstance()));
        EXPECT_EQ(Kind::made, round);
        Single<5>::freeInstance();
    }
    EXPECT_EQ(Kind::ended, rounds);
    EXPECT_EQ(scope.lock.waits, scope.lock.signals);
}

} // namespace
