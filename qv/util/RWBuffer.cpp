#include "qv/util/RWBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace qv::util {

namespace {

constexpr int granularity = 16;

/// The next multiple of 16. @throws std::bad_alloc where that is no `int`.
int roundedCapacity(int capacity) {
    if (capacity < 0 || capacity > std::numeric_limits<int>::max() - (granularity - 1)) {
        throw std::bad_alloc();
    }
    return (capacity + (granularity - 1)) & ~(granularity - 1);
}

template <class Unit>
std::size_t byteCount(int units) {
    return static_cast<std::size_t>(units) * sizeof(Unit);
}

template <class Unit>
Unit* checkedMemory(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return static_cast<Unit*>(memory);
}

} // namespace

template <class Unit>
RWBuffer<Unit>::RWBuffer(int capacity) {
    allocBuffer(capacity);
}

template <class Unit>
RWBuffer<Unit>::RWBuffer(const Unit* data, int length, int capacity) {
    allocBuffer(std::max(capacity, std::max(length, 0)));
    if (length >= 1) {
        std::copy_n(data, length, data_);
        length_ = length;
    }
}

template <class Unit>
RWBuffer<Unit>::RWBuffer(const RWBuffer& other) : AbstractBuffer<Unit>() {
    allocBuffer(std::max(other.capacity_, other.length_));
    if (other.length_ > 0) {
        std::copy_n(other.data_, std::min(other.length_, other.capacity_), data_);
        length_ = other.length_;
    }
}

template <class Unit>
RWBuffer<Unit>& RWBuffer<Unit>::operator=(const RWBuffer& other) {
    if (this == &other) {
        return *this;
    }
    Unit* const units = this->ensureCapacity(other.capacity_);
    if (other.length_ > 0) {
        std::copy_n(other.data_, std::min(other.length_, other.capacity_), units);
    }
    this->releaseWriteLock(other.length_);
    return *this;
}

template <class Unit>
RWBuffer<Unit>::~RWBuffer() noexcept {
    freeBuffer();
}

template <class Unit>
Reference<RWBuffer<Unit>> RWBuffer<Unit>::makeWhole(int capacity) {
    const int rounded = roundedCapacity(capacity);
    void* const memory = ::operator new(sizeof(RWBuffer) + byteCount<Unit>(rounded));
    RWBuffer* const buffer = ::new (memory) RWBuffer;
    buffer->data_ = reinterpret_cast<Unit*>(buffer + 1);
    buffer->capacity_ = rounded;
    buffer->storageIsBehind_ = true;
    buffer->holdFirst();
    return Reference<RWBuffer>::adopt(buffer);
}

template <class Unit>
Unit* RWBuffer<Unit>::getWriteLock(int capacity) {
    return this->ensureCapacity(capacity);
}

template <class Unit>
void RWBuffer<Unit>::freeExtra() {
    reallocBuffer(length_);
}

template <class Unit>
void RWBuffer<Unit>::reallocBuffer(int capacity) {
    if (capacity == 0) {
        freeBuffer();
        return;
    }
    const int rounded = roundedCapacity(capacity);
    if (rounded == capacity_) {
        return;
    }
    if (storageIsBehind_) {
        leaveStorage(rounded);
    } else {
        data_ = checkedMemory<Unit>(std::realloc(data_, byteCount<Unit>(rounded)));
    }
    capacity_ = rounded;
}

/// Moves to storage of its own, unless the new capacity is a smaller one.
template <class Unit>
void RWBuffer<Unit>::leaveStorage(int capacity) {
    if (capacity > capacity_) {
        Unit* const storage = checkedMemory<Unit>(std::malloc(byteCount<Unit>(capacity)));
        std::copy_n(data_, capacity_, storage);
        data_ = storage;
        storageIsBehind_ = false;
    }
}

template <class Unit>
void RWBuffer<Unit>::freeBuffer() noexcept {
    if (!storageIsBehind_) {
        std::free(data_);
    }
    data_ = nullptr;
    capacity_ = 0;
    storageIsBehind_ = false;
}

template <class Unit>
void RWBuffer<Unit>::allocBuffer(int capacity) {
    if (capacity == 0) {
        return;
    }
    const int rounded = roundedCapacity(capacity);
    data_ = checkedMemory<Unit>(std::malloc(byteCount<Unit>(rounded)));
    capacity_ = rounded;
}

template class RWBuffer<signed char>;
template class RWBuffer<char16_t>;

} // namespace qv::util
