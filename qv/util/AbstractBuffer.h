#pragma once

#include "qv/Object.h"
#include "qv/util/IBuffer.h"

namespace qv::util {

namespace detail {

template <class Unit>
struct BufferInterface;
template <>
struct BufferInterface<signed char> {
    using Type = IQVByteBuffer;
    static constexpr const GUID& iid = IID_IQVByteBuffer;
};
template <>
struct BufferInterface<char16_t> {
    using Type = IQVCharBuffer;
    static constexpr const GUID& iid = IID_IQVCharBuffer;
};

} // namespace detail

/// Base of all buffers: the native face to implement, and the component face written once over it.
template <class Unit>
class QV_API_TEMPLATE AbstractBuffer : public Object, public detail::BufferInterface<Unit>::Type {
public:
    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() const noexcept override { return Object::AddRef(); }
    std::uint32_t Release() const noexcept override { return Object::Release(); }

    // Slot order is contract from here on.

    /// Units in use.
    virtual int getLength() const = 0;
    /// The units, without a lock; may be null where there are none.
    virtual const Unit* getData() const = 0;
    /// Takes a read lock. @return the units, valid until the lock is released.
    virtual const Unit* getReadLock() const = 0;
    /// Ends a read lock.
    virtual void releaseReadLock() const = 0;
    /// False where the write side throws.
    virtual bool isWritable() const = 0;
    /// @return a place for `capacity` units, valid until the lock is released.
    /// @throws ReadOnlyException, std::bad_alloc.
    virtual Unit* getWriteLock(int capacity) = 0;
    /// Makes room for `capacity` units under a write lock. @return the units, which may have moved.
    /// @throws ReadOnlyException, std::bad_alloc.
    virtual Unit* ensureCapacity(int capacity) = 0;
    /// Ends a write lock with the new length; a negative one keeps the old.
    /// @throws ReadOnlyException.
    virtual void releaseWriteLock(int length) = 0;
    /// Gives unused room back.
    virtual void freeExtra() = 0;

    // Slot order ends here.

    /// True for a length of 0.
    bool isEmpty() const { return getLength() == 0; }

    // The component face: each calls its native twin, and what that throws is its result.

    int GetLength() const override;
    const Unit* GetData() const override;
    std::int32_t GetReadLock(const Unit** data) const noexcept override;
    std::int32_t ReleaseReadLock() const noexcept override;
    short IsWritable() const override;
    std::int32_t GetWriteLock(int capacity, Unit** data) noexcept override;
    std::int32_t EnsureCapacity(int capacity, Unit** data) noexcept override;
    std::int32_t ReleaseWriteLock(int length) noexcept override;
    std::int32_t FreeExtra() noexcept override;

    static const qvcom::InterfaceData* GetComIntfMap() noexcept;

protected:
    AbstractBuffer() noexcept = default;
};

using AbstractByteBuffer = AbstractBuffer<signed char>;
using AbstractCharBuffer = AbstractBuffer<char16_t>;

QV_EXTERN_INSTANCE(AbstractBuffer<signed char>);
QV_EXTERN_INSTANCE(AbstractBuffer<char16_t>);

} // namespace qv::util
