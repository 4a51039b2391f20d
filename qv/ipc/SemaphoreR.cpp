#include "qv/ipc/SemaphoreR.h"

#include "qv/sync/ScopedLock.h"
#include "qvcore/Thread.h"

namespace qv::ipc {

SemaphoreR::SemaphoreR(const char* name, std::uint32_t value, sync::Mutex* guard)
    : Semaphore(name, value), guard_(guard != nullptr ? Reference(guard) : make<sync::Mutex>()) {}

template <class Acquire>
bool SemaphoreR::take(Acquire acquire) {
    const std::uint32_t self = QVThreadGetID();
    const sync::ScopedLock lock(*guard_);
    if (owner_ == self) {
        ++recursionCount_;
        return true;
    }
    if (!acquire()) {
        return false;
    }
    owner_ = self;
    recursionCount_ = 1;
    return true;
}

void SemaphoreR::wait() {
    take([this] {
        Semaphore::wait();
        return true;
    });
}

bool SemaphoreR::tryWait() {
    return take([this] { return Semaphore::tryWait(); });
}

void SemaphoreR::signal() {
    const std::uint32_t self = QVThreadGetID();
    const sync::ScopedLock lock(*guard_);
    if (owner_ != self) {
        return;
    }
    if (recursionCount_ >= 2) {
        --recursionCount_;
        return;
    }
    Semaphore::signal();
    owner_ = 0;
    recursionCount_ = 0;
}

} // namespace qv::ipc
