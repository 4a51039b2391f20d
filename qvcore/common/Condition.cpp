#include "qvcore/Locks.h"

#include "qvcore/common/Deadline.h"
#include "qvcore/common/Handle.h"
#include "qvcore/common/RecursiveMutex.h"

#include <algorithm>
#include <list>

namespace {

using namespace qv;
using namespace qv::core;

/// A condition variable with its mutex. Each waiter stands in a list of its own making until it is
/// woken, first come, first woken; so a signal reaches exactly one thread that waited when it was
/// given, and a waking that no signal caused is none.
///
/// A waiter joins the list before it gives the mutex up: a signal given under the mutex is not
/// lost.
///
/// Thread safety: internally locked.
class ConditionObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::Condition;

    explicit ConditionObject(const char* name) : HandleObject(handleKind, name) {}

    std::int32_t acquire() {
        mutex_.acquire();
        return QV_S_OK;
    }

    std::int32_t release() noexcept { return mutex_.release(); }

    std::int32_t signal() {
        const std::lock_guard lock(guard_);
        if (!waiters_.empty()) {
            wakeFirst();
        }
        return QV_S_OK;
    }

    std::int32_t broadcast() {
        const std::lock_guard lock(guard_);
        while (!waiters_.empty()) {
            wakeFirst();
        }
        return QV_S_OK;
    }

    std::int32_t wait(std::uint32_t timeout) {
        if (!mutex_.isHeld()) {
            return QV_E_NOTOWNER;
        }
        const Deadline deadline(timeout);
        Waiter waiter;
        std::unique_lock lock(guard_);
        waiters_.push_back(&waiter);
        const std::uint32_t depth = mutex_.releaseWhole();
        const bool isWoken =
            deadline.wait(waiter.woken, lock, [&waiter] { return waiter.isWoken; });
        if (!isWoken) {
            waiters_.remove(&waiter);
        }
        lock.unlock();
        mutex_.acquireWhole(depth);
        return isWoken ? QV_S_OK : QV_E_TIMEOUT;
    }

    bool isInUse() {
        const std::lock_guard lock(guard_);
        return mutex_.isHeldByAny() || !waiters_.empty();
    }

private:
    struct Waiter {
        std::condition_variable woken;
        bool isWoken = false;
    };

    void wakeFirst() {
        Waiter& waiter = *waiters_.front();
        waiters_.pop_front();
        waiter.isWoken = true;
        waiter.woken.notify_one();
    }

    RecursiveMutex mutex_;
    /// Guards the list. Never held while a thread waits for `mutex_`.
    std::mutex guard_;
    std::list<Waiter*> waiters_;
};

} // namespace

std::int32_t QVConditionCreate(const char* name, std::uint32_t, std::uint64_t* handle) noexcept {
    return createHandle<ConditionObject>(handle, name);
}

std::int32_t QVConditionAcquire(std::uint64_t handle) noexcept {
    return withHandle<ConditionObject>(
        handle, [](ConditionObject& condition) { return condition.acquire(); });
}

std::int32_t QVConditionRelease(std::uint64_t handle) noexcept {
    return withHandle<ConditionObject>(
        handle, [](ConditionObject& condition) { return condition.release(); });
}

std::int32_t QVConditionSignal(std::uint64_t handle) noexcept {
    return withHandle<ConditionObject>(
        handle, [](ConditionObject& condition) { return condition.signal(); });
}

std::int32_t QVConditionBroadcast(std::uint64_t handle) noexcept {
    return withHandle<ConditionObject>(
        handle, [](ConditionObject& condition) { return condition.broadcast(); });
}

std::int32_t QVConditionWait(std::uint64_t handle) noexcept {
    return QVConditionTimedWait(handle, Deadline::forever);
}

std::int32_t QVConditionTimedWait(std::uint64_t handle, std::uint32_t timeout) noexcept {
    return withHandle<ConditionObject>(
        handle, [timeout](ConditionObject& condition) { return condition.wait(timeout); });
}

std::int32_t QVConditionDestroy(std::uint64_t handle) noexcept {
    return destroyHandle<ConditionObject>(handle);
}
