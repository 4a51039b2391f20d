#include "qv/util/RWBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
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
        std::memcpy(data_, data, byteCount<Unit>(length));
        length_ = length;
    }
}

template <class Unit>
RWBuffer<Unit>::RWBuffer(const RWBuffer& other) : AbstractBuffer<Unit>() {
    allocBuffer(std::max(other.capacity_, other.length_));
    if (other.length_ > 0) {
        std::memcpy(data_, other.data_, byteCount<Unit>(std::min(other.length_, other.capacity_)));
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
        std::memcpy(units, other.data_, byteCount<Unit>(std::min(other.length_, other.capacity_)));
    }
    this->releaseWriteLock(other.length_);
    return *this;
}

template <class Unit>
RWBuffer<Unit>::~RWBuffer() noexcept {
    std::free(data_);
}

template <class Unit>
Unit* RWBuffer<Unit>::getWriteLock(int capacity) {
    return this->ensureCapacity(capacity);
}

template <class Unit>
Unit* RWBuffer<Unit>::ensureCapacity(int capacity) {
    if (capacity_ < capacity) {
        reallocBuffer(capacity);
    }
    return data_;
}

template <class Unit>
void RWBuffer<Unit>::releaseWriteLock(int length) {
    if (length >= 0) {
        length_ = length;
    }
}

template <class Unit>
void RWBuffer<Unit>::freeExtra() {
    reallocBuffer(length_);
}

template <class Unit>
void RWBuffer<Unit>::reallocBuffer(int capacity) {
    if (capacity == 0) {
        std::free(data_);
        data_ = nullptr;
        capacity_ = 0;
        return;
    }
    const int rounded = roundedCapacity(capacity);
    if (rounded == capacity_) {
        return;
    }
    data_ = checkedMemory<Unit>(std::realloc(data_, byteCount<Unit>(rounded)));
    capacity_ = rounded;
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
