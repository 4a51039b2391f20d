#include "qv/ipc/Semaphore.h"

#include "tests/support/ChildRole.h"
#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"
#include "tests/support/TestProcess.h"
#include "tests/support/Throws.h"
#include "tests/support/UniqueName.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace qv;
using support::uniqueName;

/// Opens the semaphore with a count of its own, does what it is told, and answers with the count.
const support::ChildRole peer("ipc-semaphore", [](const std::vector<std::string>& arguments) {
    ipc::Semaphore semaphore(arguments.at(0).c_str(), 7);
    for (;;) {
        support::tell(std::to_string(semaphore.getValue()));
        const std::string order = support::hear();
        if (order == "wait") {
            semaphore.wait();
        } else if (order == "signal") {
            semaphore.signal();
        } else {
            return 0;
        }
    }
});

TEST(IpcSemaphoreTest, CountsItsFreePlaces) {
    ipc::Semaphore semaphore(uniqueName().c_str(), 2);
    EXPECT_EQ(semaphore.getValue(), 2);
    semaphore.wait();
    EXPECT_TRUE(semaphore.tryWait());
    EXPECT_FALSE(semaphore.tryWait());
    EXPECT_EQ(semaphore.getValue(), 0);
    semaphore.signal();
    EXPECT_EQ(semaphore.getValue(), 1);
}

TEST(IpcSemaphoreTest, TheFirstToOpenANameSetsTheCount) {
    const std::string name = uniqueName();
    ipc::Semaphore first(name.c_str(), 1);
    ipc::Semaphore second(name.c_str(), 9);
    EXPECT_EQ(second.getValue(), 1);
    second.wait();
    EXPECT_FALSE(first.tryWait());
    first.signal();
    EXPECT_EQ(second.getValue(), 1);
}

TEST(IpcSemaphoreTest, IsGoneWithItsLastHandle) {
    const std::string name = uniqueName();
    { ipc::Semaphore first(name.c_str(), 1); }
    ipc::Semaphore second(name.c_str(), 5);
    EXPECT_EQ(second.getValue(), 5);
}

TEST(IpcSemaphoreTest, TakesAnyTextAsName) {
    const std::string names[] = {uniqueName() + "/with/slashes", uniqueName() + "\\back\\slashes",
                                 uniqueName() + " blank \xC3\xA9",
                                 uniqueName() + std::string(500, 'x')};
    for (const std::string& name : names) {
        ipc::Semaphore first(name.c_str(), 3);
        ipc::Semaphore second(name.c_str(), 1);
        EXPECT_EQ(second.getValue(), 3) << name;
    }
}

TEST(IpcSemaphoreTest, RaisesWhatThePlatformRefuses) {
    EXPECT_EQ(support::thrownResult([] { ipc::Semaphore semaphore("", 1); }), QV_E_INVALIDARG);
    EXPECT_EQ(support::thrownResult([] { ipc::Semaphore semaphore(nullptr, 1); }), QV_E_INVALIDARG);
    EXPECT_EQ(
        support::thrownResult([] { ipc::Semaphore semaphore(uniqueName().c_str(), 0x80000000); }),
        QV_E_INVALIDARG);
    ipc::Semaphore full(uniqueName().c_str(), 0x7FFFFFFF);
    EXPECT_EQ(support::thrownResult([&] { full.signal(); }), QV_E_TOOMANYPOSTS);
    EXPECT_EQ(support::thrownText<ResultException>([&] { full.signal(); }), "");
}

TEST(IpcSemaphoreTest, IsSharedByProcesses) {
    const std::string name = uniqueName();
    ipc::Semaphore semaphore(name.c_str(), 2);
    support::TestProcess process("ipc-semaphore", {name});
    ASSERT_TRUE(process.isStarted());
    EXPECT_EQ(process.readLine(), "2");
    process.write("wait\n");
    EXPECT_EQ(process.readLine(), "1");
    EXPECT_EQ(semaphore.getValue(), 1);
    semaphore.signal();
    semaphore.signal();
    process.write("signal\n");
    EXPECT_EQ(process.readLine(), "4");
    EXPECT_EQ(semaphore.getValue(), 4);
    process.write("end\n");
    EXPECT_EQ(process.wait(), 0);
}

TEST(IpcSemaphoreTest, BlocksAcrossProcesses) {
    const std::string name = uniqueName();
    ipc::Semaphore semaphore(name.c_str(), 0);
    support::TestProcess process("ipc-semaphore", {name});
    EXPECT_EQ(process.readLine(), "0");
    process.write("signal\n");
    semaphore.wait();
    EXPECT_EQ(process.readLine().size(), 1U);
    process.write("wait\n");
    semaphore.signal();
    EXPECT_EQ(process.readLine(), "0") << "the other process got the place";
    process.write("end\n");
    EXPECT_EQ(process.wait(), 0);
}

TEST(IpcSemaphoreTest, APlaceTakenByAProcessThatDiesComesBack) {
    const std::string name = uniqueName();
    ipc::Semaphore semaphore(name.c_str(), 1);
    support::TestProcess process("ipc-semaphore", {name});
    EXPECT_EQ(process.readLine(), "1");
    process.write("wait\n");
    EXPECT_EQ(process.readLine(), "0");
    EXPECT_FALSE(semaphore.tryWait());
    process.kill();
    semaphore.wait();
    semaphore.signal();
}

TEST(IpcSemaphoreThreadsTest, WakesAWaiterOfAnotherThread) {
    const std::string name = uniqueName();
    ipc::Semaphore semaphore(name.c_str(), 0);
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

TEST(IpcSemaphoreTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&qv::Object::toString),
        support::slotOf(&sync::Object::wait),
        support::slotOf(&sync::Object::tryWait),
        support::slotOf(&ipc::Semaphore::signal),
        support::slotOf(&ipc::Semaphore::getValue),
    });
}

} // namespace
