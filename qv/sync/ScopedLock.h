#pragma once

namespace qv::sync {

/// Holds anything that has `wait` and `signal` for the length of a scope.
///
/// Borrows: the lock. A `signal` that fails in the destructor ends the process, since the lock
/// would stay held by nobody.
template <class Lock>
class ScopedLock {
public:
    /// @throws what `wait` throws.
    explicit ScopedLock(Lock& lock) : lock_(lock) { lock_.wait(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;
    ~ScopedLock() { lock_.signal(); }

private:
    Lock& lock_;
};

/// The same for the shared side of a reader-writer lock.
template <class Lock>
class ScopedSharedLock {
public:
    explicit ScopedSharedLock(Lock& lock) : lock_(lock) { lock_.waitShared(); }
    ScopedSharedLock(const ScopedSharedLock&) = delete;
    ScopedSharedLock& operator=(const ScopedSharedLock&) = delete;
    ~ScopedSharedLock() { lock_.signalShared(); }

private:
    Lock& lock_;
};

} // namespace qv::sync
