#pragma once

#include "qv/sync/ReaderWriterLock.h"
#include "qv/util/RWBuffer.h"

namespace qv::util {

/// A buffer that threads share: its locks are real, several readers or one writer between a lock
/// and its release.
///
/// `getLength`, `getData` and `ensureCapacity` take no lock of their own: a caller that needs them
/// consistent uses them between a lock and its release, and a writer may grow the buffer under its
/// write lock. Copies and assignments take no lock of either side.
///
/// A write lock whose room cannot be allocated throws std::bad_alloc and stays held: the caller
/// gives it back or does not use the buffer again. Ending a buffer while one of its locks is held
/// ends the process.
///
/// Owns: its memory and its lock. Thread safety: internally locked, as far as said above.
template <class Unit>
class QV_API_TEMPLATE MTBuffer : public RWBuffer<Unit> {
public:
    MTBuffer();
    explicit MTBuffer(int capacity);
    MTBuffer(const Unit* data, int length, int capacity = 0);
    /// Copies the units; the copy has a lock of its own.
    MTBuffer(const MTBuffer& other);
    /// Copies the units and leaves the lock alone.
    MTBuffer& operator=(const MTBuffer& other);
    ~MTBuffer() noexcept override;

    /// Waits for the shared side of the lock.
    /// @throws ResultException with the platform's result, as all lock operations here.
    const Unit* getReadLock() const override;
    void releaseReadLock() const override;
    /// Waits for the exclusive side of the lock.
    Unit* getWriteLock(int capacity) override;
    /// Stores the length, then gives the lock back.
    void releaseWriteLock(int length) override;
    /// Waits for the exclusive side of the lock, so that the caller holds neither.
    /// @throws ResultException, 0x8007046B from a thread that holds one.
    void freeExtra() override;

private:
    mutable sync::ReaderWriterLock lock_;
};

using MTByteBuffer = MTBuffer<signed char>;
using MTCharBuffer = MTBuffer<char16_t>;

QV_EXTERN_INSTANCE(MTBuffer<signed char>);
QV_EXTERN_INSTANCE(MTBuffer<char16_t>);

} // namespace qv::util
