#include "qv/sync/Condition.h"

#include "qv/ErrorRule.h"
#include "qvcore/Locks.h"

namespace qv::sync {

Condition::Condition(const char* name, std::uint32_t flags) {
    throwIfFailed(QVConditionCreate(name, flags, &handle_));
}

Condition::~Condition() noexcept { static_cast<void>(QVConditionDestroy(handle_)); }

void Condition::acquire() { throwIfFailed(QVConditionAcquire(handle_)); }

void Condition::release() { throwIfFailed(QVConditionRelease(handle_)); }

void Condition::signal() { throwIfFailed(QVConditionSignal(handle_)); }

void Condition::broadcast() { throwIfFailed(QVConditionBroadcast(handle_)); }

void Condition::wait() { throwIfFailed(QVConditionWait(handle_)); }

void Condition::wait(std::uint32_t timeout) {
    throwIfFailed(QVConditionTimedWait(handle_, timeout));
}

} // namespace qv::sync
