#include "qvcore/Locks.h"

#include "qvcore/common/Handle.h"
#include "qvcore/common/ThreadToken.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace {

using namespace qv;
using namespace qv::core;

/// A thread asked for a side while it holds one that can only be given back by itself.
constexpr std::int32_t wouldDeadlock = detail::result(0x8007046Bu);

/// Its states: free, read by some threads, written by one. Waiting writers go in front of new
/// readers. A thread that reads already is let in again, also in front of a waiting writer, which
/// waits for that very thread; every other second request of one thread would wait for itself and
/// is refused.
///
/// Thread safety: internally locked.
class ReaderWriterLock : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::RWLock;

    explicit ReaderWriterLock(const char* name) : HandleObject(handleKind, name) {}

    std::int32_t acquireWrite() {
        std::unique_lock lock(guard_);
        if (isWriter() || isReader()) {
            return wouldDeadlock;
        }
        ++waitingWriters_;
        writerMayEnter_.wait(lock, [this] { return isFree(); });
        --waitingWriters_;
        writer_ = currentThread();
        return QV_S_OK;
    }

    std::int32_t tryAcquireWrite() {
        const std::lock_guard lock(guard_);
        if (!isFree()) {
            return QV_E_TIMEOUT;
        }
        writer_ = currentThread();
        return QV_S_OK;
    }

    std::int32_t releaseWrite() {
        const std::lock_guard lock(guard_);
        if (!isWriter()) {
            return QV_E_NOTOWNER;
        }
        writer_ = noThread;
        wakeNext();
        return QV_S_OK;
    }

    std::int32_t acquireRead() {
        std::unique_lock lock(guard_);
        if (isWriter()) {
            return wouldDeadlock;
        }
        readersMayEnter_.wait(lock, [this] { return isOpenToReader(); });
        readers_.push_back(currentThread());
        return QV_S_OK;
    }

    std::int32_t tryAcquireRead() {
        const std::lock_guard lock(guard_);
        if (!isOpenToReader()) {
            return QV_E_TIMEOUT;
        }
        readers_.push_back(currentThread());
        return QV_S_OK;
    }

    std::int32_t releaseRead() {
        const std::lock_guard lock(guard_);
        const auto found = std::find(readers_.begin(), readers_.end(), currentThread());
        if (found == readers_.end()) {
            return QV_E_NOTOWNER;
        }
        *found = readers_.back();
        readers_.pop_back();
        if (readers_.empty()) {
            wakeNext();
        }
        return QV_S_OK;
    }

    bool isInUse() {
        const std::lock_guard lock(guard_);
        return !isFree();
    }

private:
    bool isFree() const noexcept { return writer_ == noThread && readers_.empty(); }
    bool isWriter() const noexcept { return writer_ == currentThread(); }
    bool isReader() const noexcept {
        return std::find(readers_.begin(), readers_.end(), currentThread()) != readers_.end();
    }
    bool isOpenToReader() const noexcept {
        return writer_ == noThread && (waitingWriters_ == 0 || isReader());
    }

    void wakeNext() noexcept {
        if (waitingWriters_ != 0) {
            writerMayEnter_.notify_one();
        } else {
            readersMayEnter_.notify_all();
        }
    }

    std::mutex guard_;
    std::condition_variable writerMayEnter_;
    std::condition_variable readersMayEnter_;
    ThreadToken writer_ = noThread;
    /// One entry for each acquisition.
    std::vector<ThreadToken> readers_;
    std::uint32_t waitingWriters_ = 0;
};

} // namespace

std::int32_t QVRWLockCreate(const char* name, std::uint32_t, std::uint64_t* handle) noexcept {
    return createHandle<ReaderWriterLock>(handle, name);
}

std::int32_t QVRWLockAcquireWrite(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(handle,
                                        [](ReaderWriterLock& lock) { return lock.acquireWrite(); });
}

std::int32_t QVRWLockTryAcquireWrite(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(
        handle, [](ReaderWriterLock& lock) { return lock.tryAcquireWrite(); });
}

std::int32_t QVRWLockReleaseWrite(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(handle,
                                        [](ReaderWriterLock& lock) { return lock.releaseWrite(); });
}

std::int32_t QVRWLockAcquireRead(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(handle,
                                        [](ReaderWriterLock& lock) { return lock.acquireRead(); });
}

std::int32_t QVRWLockTryAcquireRead(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(
        handle, [](ReaderWriterLock& lock) { return lock.tryAcquireRead(); });
}

std::int32_t QVRWLockReleaseRead(std::uint64_t handle) noexcept {
    return withHandle<ReaderWriterLock>(handle,
                                        [](ReaderWriterLock& lock) { return lock.releaseRead(); });
}

std::int32_t QVRWLockDestroy(std::uint64_t handle) noexcept {
    return destroyHandle<ReaderWriterLock>(handle);
}
