#pragma once

#include "qvcore/common/ThreadToken.h"

#include "qv/Results.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace qv::core {

/// A recursive mutex that knows its holder.
///
/// Thread safety: internally locked.
class RecursiveMutex {
public:
    void acquire() {
        const ThreadToken self = currentThread();
        if (!isHeldBy(self)) {
            mutex_.lock();
            owner_.store(self, std::memory_order_relaxed);
        }
        ++depth_;
    }

    bool tryAcquire() {
        const ThreadToken self = currentThread();
        if (!isHeldBy(self)) {
            if (!mutex_.try_lock()) {
                return false;
            }
            owner_.store(self, std::memory_order_relaxed);
        }
        ++depth_;
        return true;
    }

    /// @return QV_E_NOTOWNER if the calling thread is not the holder.
    std::int32_t release() noexcept {
        if (!isHeld()) {
            return QV_E_NOTOWNER;
        }
        if (--depth_ == 0) {
            unlock();
        }
        return QV_S_OK;
    }

    /// Gives up all acquisitions at once. Requires: isHeld().
    /// @return how many there were.
    std::uint32_t releaseWhole() noexcept {
        const std::uint32_t depth = depth_;
        depth_ = 0;
        unlock();
        return depth;
    }

    /// Takes back what releaseWhole gave up.
    void acquireWhole(std::uint32_t depth) {
        acquire();
        depth_ = depth;
    }

    /// True if the calling thread holds it.
    bool isHeld() const noexcept { return isHeldBy(currentThread()); }
    bool isHeldByAny() const noexcept { return owner_.load(std::memory_order_relaxed) != noThread; }

private:
    // A thread finds its own token only if it wrote it itself, so no order is needed.
    bool isHeldBy(ThreadToken thread) const noexcept {
        return owner_.load(std::memory_order_relaxed) == thread;
    }

    void unlock() noexcept {
        owner_.store(noThread, std::memory_order_relaxed);
        mutex_.unlock();
    }

    std::mutex mutex_;
    std::atomic<ThreadToken> owner_ = noThread;
    std::uint32_t depth_ = 0;
};

} // namespace qv::core
