#pragma once

#include "qv/IQVUnknown.h"

namespace qv::util {

/// A growable array of units (bytes, or UTF-16 units) behind a lock protocol: a reader takes a read
/// lock and gets a pointer; a writer takes a write lock with a capacity, writes, and gives the new
/// length back. One protocol so serves plain memory, read-only data and buffers that threads share.
///
/// Lengths and capacities count units. A pointer is valid until its lock is released.
template <class Unit>
class IBuffer : public IQVUnknown {
public:
    /// Units in use.
    virtual int GetLength() const = 0;
    /// The units, without a lock; may be null where there are none.
    virtual const Unit* GetData() const = 0;
    /// Takes a read lock and stores the units in `*data`. @return 0, or a failure with null stored.
    virtual std::int32_t GetReadLock(const Unit** data) const = 0;
    /// Ends a read lock.
    virtual std::int32_t ReleaseReadLock() const = 0;
    /// 1 or 0.
    virtual short IsWritable() const = 0;
    /// Takes a write lock with room for `capacity` units and stores the units in `*data`.
    /// @return 0, or a failure with null stored: QV_E_NOTIMPL where nothing can be written,
    /// QV_E_OUTOFMEMORY.
    virtual std::int32_t GetWriteLock(int capacity, Unit** data) = 0;
    /// Makes room under a write lock; the pointer may move. Never shrinks. @return as GetWriteLock.
    virtual std::int32_t EnsureCapacity(int capacity, Unit** data) = 0;
    /// Ends a write lock; a negative length keeps the old one.
    virtual std::int32_t ReleaseWriteLock(int length) = 0;
    /// Gives unused room back.
    virtual std::int32_t FreeExtra() = 0;

protected:
    ~IBuffer() = default;
};

using IByteBuffer = IBuffer<signed char>;
using ICharBuffer = IBuffer<char16_t>;

} // namespace qv::util

inline constexpr GUID IID_IQVByteBuffer{
    0xBD454BEB, 0xD847, 0x40F3, {0xAA, 0xBF, 0x30, 0x83, 0xAC, 0x2A, 0xC5, 0x4B}};
inline constexpr GUID IID_IQVCharBuffer{
    0x1F2639A2, 0x1EBC, 0x4E20, {0x85, 0x60, 0x0A, 0xA5, 0x9F, 0x8A, 0xCB, 0x39}};

/// A byte buffer as other modules see it.
class IQVByteBuffer : public qv::util::IByteBuffer {
protected:
    ~IQVByteBuffer() = default;
};

/// A character buffer as other modules see it: the out-parameter of every component operation that
/// returns a text.
class IQVCharBuffer : public qv::util::ICharBuffer {
protected:
    ~IQVCharBuffer() = default;
};
