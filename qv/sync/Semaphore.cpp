#include "qv/sync/Semaphore.h"

#include "qv/ErrorRule.h"
#include "qvcore/Locks.h"

namespace qv::sync {

Semaphore::Semaphore(std::uint32_t initial, const char* name, std::uint32_t flags) {
    throwIfFailed(QVSemaphoreCreate(initial, name, flags, &handle_));
}

Semaphore::~Semaphore() noexcept(false) { throwIfFailed(QVSemaphoreDestroy(handle_)); }

void Semaphore::wait() { throwIfFailed(QVSemaphoreWait(handle_)); }

bool Semaphore::tryWait() { return QVSemaphoreTryWait(handle_) >= 0; }

void Semaphore::signal() { throwIfFailed(QVSemaphorePost(handle_)); }

std::int32_t Semaphore::getValue() {
    std::int32_t value = 0;
    throwIfFailed(QVSemaphoreGetValue(handle_, &value));
    return value;
}

} // namespace qv::sync
