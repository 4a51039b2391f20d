#include "qvcore/Locks.h"

#include "qvcore/common/Deadline.h"
#include "qvcore/common/Handle.h"

namespace {

using namespace qv;
using namespace qv::core;

/// Thread safety: internally locked.
class EventObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::Event;

    explicit EventObject(const char* name) : HandleObject(handleKind, name) {}

    /// Uses up the signal.
    std::int32_t wait(std::uint32_t timeout) {
        const Deadline deadline(timeout);
        std::unique_lock lock(guard_);
        if (!deadline.wait(changed_, lock, [this] { return isSignalled_; })) {
            return QV_E_TIMEOUT;
        }
        isSignalled_ = false;
        return QV_S_OK;
    }

    std::int32_t signal() {
        const std::lock_guard lock(guard_);
        isSignalled_ = true;
        changed_.notify_one();
        return QV_S_OK;
    }

    bool isInUse() const noexcept { return false; }

private:
    std::mutex guard_;
    std::condition_variable changed_;
    bool isSignalled_ = false;
};

} // namespace

std::int32_t QVEventCreate(const char* name, std::uint32_t, std::uint64_t* handle) noexcept {
    return createHandle<EventObject>(handle, name);
}

std::int32_t QVEventWait(std::uint64_t handle) noexcept {
    return QVEventTimedWait(handle, Deadline::forever);
}

std::int32_t QVEventTimedWait(std::uint64_t handle, std::uint32_t timeout) noexcept {
    return withHandle<EventObject>(handle,
                                   [timeout](EventObject& event) { return event.wait(timeout); });
}

std::int32_t QVEventSignal(std::uint64_t handle) noexcept {
    return withHandle<EventObject>(handle, [](EventObject& event) { return event.signal(); });
}

std::int32_t QVEventDestroy(std::uint64_t handle) noexcept {
    return destroyHandle<EventObject>(handle);
}
