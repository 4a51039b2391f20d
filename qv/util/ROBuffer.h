#pragma once

#include "qv/util/AbstractBuffer.h"

namespace qv::util {

/// A buffer over memory of the caller's that is only read. A copy shares the memory.
///
/// Borrows: the memory, which must outlive the buffer and its copies.
/// Thread safety: const-safe.
template <class Unit>
class QV_API_TEMPLATE ROBuffer : public AbstractBuffer<Unit> {
public:
    /// No units.
    ROBuffer() noexcept = default;
    /// `capacity` is accepted for the sake of one form with RWBuffer, and dropped.
    ROBuffer(const Unit* data, int length, int capacity = 0) noexcept;
    ROBuffer(const ROBuffer& other) noexcept = default;
    ROBuffer& operator=(const ROBuffer& other) noexcept = default;
    ~ROBuffer() noexcept override = default;

    int getLength() const noexcept override { return length_; }
    const Unit* getData() const noexcept override { return data_; }
    const Unit* getReadLock() const noexcept override { return data_; }
    void releaseReadLock() const noexcept override {}
    bool isWritable() const noexcept override { return false; }
    /// The write side throws ReadOnlyException.
    Unit* getWriteLock(int capacity) override;
    Unit* ensureCapacity(int capacity) override;
    void releaseWriteLock(int length) override;
    void freeExtra() noexcept override {}

    /// The write side of the component face answers QV_E_NOTIMPL, with null stored, and throws
    /// nothing.
    std::int32_t GetReadLock(const Unit** data) const noexcept override;
    std::int32_t ReleaseReadLock() const noexcept override;
    short IsWritable() const noexcept override;
    std::int32_t GetWriteLock(int capacity, Unit** data) noexcept override;
    std::int32_t EnsureCapacity(int capacity, Unit** data) noexcept override;
    std::int32_t ReleaseWriteLock(int length) noexcept override;
    std::int32_t FreeExtra() noexcept override;

private:
    const Unit* data_ = nullptr;
    int length_ = 0;
};

using ROByteBuffer = ROBuffer<signed char>;
using ROCharBuffer = ROBuffer<char16_t>;

QV_EXTERN_INSTANCE(ROBuffer<signed char>);
QV_EXTERN_INSTANCE(ROBuffer<char16_t>);

} // namespace qv::util
