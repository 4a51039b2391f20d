#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"

#include <chrono>
#include <gtest/gtest.h>

using namespace support;

namespace {

/// A handle that its family's Destroy must take back at the end.
class Owned {
public:
    using Destroy = std::int32_t (*)(std::uint64_t) noexcept;

    Owned(std::uint64_t handle, Destroy destroy) : handle_(handle), destroy_(destroy) {}
    ~Owned() { EXPECT_EQ(destroy_(handle_), 0); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    operator std::uint64_t() const { return handle_; }

private:
    std::uint64_t handle_;
    Destroy destroy_;
};

using Create = std::int32_t (*)(const char*, std::uint32_t, std::uint64_t*) noexcept;

std::uint64_t create(Create operation, const char* name = nullptr) {
    std::uint64_t handle = 0;
    EXPECT_EQ(operation(name, 0, &handle), 0);
    EXPECT_NE(handle, 0u);
    return handle;
}

std::uint64_t createSemaphore(std::uint32_t initial) {
    std::uint64_t handle = 0;
    EXPECT_EQ(QVSemaphoreCreate(initial, nullptr, 0, &handle), 0);
    return handle;
}

std::int32_t createSemaphoreOfNone(const char* name, std::uint32_t flags,
                                   std::uint64_t* handle) noexcept {
    return QVSemaphoreCreate(0, name, flags, handle);
}

/// The milliseconds that `work` takes.
template <typename Work>
long long timeOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto taken = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::milliseconds>(taken).count();
}

struct Family {
    const char* name;
    Create create;
    Owned::Destroy destroy;
    std::vector<std::int32_t (*)(std::uint64_t) noexcept> operations;
};

const Family families[] = {
    {"Mutex",
     QVMutexCreate,
     QVMutexDestroy,
     {QVMutexAcquire, QVMutexTryAcquire, QVMutexRelease, QVMutexDestroy}},
    {"RWLock",
     QVRWLockCreate,
     QVRWLockDestroy,
     {QVRWLockAcquireWrite, QVRWLockTryAcquireWrite, QVRWLockReleaseWrite, QVRWLockAcquireRead,
      QVRWLockTryAcquireRead, QVRWLockReleaseRead, QVRWLockDestroy}},
    {"Event", QVEventCreate, QVEventDestroy, {QVEventWait, QVEventSignal, QVEventDestroy}},
    {"Gate",
     QVGateCreate,
     QVGateDestroy,
     {QVGateWait, QVGateTryWait, QVGateOpen, QVGateClose, QVGateDestroy}},
    {"Semaphore",
     createSemaphoreOfNone,
     QVSemaphoreDestroy,
     {QVSemaphoreWait, QVSemaphoreTryWait, QVSemaphorePost, QVSemaphoreDestroy}},
    {"Condition",
     QVConditionCreate,
     QVConditionDestroy,
     {QVConditionAcquire, QVConditionRelease, QVConditionSignal, QVConditionBroadcast,
      QVConditionWait, QVConditionDestroy}},
};

} // namespace

class LockFamilyTest : public testing::TestWithParam<Family> {};

TEST_P(LockFamilyTest, IsMadeAndEnded) {
    std::uint64_t handle = 0;
    ASSERT_EQ(GetParam().create(nullptr, 0, &handle), 0);
    EXPECT_NE(handle, 0u);
    EXPECT_EQ(GetParam().destroy(handle), 0);
}

TEST_P(LockFamilyTest, TakesALongNameAndTheSameNameTwice) {
    const std::string name(1000, 'n');
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    ASSERT_EQ(GetParam().create(name.c_str(), 0, &first), 0);
    ASSERT_EQ(GetParam().create(name.c_str(), 0, &second), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(GetParam().destroy(first), 0);
    EXPECT_EQ(GetParam().destroy(second), 0);
}

TEST_P(LockFamilyTest, RefusesANullOutput) {
    EXPECT_EQ(GetParam().create(nullptr, 0, nullptr), nullOutput);
}

TEST_P(LockFamilyTest, RefusesTheNullHandle) {
    for (const auto operation : GetParam().operations) {
        EXPECT_EQ(operation(0), invalidHandle);
    }
}

TEST_P(LockFamilyTest, RefusesTheHandleOfAnotherFamily) {
    for (const Family& other : families) {
        if (std::string(other.name) == GetParam().name) {
            continue;
        }
        const Owned foreign(create(other.create), other.destroy);
        for (const auto operation : GetParam().operations) {
            EXPECT_EQ(operation(foreign), invalidHandle) << other.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, LockFamilyTest, testing::ValuesIn(families),
                         [](const auto& family) { return family.param.name; });

TEST(TimedWaitTest, RefusesTheNullHandle) {
    EXPECT_EQ(QVEventTimedWait(0, 0), invalidHandle);
    EXPECT_EQ(QVGateTimedWait(0, 0), invalidHandle);
    EXPECT_EQ(QVConditionTimedWait(0, 0), invalidHandle);
    std::int32_t value = 7;
    EXPECT_EQ(QVSemaphoreGetValue(0, &value), invalidHandle);
    EXPECT_EQ(value, 7);
}

TEST(MutexTest, IsRecursive) {
    const Owned mutex(create(QVMutexCreate), QVMutexDestroy);
    EXPECT_EQ(QVMutexAcquire(mutex), 0);
    EXPECT_EQ(QVMutexAcquire(mutex), 0);
    EXPECT_EQ(QVMutexTryAcquire(mutex), 0);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
    EXPECT_EQ(QVMutexRelease(mutex), notOwner);
}

TEST(MutexTest, CannotBeReleasedWhenItIsFree) {
    const Owned mutex(create(QVMutexCreate), QVMutexDestroy);
    EXPECT_EQ(QVMutexRelease(mutex), notOwner);
    EXPECT_EQ(QVMutexTryAcquire(mutex), 0);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
}

TEST(MutexTest, CannotBeEndedWhileItIsHeld) {
    const Owned mutex(create(QVMutexCreate), QVMutexDestroy);
    EXPECT_EQ(QVMutexAcquire(mutex), 0);
    EXPECT_EQ(QVMutexDestroy(mutex), busy);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
}

TEST(RWLockTest, IsTakenForWritingAlone) {
    const Owned lock(create(QVRWLockCreate), QVRWLockDestroy);
    EXPECT_EQ(QVRWLockAcquireWrite(lock), 0);
    EXPECT_EQ(QVRWLockTryAcquireWrite(lock), timedOut);
    EXPECT_EQ(QVRWLockTryAcquireRead(lock), timedOut);
    EXPECT_EQ(QVRWLockReleaseRead(lock), notOwner);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), 0);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), notOwner);
    EXPECT_EQ(QVRWLockTryAcquireWrite(lock), 0);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), 0);
}

TEST(RWLockTest, LetsAReaderInAgain) {
    const Owned lock(create(QVRWLockCreate), QVRWLockDestroy);
    EXPECT_EQ(QVRWLockAcquireRead(lock), 0);
    EXPECT_EQ(QVRWLockTryAcquireRead(lock), 0);
    EXPECT_EQ(QVRWLockTryAcquireWrite(lock), timedOut);
    EXPECT_EQ(QVRWLockReleaseRead(lock), 0);
    EXPECT_EQ(QVRWLockTryAcquireWrite(lock), timedOut);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), notOwner);
    EXPECT_EQ(QVRWLockReleaseRead(lock), 0);
    EXPECT_EQ(QVRWLockReleaseRead(lock), notOwner);
}

TEST(RWLockTest, RefusesAThreadThatWouldWaitForItself) {
    const Owned lock(create(QVRWLockCreate), QVRWLockDestroy);
    EXPECT_EQ(QVRWLockAcquireWrite(lock), 0);
    EXPECT_EQ(QVRWLockAcquireWrite(lock), wouldDeadlock);
    EXPECT_EQ(QVRWLockAcquireRead(lock), wouldDeadlock);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), 0);
    EXPECT_EQ(QVRWLockAcquireRead(lock), 0);
    EXPECT_EQ(QVRWLockAcquireWrite(lock), wouldDeadlock);
    EXPECT_EQ(QVRWLockReleaseRead(lock), 0);
}

TEST(RWLockTest, CannotBeEndedWhileItIsHeld) {
    const Owned lock(create(QVRWLockCreate), QVRWLockDestroy);
    EXPECT_EQ(QVRWLockAcquireWrite(lock), 0);
    EXPECT_EQ(QVRWLockDestroy(lock), busy);
    EXPECT_EQ(QVRWLockReleaseWrite(lock), 0);
    EXPECT_EQ(QVRWLockAcquireRead(lock), 0);
    EXPECT_EQ(QVRWLockDestroy(lock), busy);
    EXPECT_EQ(QVRWLockReleaseRead(lock), 0);
}

TEST(EventTest, IsNotSignalledAtFirst) {
    const Owned event(create(QVEventCreate), QVEventDestroy);
    EXPECT_EQ(QVEventTimedWait(event, 0), timedOut);
}

TEST(EventTest, UsesUpASignalWithOneWait) {
    const Owned event(create(QVEventCreate), QVEventDestroy);
    EXPECT_EQ(QVEventSignal(event), 0);
    EXPECT_EQ(QVEventWait(event), 0);
    EXPECT_EQ(QVEventTimedWait(event, 0), timedOut);
}

TEST(EventTest, DoesNotAddSignalsUp) {
    const Owned event(create(QVEventCreate), QVEventDestroy);
    EXPECT_EQ(QVEventSignal(event), 0);
    EXPECT_EQ(QVEventSignal(event), 0);
    EXPECT_EQ(QVEventTimedWait(event, 0xFFFFFFFF), 0);
    EXPECT_EQ(QVEventTimedWait(event, 0), timedOut);
}

TEST(EventTest, WaitsInMilliseconds) {
    const Owned event(create(QVEventCreate), QVEventDestroy);
    EXPECT_GE(timeOf([&] { EXPECT_EQ(QVEventTimedWait(event, 30), timedOut); }), 30);
}

TEST(EventTest, TakesAnyTimeout) {
    const Owned event(create(QVEventCreate), QVEventDestroy);
    EXPECT_EQ(QVEventSignal(event), 0);
    EXPECT_EQ(QVEventTimedWait(event, 0xFFFFFFFE), 0);
}

TEST(GateTest, IsClosedAtFirst) {
    const Owned gate(create(QVGateCreate), QVGateDestroy);
    EXPECT_EQ(QVGateTryWait(gate), timedOut);
    EXPECT_EQ(QVGateTimedWait(gate, 0), timedOut);
}

TEST(GateTest, StaysOpenUntilItIsClosed) {
    const Owned gate(create(QVGateCreate), QVGateDestroy);
    EXPECT_EQ(QVGateOpen(gate), 0);
    EXPECT_EQ(QVGateWait(gate), 0);
    EXPECT_EQ(QVGateTryWait(gate), 0);
    EXPECT_EQ(QVGateTimedWait(gate, 10), 0);
    EXPECT_EQ(QVGateTimedWait(gate, 0xFFFFFFFF), 0);
    EXPECT_EQ(QVGateOpen(gate), 0);
    EXPECT_EQ(QVGateTryWait(gate), 0);
    EXPECT_EQ(QVGateClose(gate), 0);
    EXPECT_EQ(QVGateTryWait(gate), timedOut);
    EXPECT_EQ(QVGateClose(gate), 0);
    EXPECT_EQ(QVGateTryWait(gate), timedOut);
}

TEST(GateTest, WaitsInMilliseconds) {
    const Owned gate(create(QVGateCreate), QVGateDestroy);
    EXPECT_GE(timeOf([&] { EXPECT_EQ(QVGateTimedWait(gate, 30), timedOut); }), 30);
}

TEST(SemaphoreTest, CountsDownAndUp) {
    const Owned semaphore(createSemaphore(2), QVSemaphoreDestroy);
    std::int32_t value = -1;
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, &value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(QVSemaphoreWait(semaphore), 0);
    EXPECT_EQ(QVSemaphoreTryWait(semaphore), 0);
    EXPECT_EQ(QVSemaphoreTryWait(semaphore), timedOut);
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, &value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(QVSemaphorePost(semaphore), 0);
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, &value), 0);
    EXPECT_EQ(value, 1);
}

TEST(SemaphoreTest, CountsBeyondItsFirstCount) {
    const Owned semaphore(createSemaphore(0), QVSemaphoreDestroy);
    EXPECT_EQ(QVSemaphoreTryWait(semaphore), timedOut);
    for (int post = 0; post < 3; ++post) {
        EXPECT_EQ(QVSemaphorePost(semaphore), 0);
    }
    std::int32_t value = -1;
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, &value), 0);
    EXPECT_EQ(value, 3);
}

TEST(SemaphoreTest, RefusesAPostBeyondItsGreatestCount) {
    const Owned semaphore(createSemaphore(0x7FFFFFFF), QVSemaphoreDestroy);
    EXPECT_EQ(QVSemaphorePost(semaphore), tooManyPosts);
    std::int32_t value = -1;
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, &value), 0);
    EXPECT_EQ(value, 0x7FFFFFFF);
}

TEST(SemaphoreTest, RefusesAFirstCountBeyondIt) {
    std::uint64_t handle = 7;
    EXPECT_EQ(QVSemaphoreCreate(0x80000000u, nullptr, 0, &handle), invalidArgument);
    EXPECT_EQ(handle, 7u);
}

TEST(SemaphoreTest, RefusesANullOutput) {
    const Owned semaphore(createSemaphore(1), QVSemaphoreDestroy);
    EXPECT_EQ(QVSemaphoreGetValue(semaphore, nullptr), nullOutput);
    EXPECT_EQ(QVSemaphoreCreate(1, nullptr, 0, nullptr), nullOutput);
}

TEST(ConditionTest, IsWaitedForByItsHolderOnly) {
    const Owned condition(create(QVConditionCreate), QVConditionDestroy);
    EXPECT_EQ(QVConditionWait(condition), notOwner);
    EXPECT_EQ(QVConditionTimedWait(condition, 0), notOwner);
    EXPECT_EQ(QVConditionRelease(condition), notOwner);
}

TEST(ConditionTest, HasARecursiveMutex) {
    const Owned condition(create(QVConditionCreate), QVConditionDestroy);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_EQ(QVConditionRelease(condition), 0);
    EXPECT_EQ(QVConditionRelease(condition), 0);
    EXPECT_EQ(QVConditionRelease(condition), notOwner);
}

TEST(ConditionTest, TimesOutWithItsMutexHeldAsBefore) {
    const Owned condition(create(QVConditionCreate), QVConditionDestroy);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_GE(timeOf([&] { EXPECT_EQ(QVConditionTimedWait(condition, 20), timedOut); }), 20);
    EXPECT_EQ(QVConditionRelease(condition), 0);
    EXPECT_EQ(QVConditionRelease(condition), 0);
    EXPECT_EQ(QVConditionRelease(condition), notOwner);
}

TEST(ConditionTest, KeepsNoSignalThatNobodyWaitedFor) {
    const Owned condition(create(QVConditionCreate), QVConditionDestroy);
    EXPECT_EQ(QVConditionSignal(condition), 0);
    EXPECT_EQ(QVConditionBroadcast(condition), 0);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_EQ(QVConditionTimedWait(condition, 0), timedOut);
    EXPECT_EQ(QVConditionRelease(condition), 0);
}

TEST(ConditionTest, CannotBeEndedWhileItIsHeld) {
    const Owned condition(create(QVConditionCreate), QVConditionDestroy);
    EXPECT_EQ(QVConditionAcquire(condition), 0);
    EXPECT_EQ(QVConditionDestroy(condition), busy);
    EXPECT_EQ(QVConditionRelease(condition), 0);
}
