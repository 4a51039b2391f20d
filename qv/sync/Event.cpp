#include "qv/sync/Event.h"

#include "qv/ErrorRule.h"
#include "qv/sync/detail/TimedWait.h"
#include "qvcore/Locks.h"

namespace qv::sync {

Event::Event(const char* name, std::uint32_t flags) {
    throwIfFailed(QVEventCreate(name, flags, &handle_));
}

Event::~Event() noexcept(false) { throwIfFailed(QVEventDestroy(handle_)); }

void Event::wait() { throwIfFailed(QVEventWait(handle_)); }

bool Event::tryWait() { return false; }

bool Event::wait(std::uint32_t timeout) {
    return detail::acquiredInTime(QVEventTimedWait(handle_, timeout));
}

void Event::signal() { throwIfFailed(QVEventSignal(handle_)); }

} // namespace qv::sync
