#pragma once

#include "qv/Reference.h"
#include "qv/util/AbstractBuffer.h"

namespace qv::util {

/// A buffer in memory of its own, for one thread at a time: its locks lock nothing, and a pointer
/// taken under one is good until the next `ensureCapacity`.
///
/// Capacity is what was asked for, rounded up to a multiple of 16 units; there is no growth beyond
/// that, so an owner that grows by small steps applies a rule of its own.
///
/// Owns: its memory. Thread safety: one thread at a time.
template <class Unit>
class QV_API_TEMPLATE RWBuffer : public AbstractBuffer<Unit> {
public:
    /// No units, and no memory yet.
    RWBuffer() noexcept = default;
    /// No units, and room for `capacity`. @throws std::bad_alloc, as everything here that needs
    /// room.
    explicit RWBuffer(int capacity);
    /// Copies `length` units into a buffer of the greater of `length` and `capacity`.
    RWBuffer(const Unit* data, int length, int capacity = 0);
    /// Copies the units, into memory of its own with as much room.
    RWBuffer(const RWBuffer& other);
    /// Copies the units through `ensureCapacity` and `releaseWriteLock` of this object.
    RWBuffer& operator=(const RWBuffer& other);
    ~RWBuffer() noexcept override;

    int getLength() const noexcept override { return length_; }
    const Unit* getData() const noexcept override { return data_; }
    const Unit* getReadLock() const override { return data_; }
    void releaseReadLock() const override {}
    bool isWritable() const noexcept override { return true; }
    Unit* getWriteLock(int capacity) override;
    Unit* ensureCapacity(int capacity) override {
        if (capacity_ < capacity) {
            reallocBuffer(capacity);
        }
        return data_;
    }
    /// The length is stored as it comes, also above the capacity.
    void releaseWriteLock(int length) override {
        if (length >= 0) {
            length_ = length;
        }
    }
    /// Cuts the capacity to the length rounded up to 16; with length 0 the memory goes.
    void freeExtra() override;

    /// The room there is, in units.
    int getCapacity() const noexcept { return capacity_; }

    /// A buffer whose first storage lies behind it in the same allocation: for an owner that knows
    /// how much it needs. Where it outgrows that, it moves to storage of its own.
    static Reference<RWBuffer> makeWhole(int capacity);

    /// The allocation may be longer than the object.
    static void operator delete(void* memory) noexcept { ::operator delete(memory); }
    static void operator delete(void*, void*) noexcept {}

protected:
    /// The work behind `freeExtra`, for classes that put a lock around it.
    void reallocBuffer(int capacity);

private:
    void allocBuffer(int capacity);
    void leaveStorage(int capacity);
    void freeBuffer() noexcept;

    Unit* data_ = nullptr;
    int capacity_ = 0;
    int length_ = 0;
    bool storageIsBehind_ = false;
};

using RWByteBuffer = RWBuffer<signed char>;
using RWCharBuffer = RWBuffer<char16_t>;

QV_EXTERN_INSTANCE(RWBuffer<signed char>);
QV_EXTERN_INSTANCE(RWBuffer<char16_t>);

} // namespace qv::util
