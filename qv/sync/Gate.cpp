#include "qv/sync/Gate.h"

#include "qv/ErrorRule.h"
#include "qv/sync/detail/TimedWait.h"
#include "qvcore/Locks.h"

namespace qv::sync {

Gate::Gate(const char* name, std::uint32_t flags) {
    throwIfFailed(QVGateCreate(name, flags, &handle_));
}

Gate::~Gate() noexcept(false) { throwIfFailed(QVGateDestroy(handle_)); }

void Gate::wait() { throwIfFailed(QVGateWait(handle_)); }

bool Gate::tryWait() { return QVGateTryWait(handle_) >= 0; }

bool Gate::wait(std::uint32_t timeout) {
    return detail::acquiredInTime(QVGateTimedWait(handle_, timeout));
}

void Gate::open() { throwIfFailed(QVGateOpen(handle_)); }

void Gate::close() { throwIfFailed(QVGateClose(handle_)); }

} // namespace qv::sync
