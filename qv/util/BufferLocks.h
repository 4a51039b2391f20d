#pragma once

#include "qv/ErrorRule.h"
#include "qv/util/IBuffer.h"

namespace qv::util {

/// Scoped read lock of a buffer.
///
/// Borrows: the buffer. A release that fails in the destructor ends the process, since the lock
/// would stay held by nobody.
template <class Unit>
class BufferReadLock {
public:
    /// @throws ResultException with the buffer's result.
    explicit BufferReadLock(const IBuffer<Unit>& buffer) : buffer_(&buffer) {
        throwIfFailed(buffer.GetReadLock(&data_));
    }
    BufferReadLock(const BufferReadLock&) = delete;
    BufferReadLock& operator=(const BufferReadLock&) = delete;
    ~BufferReadLock() {
        if (buffer_ != nullptr) {
            throwIfFailed(
                buffer_->ReleaseReadLock()); // the destructor is noexcept: a throw ends it
        }
    }

    const Unit* getData() const noexcept { return data_; }

    /// Ends the lock early, where a failure can still be reported.
    /// @throws ResultException with the buffer's result.
    void release() { throwIfFailed(std::exchange(buffer_, nullptr)->ReleaseReadLock()); }

private:
    const IBuffer<Unit>* buffer_;
    const Unit* data_ = nullptr;
};

/// Scoped write lock of a buffer. The scope's end releases with the length set last; until one is
/// set the buffer keeps its length.
///
/// Borrows: the buffer. A release that fails in the destructor ends the process.
template <class Unit>
class BufferWriteLock {
public:
    /// @throws ResultException with the buffer's result.
    BufferWriteLock(IBuffer<Unit>& buffer, int capacity) : buffer_(&buffer) {
        throwIfFailed(buffer.GetWriteLock(capacity, &data_));
        length_ = buffer.GetLength();
    }
    BufferWriteLock(const BufferWriteLock&) = delete;
    BufferWriteLock& operator=(const BufferWriteLock&) = delete;
    ~BufferWriteLock() {
        if (buffer_ != nullptr) {
            throwIfFailed(buffer_->ReleaseWriteLock(length_)); // as above
        }
    }

    Unit* getData() const noexcept { return data_; }
    void setLength(int length) noexcept { length_ = length; }

    /// Makes room for `capacity` units; the units may move.
    /// @throws ResultException with the buffer's result.
    void ensureCapacity(int capacity) { throwIfFailed(buffer_->EnsureCapacity(capacity, &data_)); }

    /// Ends the lock early, where a failure can still be reported. @return the buffer's result.
    /// @throws ResultException with that result, if it is a failure.
    std::int32_t release() {
        const std::int32_t result = std::exchange(buffer_, nullptr)->ReleaseWriteLock(length_);
        throwIfFailed(result);
        return result;
    }

private:
    IBuffer<Unit>* buffer_;
    Unit* data_ = nullptr;
    int length_ = 0;
};

} // namespace qv::util
