#include "qvcore/Locks.h"

#include "qvcore/common/Deadline.h"
#include "qvcore/common/Handle.h"

namespace {

using namespace qv;
using namespace qv::core;

/// A waiter passes if the gate was open at any moment of its wait, however soon it closed again:
/// what it waits for is the gate open, or an opening after the wait began.
///
/// Thread safety: internally locked.
class GateObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::Gate;

    explicit GateObject(const char* name) : HandleObject(handleKind, name) {}

    std::int32_t wait(std::uint32_t timeout) {
        const Deadline deadline(timeout);
        std::unique_lock lock(guard_);
        const std::uint64_t openings = openings_;
        const bool hasPassed = deadline.wait(
            opened_, lock, [this, openings] { return isOpen_ || openings_ != openings; });
        return hasPassed ? QV_S_OK : QV_E_TIMEOUT;
    }

    std::int32_t open() {
        const std::lock_guard lock(guard_);
        isOpen_ = true;
        ++openings_;
        opened_.notify_all();
        return QV_S_OK;
    }

    std::int32_t close() {
        const std::lock_guard lock(guard_);
        isOpen_ = false;
        return QV_S_OK;
    }

    bool isInUse() const noexcept { return false; }

private:
    std::mutex guard_;
    std::condition_variable opened_;
    bool isOpen_ = false;
    std::uint64_t openings_ = 0;
};

} // namespace

std::int32_t QVGateCreate(const char* name, std::uint32_t, std::uint64_t* handle) noexcept {
    return createHandle<GateObject>(handle, name);
}

std::int32_t QVGateWait(std::uint64_t handle) noexcept {
    return QVGateTimedWait(handle, Deadline::forever);
}

std::int32_t QVGateTryWait(std::uint64_t handle) noexcept { return QVGateTimedWait(handle, 0); }

std::int32_t QVGateTimedWait(std::uint64_t handle, std::uint32_t timeout) noexcept {
    return withHandle<GateObject>(handle,
                                  [timeout](GateObject& gate) { return gate.wait(timeout); });
}

std::int32_t QVGateOpen(std::uint64_t handle) noexcept {
    return withHandle<GateObject>(handle, [](GateObject& gate) { return gate.open(); });
}

std::int32_t QVGateClose(std::uint64_t handle) noexcept {
    return withHandle<GateObject>(handle, [](GateObject& gate) { return gate.close(); });
}

std::int32_t QVGateDestroy(std::uint64_t handle) noexcept {
    return destroyHandle<GateObject>(handle);
}
