#pragma once

#include "qv/Reference.h"
#include "qv/ipc/Semaphore.h"
#include "qv/sync/Mutex.h"

namespace qv::ipc {

/// A shared semaphore that the thread which has it may take again, and gives back as often.
///
/// The semaphore keeps other processes out, the owner and the count behind the guard make it
/// recursive within this one. Several objects may work under one guard.
///
/// Kept: the guard is held while a thread waits for the semaphore. So as long as one thread waits
/// through this object (or through another under the same guard), its owner in this process cannot
/// give it back; the wait ends when another process does.
class QV_API SemaphoreR : public Semaphore {
public:
    /// As Semaphore. A null `guard` stands for a mutex of its own.
    SemaphoreR(const char* name, std::uint32_t value, sync::Mutex* guard = nullptr);

    void wait() override;
    /// Always true for the owner. Waits for the guard.
    [[nodiscard]] bool tryWait() override;
    /// Does nothing for a thread that is not the owner.
    void signal() override;

private:
    /// Takes the semaphore by `acquire` unless the calling thread has it. @return false if that
    /// failed.
    template <class Acquire>
    bool take(Acquire acquire);

    /// 0 for none.
    std::uint32_t owner_ = 0;
    std::uint32_t recursionCount_ = 0;
    Reference<sync::Mutex> guard_;
};

} // namespace qv::ipc
