#include "qv/sync/Mutex.h"

#include "qv/ErrorRule.h"
#include "qvcore/Locks.h"

namespace qv::sync {

Mutex::Mutex(const char* name, std::uint32_t flags) {
    throwIfFailed(QVMutexCreate(name, flags, &handle_));
}

Mutex::~Mutex() noexcept(false) { throwIfFailed(QVMutexDestroy(handle_)); }

void Mutex::wait() { throwIfFailed(QVMutexAcquire(handle_)); }

bool Mutex::tryWait() { return QVMutexTryAcquire(handle_) >= 0; }

void Mutex::signal() { throwIfFailed(QVMutexRelease(handle_)); }

} // namespace qv::sync
