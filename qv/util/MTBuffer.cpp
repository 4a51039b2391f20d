#include "qv/util/MTBuffer.h"

#include "qv/sync/ScopedLock.h"

#include <algorithm>

namespace qv::util {

template <class Unit>
MTBuffer<Unit>::MTBuffer() = default;

template <class Unit>
MTBuffer<Unit>::MTBuffer(int capacity) : RWBuffer<Unit>(capacity) {}

template <class Unit>
MTBuffer<Unit>::MTBuffer(const Unit* data, int length, int capacity)
    : RWBuffer<Unit>(data, length, capacity) {}

template <class Unit>
MTBuffer<Unit>::MTBuffer(const MTBuffer& other) : RWBuffer<Unit>(other) {}

template <class Unit>
MTBuffer<Unit>& MTBuffer<Unit>::operator=(const MTBuffer& other) {
    if (this == &other) {
        return *this;
    }
    // The steps of RWBuffer's own assignment, on RWBuffer's own members: the virtual release of
    // this class would give back a lock that is not held.
    Unit* const units = RWBuffer<Unit>::ensureCapacity(other.getCapacity());
    std::copy_n(other.getData(), std::min(other.getLength(), other.getCapacity()), units);
    RWBuffer<Unit>::releaseWriteLock(other.getLength());
    return *this;
}

template <class Unit>
MTBuffer<Unit>::~MTBuffer() noexcept = default;

template <class Unit>
const Unit* MTBuffer<Unit>::getReadLock() const {
    lock_.waitShared();
    return this->getData();
}

template <class Unit>
void MTBuffer<Unit>::releaseReadLock() const {
    lock_.signalShared();
}

template <class Unit>
Unit* MTBuffer<Unit>::getWriteLock(int capacity) {
    lock_.wait();
    return this->ensureCapacity(capacity);
}

template <class Unit>
void MTBuffer<Unit>::releaseWriteLock(int length) {
    RWBuffer<Unit>::releaseWriteLock(length);
    lock_.signal();
}

template <class Unit>
void MTBuffer<Unit>::freeExtra() {
    const sync::ScopedLock lock(lock_);
    this->reallocBuffer(this->getLength());
}

template class MTBuffer<signed char>;
template class MTBuffer<char16_t>;

} // namespace qv::util
