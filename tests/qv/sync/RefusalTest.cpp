// What the locks do with a refusal of the platform. The only one that comes from every call is that
// of a handle which is none.

#include "qv/ipc/Semaphore.h"
#include "qv/sync/Condition.h"
#include "qv/sync/Event.h"
#include "qv/sync/Gate.h"
#include "qv/sync/Mutex.h"
#include "qv/sync/ReaderWriterLock.h"
#include "qv/sync/Semaphore.h"
#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"
#include "tests/support/Abandoned.h"
#include "tests/support/Throws.h"
#include "tests/support/UniqueName.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qv;

/// A lock whose handle, its only field, was taken away.
template <class Lock>
class WithoutHandle {
public:
    template <class... Arguments>
    explicit WithoutHandle(Arguments... arguments) : lock_(arguments...) {
        void* const field =
            reinterpret_cast<std::byte*>(lock_.operator->()) + sizeof(Lock) - sizeof(std::uint64_t);
        std::memcpy(&handle_, field, sizeof handle_);
        std::memset(field, 0, sizeof handle_);
    }
    Lock* operator->() const { return lock_.operator->(); }
    void end() { lock_.end(); }
    /// For the test to destroy.
    std::uint64_t handle() const { return handle_; }

private:
    support::Abandoned<Lock, 2> lock_;
    std::uint64_t handle_ = 0;
};

void expectRefused(const std::vector<std::function<void()>>& operations) {
    for (std::size_t i = 0; i < operations.size(); ++i) {
        EXPECT_EQ(support::thrownResult(operations[i]), QV_E_INVALIDHANDLE) << "operation " << i;
        EXPECT_EQ(support::thrownText<ResultException>(operations[i]), "") << "operation " << i;
    }
}

TEST(RefusalTest, AMutexRaisesIt) {
    WithoutHandle<sync::Mutex> lock;
    expectRefused({[&] { lock->wait(); }, [&] { lock->signal(); }});
    EXPECT_FALSE(lock->tryWait());
    EXPECT_EQ(support::thrownResult([&] { lock.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVMutexDestroy(lock.handle()), QV_S_OK);
}

TEST(RefusalTest, AReaderWriterLockRaisesIt) {
    WithoutHandle<sync::ReaderWriterLock> lock;
    expectRefused({[&] { lock->wait(); }, [&] { lock->signal(); }, [&] { lock->waitShared(); },
                   [&] { lock->signalShared(); }});
    EXPECT_FALSE(lock->tryWait());
    EXPECT_FALSE(lock->tryWaitShared());
    EXPECT_EQ(support::thrownResult([&] { lock.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVRWLockDestroy(lock.handle()), QV_S_OK);
}

TEST(RefusalTest, AnEventRaisesIt) {
    WithoutHandle<sync::Event> event;
    expectRefused({[&] { event->wait(); }, [&] { static_cast<void>(event->wait(0)); },
                   [&] { event->signal(); }});
    EXPECT_FALSE(event->tryWait());
    EXPECT_EQ(support::thrownResult([&] { event.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVEventDestroy(event.handle()), QV_S_OK);
}

TEST(RefusalTest, AGateRaisesIt) {
    WithoutHandle<sync::Gate> gate;
    expectRefused({[&] { gate->wait(); }, [&] { static_cast<void>(gate->wait(0)); },
                   [&] { gate->open(); }, [&] { gate->close(); }});
    EXPECT_FALSE(gate->tryWait());
    EXPECT_EQ(support::thrownResult([&] { gate.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVGateDestroy(gate.handle()), QV_S_OK);
}

TEST(RefusalTest, ASemaphoreRaisesIt) {
    WithoutHandle<sync::Semaphore> semaphore(1U);
    expectRefused({[&] { semaphore->wait(); }, [&] { semaphore->signal(); },
                   [&] { static_cast<void>(semaphore->getValue()); }});
    EXPECT_FALSE(semaphore->tryWait());
    EXPECT_EQ(support::thrownResult([&] { semaphore.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVSemaphoreDestroy(semaphore.handle()), QV_S_OK);
}

TEST(RefusalTest, ANamedSemaphoreRaisesIt) {
    const std::string name = support::uniqueName();
    WithoutHandle<ipc::Semaphore> semaphore(name.c_str(), 1U);
    expectRefused({[&] { semaphore->wait(); }, [&] { semaphore->signal(); },
                   [&] { static_cast<void>(semaphore->getValue()); }});
    EXPECT_FALSE(semaphore->tryWait());
    EXPECT_EQ(support::thrownResult([&] { semaphore.end(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(QVNamedSemClose(semaphore.handle()), QV_S_OK);
}

TEST(RefusalTest, AConditionRaisesItButNotAtItsEnd) {
    WithoutHandle<sync::Condition> condition;
    expectRefused({[&] { condition->acquire(); }, [&] { condition->release(); },
                   [&] { condition->signal(); }, [&] { condition->broadcast(); },
                   [&] { condition->wait(); }, [&] { condition->wait(0); }});
    EXPECT_NO_THROW(condition.end());
    EXPECT_EQ(QVConditionDestroy(condition.handle()), QV_S_OK);
}

} // namespace
