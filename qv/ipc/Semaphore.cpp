#include "qv/ipc/Semaphore.h"

#include "qv/ErrorRule.h"
#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

namespace qv::ipc {

Semaphore::Semaphore(const char* name, std::uint32_t value) {
    throwIfFailed(QVNamedSemOpen(name, value, &handle_));
}

Semaphore::~Semaphore() noexcept(false) { throwIfFailed(QVNamedSemClose(handle_)); }

void Semaphore::wait() { throwIfFailed(QVSemaphoreWait(handle_)); }

bool Semaphore::tryWait() { return QVSemaphoreTryWait(handle_) >= 0; }

void Semaphore::signal() { throwIfFailed(QVSemaphorePost(handle_)); }

std::int32_t Semaphore::getValue() {
    std::int32_t value = 0;
    throwIfFailed(QVSemaphoreGetValue(handle_, &value));
    return value;
}

} // namespace qv::ipc
