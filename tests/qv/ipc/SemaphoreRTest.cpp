#include "qv/ipc/SemaphoreR.h"

#include "tests/support/ChildRole.h"
#include "tests/support/StartedThread.h"
#include "tests/support/TestProcess.h"
#include "tests/support/Throws.h"
#include "tests/support/UniqueName.h"

#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;
using support::uniqueName;

/// Takes the semaphore and gives it back when it is told to.
const support::ChildRole holder("ipc-semaphore-holder",
                                [](const std::vector<std::string>& arguments) {
                                    ipc::SemaphoreR semaphore(arguments.at(0).c_str(), 1);
                                    semaphore.wait();
                                    support::tell("held");
                                    support::hear();
                                    semaphore.signal();
                                    support::tell("given back");
                                    support::hear();
                                    return 0;
                                });

/// What `work` gives on another thread.
template <class Work>
auto onOtherThread(Work work) {
    return std::async(std::launch::async, work).get();
}

TEST(SemaphoreRTest, ItsOwnerTakesItAgain) {
    const std::string name = uniqueName();
    ipc::SemaphoreR semaphore(name.c_str(), 1);
    semaphore.wait();
    semaphore.wait();
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_EQ(semaphore.getValue(), 0);
}

TEST(SemaphoreRTest, IsPostedByTheLastOfItsSignals) {
    const std::string name = uniqueName();
    ipc::SemaphoreR semaphore(name.c_str(), 1);
    semaphore.wait();
    semaphore.wait();
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 0);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreRTest, ASignalWithoutOwnerDoesNothing) {
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
    semaphore.wait();
    semaphore.signal();
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreRTest, TryWaitCountsLikeWait) {
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1);
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_TRUE(semaphore.tryWait());
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 0);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreRTest, AFailedTryWaitChangesNothing) {
    const std::string name = uniqueName();
    ipc::Semaphore other(name.c_str(), 0);
    ipc::SemaphoreR semaphore(name.c_str(), 0);
    EXPECT_FALSE(semaphore.tryWait());
    semaphore.signal();
    EXPECT_EQ(other.getValue(), 0) << "there was no owner to give it back";
}

TEST(SemaphoreRThreadsTest, ASignalOfAnotherThreadDoesNothing) {
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1);
    semaphore.wait();
    std::thread([&] { EXPECT_NO_THROW(semaphore.signal()); }).join();
    EXPECT_EQ(semaphore.getValue(), 0);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreRThreadsTest, AnotherThreadDoesNotGetWhatIsOwned) {
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1);
    semaphore.wait();
    EXPECT_FALSE(onOtherThread([&] { return semaphore.tryWait(); }));
    semaphore.signal();
    EXPECT_TRUE(onOtherThread([&] {
        const bool acquired = semaphore.tryWait();
        semaphore.signal();
        return acquired;
    }));
}

TEST(SemaphoreRThreadsTest, WorksUnderTheGuardItIsGiven) {
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1, guard);
    EXPECT_EQ(guard->GetRefCount(), 2U);
    guard->wait();
    std::atomic<bool> isTaken = false;
    std::thread taker = support::startedThread([&] {
        semaphore.wait();
        isTaken = true;
        semaphore.signal();
    });
    EXPECT_FALSE(isTaken);
    guard->signal();
    taker.join();
    EXPECT_TRUE(isTaken);
    EXPECT_TRUE(guard->tryWait()) << "the guard is given back";
    guard->signal();
}

/// What the owner does under the guard waits while another thread has the guard.
template <class Work>
void expectToWaitForTheGuard(sync::Mutex& guard, Work work) {
    std::promise<void> held;
    std::promise<void> finished;
    std::thread other([&] {
        guard.wait();
        held.set_value();
        // The owner cannot come out in this time: it is the only sleep that there is.
        EXPECT_EQ(finished.get_future().wait_for(std::chrono::milliseconds(50)),
                  std::future_status::timeout);
        guard.signal();
    });
    held.get_future().wait();
    work();
    finished.set_value();
    other.join();
}

TEST(SemaphoreRThreadsTest, SignalsUnderTheGuard) {
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1, guard);
    semaphore.wait();
    expectToWaitForTheGuard(*guard, [&] { semaphore.signal(); });
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(SemaphoreRThreadsTest, TriesUnderTheGuard) {
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    ipc::SemaphoreR semaphore(uniqueName().c_str(), 1, guard);
    semaphore.wait();
    expectToWaitForTheGuard(*guard, [&] { EXPECT_TRUE(semaphore.tryWait()); });
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 0) << "it was taken twice";
    semaphore.signal();
}

TEST(SemaphoreRThreadsTest, HasAGuardOfItsOwnWhereItIsGivenNone) {
    const std::string name = uniqueName();
    ipc::Semaphore outside(name.c_str(), 0);
    ipc::SemaphoreR taken(name.c_str(), 0);
    ipc::SemaphoreR other(uniqueName().c_str(), 1);
    std::thread waiter = support::startedThread([&] { taken.wait(); });
    std::future<bool> used = std::async(std::launch::async, [&] {
        other.wait();
        other.signal();
        return true;
    });
    EXPECT_EQ(used.wait_for(std::chrono::seconds(20)), std::future_status::ready)
        << "a thread that waits for one semaphore holds up the other";
    outside.signal();
    waiter.join();
    EXPECT_TRUE(used.get());
}

TEST(SemaphoreRThreadsTest, GivesTheGuardBackWhereThePostFails) {
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    const std::string name = uniqueName();
    ipc::SemaphoreR semaphore(name.c_str(), 0x7FFFFFFF, guard);
    semaphore.wait();
    ipc::Semaphore(name.c_str(), 0).signal();
    EXPECT_EQ(support::thrownResult([&] { semaphore.signal(); }), QV_E_TOOMANYPOSTS);
    EXPECT_TRUE(onOtherThread([&] {
        const bool acquired = guard->tryWait();
        guard->signal();
        return acquired;
    }));
    semaphore.wait();
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 0x7FFFFFFF) << "the owner is still the owner";
}

/// While a thread waits for the semaphore it holds the guard, and the owner's signal waits with it.
TEST(SemaphoreRThreadsTest, HoldsTheGuardWhileItWaits) {
    const std::string name = uniqueName();
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    ipc::Semaphore outside(name.c_str(), 1);
    ipc::SemaphoreR semaphore(name.c_str(), 1, guard);
    semaphore.wait();
    std::thread waiter([&] {
        semaphore.wait();
        semaphore.signal();
    });
    while (guard->tryWait()) {
        guard->signal();
        std::this_thread::yield();
    }
    outside.signal(); // the owner could not: the guard is taken
    waiter.join();
    EXPECT_EQ(outside.getValue(), 1);
}

TEST(SemaphoreRTest, KeepsOtherProcessesOut) {
    const std::string name = uniqueName();
    ipc::SemaphoreR semaphore(name.c_str(), 1);
    semaphore.wait();
    support::TestProcess process("ipc-semaphore-holder", {name});
    ASSERT_TRUE(process.isStarted());
    semaphore.signal();
    EXPECT_EQ(process.readLine(), "held");
    EXPECT_FALSE(semaphore.tryWait());
    process.write("\n");
    EXPECT_EQ(process.readLine(), "given back");
    EXPECT_TRUE(semaphore.tryWait());
    semaphore.signal();
    process.write("\n");
    EXPECT_EQ(process.wait(), 0);
}

TEST(SemaphoreRTest, WaitsForAnotherProcess) {
    const std::string name = uniqueName();
    support::TestProcess process("ipc-semaphore-holder", {name});
    EXPECT_EQ(process.readLine(), "held");
    ipc::SemaphoreR semaphore(name.c_str(), 1);
    process.write("\n");
    semaphore.wait();
    semaphore.signal();
    EXPECT_EQ(process.readLine(), "given back");
    process.write("\n");
    EXPECT_EQ(process.wait(), 0);
}

} // namespace
