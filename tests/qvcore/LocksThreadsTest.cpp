#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

using namespace support;

namespace {

/// Runs `work` in `count` threads and waits for them.
void inThreads(int count, const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back(work, index);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

template <typename Work>
std::int32_t inAnotherThread(Work work) {
    std::int32_t result = 1;
    std::thread([&] { result = work(); }).join();
    return result;
}

/// A state that threads reach, and that others wait for.
class Stage {
public:
    void reach() { ++count_; }
    void await(int count) const {
        while (count_.load() < count) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<int> count_ = 0;
};

struct Mutex {
    Mutex() { EXPECT_EQ(QVMutexCreate("mutex", 0, &handle), 0); }
    ~Mutex() { EXPECT_EQ(QVMutexDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

struct RWLock {
    RWLock() { EXPECT_EQ(QVRWLockCreate("lock", 0, &handle), 0); }
    ~RWLock() { EXPECT_EQ(QVRWLockDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

struct Event {
    Event() { EXPECT_EQ(QVEventCreate("event", 0, &handle), 0); }
    ~Event() { EXPECT_EQ(QVEventDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

struct Gate {
    Gate() { EXPECT_EQ(QVGateCreate("gate", 0, &handle), 0); }
    ~Gate() { EXPECT_EQ(QVGateDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

struct Semaphore {
    explicit Semaphore(std::uint32_t initial) {
        EXPECT_EQ(QVSemaphoreCreate(initial, "semaphore", 0, &handle), 0);
    }
    ~Semaphore() { EXPECT_EQ(QVSemaphoreDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

struct Condition {
    Condition() { EXPECT_EQ(QVConditionCreate("condition", 0, &handle), 0); }
    ~Condition() { EXPECT_EQ(QVConditionDestroy(handle), 0); }
    std::uint64_t handle = 0;
};

constexpr int rounds = 2000;

} // namespace

TEST(MutexThreadsTest, KeepsOthersOut) {
    const Mutex mutex;
    int value = 0;
    inThreads(4, [&](int) {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_EQ(QVMutexAcquire(mutex.handle), 0);
            EXPECT_EQ(QVMutexAcquire(mutex.handle), 0);
            ++value;
            EXPECT_EQ(QVMutexRelease(mutex.handle), 0);
            EXPECT_EQ(QVMutexRelease(mutex.handle), 0);
        }
    });
    EXPECT_EQ(value, 4 * rounds);
}

TEST(MutexThreadsTest, IsReleasedByItsHolderOnly) {
    const Mutex mutex;
    ASSERT_EQ(QVMutexAcquire(mutex.handle), 0);
    EXPECT_EQ(inAnotherThread([&] { return QVMutexRelease(mutex.handle); }), notOwner);
    EXPECT_EQ(inAnotherThread([&] { return QVMutexTryAcquire(mutex.handle); }), timedOut);
    EXPECT_EQ(inAnotherThread([&] { return QVMutexDestroy(mutex.handle); }), busy);
    EXPECT_EQ(QVMutexRelease(mutex.handle), 0);
    EXPECT_EQ(inAnotherThread([&] {
                  EXPECT_EQ(QVMutexTryAcquire(mutex.handle), 0);
                  return QVMutexRelease(mutex.handle);
              }),
              0);
}

TEST(MutexThreadsTest, WaitsForItsHolder) {
    const Mutex mutex;
    ASSERT_EQ(QVMutexAcquire(mutex.handle), 0);
    Stage started;
    bool isDone = false;
    std::thread waiter([&] {
        started.reach();
        EXPECT_EQ(QVMutexAcquire(mutex.handle), 0);
        EXPECT_TRUE(isDone);
        EXPECT_EQ(QVMutexRelease(mutex.handle), 0);
    });
    started.await(1);
    isDone = true;
    EXPECT_EQ(QVMutexRelease(mutex.handle), 0);
    waiter.join();
}

TEST(RWLockThreadsTest, LetsReadersInTogether) {
    const RWLock lock;
    Stage inside;
    inThreads(4, [&](int) {
        EXPECT_EQ(QVRWLockAcquireRead(lock.handle), 0);
        inside.reach();
        inside.await(4);
        EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
    });
}

TEST(RWLockThreadsTest, KeepsWritersAlone) {
    const RWLock lock;
    int value = 0;
    inThreads(4, [&](int index) {
        for (int round = 0; round < rounds; ++round) {
            if (index % 2 == 0) {
                EXPECT_EQ(QVRWLockAcquireWrite(lock.handle), 0);
                ++value;
                EXPECT_EQ(QVRWLockReleaseWrite(lock.handle), 0);
            } else {
                EXPECT_EQ(QVRWLockAcquireRead(lock.handle), 0);
                EXPECT_GE(value, 0);
                EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
            }
        }
    });
    EXPECT_EQ(value, 2 * rounds);
}

TEST(RWLockThreadsTest, IsReleasedByItsHoldersOnly) {
    const RWLock lock;
    ASSERT_EQ(QVRWLockAcquireWrite(lock.handle), 0);
    EXPECT_EQ(inAnotherThread([&] { return QVRWLockReleaseWrite(lock.handle); }), notOwner);
    EXPECT_EQ(inAnotherThread([&] { return QVRWLockTryAcquireRead(lock.handle); }), timedOut);
    EXPECT_EQ(QVRWLockReleaseWrite(lock.handle), 0);
    ASSERT_EQ(QVRWLockAcquireRead(lock.handle), 0);
    EXPECT_EQ(inAnotherThread([&] { return QVRWLockReleaseRead(lock.handle); }), notOwner);
    EXPECT_EQ(inAnotherThread([&] { return QVRWLockTryAcquireWrite(lock.handle); }), timedOut);
    EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
}

TEST(RWLockThreadsTest, HoldsNewReadersBackForAWaitingWriter) {
    const RWLock lock;
    ASSERT_EQ(QVRWLockAcquireRead(lock.handle), 0);
    bool hasWritten = false;
    std::thread writer([&] {
        EXPECT_EQ(QVRWLockAcquireWrite(lock.handle), 0);
        hasWritten = true;
        EXPECT_EQ(QVRWLockReleaseWrite(lock.handle), 0);
    });
    const auto tryRead = [&] {
        const std::int32_t result = QVRWLockTryAcquireRead(lock.handle);
        if (result == 0) {
            EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
        }
        return result;
    };
    while (inAnotherThread(tryRead) == 0) {
        // The writer does not wait yet.
    }
    EXPECT_EQ(QVRWLockAcquireRead(lock.handle), 0) << "a thread that reads already may go on";
    std::thread reader([&] {
        EXPECT_EQ(QVRWLockAcquireRead(lock.handle), 0);
        EXPECT_TRUE(hasWritten);
        EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
    });
    EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
    EXPECT_EQ(QVRWLockReleaseRead(lock.handle), 0);
    writer.join();
    reader.join();
}

TEST(EventThreadsTest, LetsOneWaiterGoForEachSignal) {
    const Event event;
    std::atomic<int> passed = 0;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; ++index) {
        waiters.emplace_back([&] {
            EXPECT_EQ(QVEventWait(event.handle), 0);
            ++passed;
        });
    }
    for (int signals = 1; signals <= 3; ++signals) {
        EXPECT_EQ(QVEventSignal(event.handle), 0);
        while (passed.load() < signals) {
            std::this_thread::yield();
        }
        EXPECT_EQ(passed.load(), signals);
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(QVEventTimedWait(event.handle, 0), timedOut);
}

TEST(EventThreadsTest, HandsOverWhatWasWrittenBeforeTheSignal) {
    const Event event;
    const Event answer;
    int value = 0;
    std::thread other([&] {
        for (int round = 1; round <= rounds; ++round) {
            EXPECT_EQ(QVEventTimedWait(event.handle, 0xFFFFFFFF), 0);
            EXPECT_EQ(value, round);
            EXPECT_EQ(QVEventSignal(answer.handle), 0);
        }
    });
    for (int round = 1; round <= rounds; ++round) {
        value = round;
        EXPECT_EQ(QVEventSignal(event.handle), 0);
        EXPECT_EQ(QVEventWait(answer.handle), 0);
    }
    other.join();
}

TEST(GateThreadsTest, LetsEveryWaiterPass) {
    const Gate gate;
    Stage started;
    int value = 0;
    std::thread opener([&] {
        started.await(3);
        value = 42;
        EXPECT_EQ(QVGateOpen(gate.handle), 0);
    });
    inThreads(3, [&](int index) {
        started.reach();
        EXPECT_EQ(index == 0 ? QVGateWait(gate.handle) : QVGateTimedWait(gate.handle, 0xFFFFFFFF),
                  0);
        EXPECT_EQ(value, 42);
    });
    opener.join();
}

TEST(SemaphoreThreadsTest, LetsInAsManyAsItCounts) {
    const Semaphore semaphore(2);
    std::atomic<int> inside = 0;
    inThreads(4, [&](int) {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_EQ(QVSemaphoreWait(semaphore.handle), 0);
            EXPECT_LE(++inside, 2);
            --inside;
            EXPECT_EQ(QVSemaphorePost(semaphore.handle), 0);
        }
    });
    std::int32_t value = 0;
    EXPECT_EQ(QVSemaphoreGetValue(semaphore.handle, &value), 0);
    EXPECT_EQ(value, 2);
}

TEST(SemaphoreThreadsTest, LosesNoPost) {
    const Semaphore semaphore(0);
    inThreads(4, [&](int index) {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_EQ(index % 2 == 0 ? QVSemaphorePost(semaphore.handle)
                                     : QVSemaphoreWait(semaphore.handle),
                      0);
        }
    });
    EXPECT_EQ(QVSemaphoreTryWait(semaphore.handle), timedOut);
}

TEST(ConditionThreadsTest, PassesValuesFromHandToHand) {
    const Condition condition;
    int value = 0;
    const auto take = [&](int remainder) {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
            while (value % 2 != remainder) {
                EXPECT_EQ(QVConditionWait(condition.handle), 0);
            }
            ++value;
            EXPECT_EQ(QVConditionSignal(condition.handle), 0);
            EXPECT_EQ(QVConditionRelease(condition.handle), 0);
        }
    };
    inThreads(2, take);
    EXPECT_EQ(value, 2 * rounds);
}

TEST(ConditionThreadsTest, WakesOneWaiterForASignalAndAllForABroadcast) {
    const Condition condition;
    int waiting = 0;
    int woken = 0;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 4; ++index) {
        waiters.emplace_back([&] {
            EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
            ++waiting;
            EXPECT_EQ(QVConditionWait(condition.handle), 0);
            ++woken;
            EXPECT_EQ(QVConditionRelease(condition.handle), 0);
        });
    }
    const auto await = [&](const int& counter, int count) {
        for (;;) {
            EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
            const bool isReached = counter == count;
            EXPECT_EQ(QVConditionRelease(condition.handle), 0);
            if (isReached) {
                return;
            }
            std::this_thread::yield();
        }
    };
    await(waiting, 4);
    EXPECT_EQ(QVConditionSignal(condition.handle), 0);
    await(woken, 1);
    EXPECT_EQ(QVConditionDestroy(condition.handle), busy) << "three still wait";
    EXPECT_EQ(QVConditionBroadcast(condition.handle), 0);
    await(woken, 4);
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(ConditionThreadsTest, WakesTheLongestWaiterFirst) {
    const Condition condition;
    int waiting = 0;
    std::vector<int> order;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; ++index) {
        waiters.emplace_back([&, index] {
            EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
            ++waiting;
            EXPECT_EQ(QVConditionWait(condition.handle), 0);
            order.push_back(index);
            EXPECT_EQ(QVConditionSignal(condition.handle), 0);
            EXPECT_EQ(QVConditionRelease(condition.handle), 0);
        });
        for (bool isWaiting = false; !isWaiting;) {
            EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
            isWaiting = waiting == index + 1;
            EXPECT_EQ(QVConditionRelease(condition.handle), 0);
        }
    }
    EXPECT_EQ(QVConditionSignal(condition.handle), 0);
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(ConditionThreadsTest, GivesItsWholeMutexUpForTheWait) {
    const Condition condition;
    bool isReady = false;
    EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
    EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
    std::thread other([&] {
        EXPECT_EQ(QVConditionAcquire(condition.handle), 0);
        isReady = true;
        EXPECT_EQ(QVConditionSignal(condition.handle), 0);
        EXPECT_EQ(QVConditionRelease(condition.handle), 0);
    });
    EXPECT_EQ(QVConditionTimedWait(condition.handle, 0xFFFFFFFF), 0);
    EXPECT_TRUE(isReady);
    EXPECT_EQ(QVConditionRelease(condition.handle), 0);
    EXPECT_EQ(QVConditionRelease(condition.handle), 0);
    EXPECT_EQ(QVConditionRelease(condition.handle), notOwner);
    other.join();
}

TEST(ConditionThreadsTest, IsReleasedByItsHolderOnly) {
    const Condition condition;
    ASSERT_EQ(QVConditionAcquire(condition.handle), 0);
    EXPECT_EQ(inAnotherThread([&] { return QVConditionRelease(condition.handle); }), notOwner);
    EXPECT_EQ(inAnotherThread([&] { return QVConditionWait(condition.handle); }), notOwner);
    EXPECT_EQ(QVConditionRelease(condition.handle), 0);
}
