#include "qv/io/detail/PositionedBytes.h"

#include "qv/Exceptions.h"
#include "qv/io/ByteBuffer.h"
#include "qv/io/InputStream.h"
#include "qv/io/OutputStream.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qv::io::detail {

namespace {

/// What one call of a stream takes at most.
constexpr unsigned int greatestPiece = std::numeric_limits<std::int32_t>::max();

} // namespace

template <class Self, class Byte, class Order>
PositionedBytes<Self, Byte, Order>::PositionedBytes(unsigned int capacity, Order order,
                                                    bool readOnly)
    : order_(order), capacity_(capacity), limit_(capacity), data_(new Byte[capacity]),
      ownsData_(true), readOnly_(readOnly) {}

template <class Self, class Byte, class Order>
PositionedBytes<Self, Byte, Order>::PositionedBytes(Byte* data, unsigned int capacity, Order order,
                                                    bool readOnly)
    : order_(order), capacity_(capacity), limit_(capacity), data_(data), ownsData_(false),
      readOnly_(readOnly) {}

template <class Self, class Byte, class Order>
PositionedBytes<Self, Byte, Order>::PositionedBytes(const Byte* data, unsigned int capacity,
                                                    Order order)
    : PositionedBytes(const_cast<Byte*>(data), capacity, order, true) {}

template <class Self, class Byte, class Order>
PositionedBytes<Self, Byte, Order>::~PositionedBytes() noexcept {
    if (ownsData_) {
        delete[] data_;
    }
}

template <class Self, class Byte, class Order>
int PositionedBytes<Self, Byte, Order>::compareTo(const Object& other) const {
    if (this == &other) {
        return 0;
    }
    const auto* const buffer = dynamic_cast<const Self*>(&other);
    if (buffer == nullptr) {
        throw CastFailedException();
    }
    if (capacity_ != buffer->getCapacity()) {
        return capacity_ > buffer->getCapacity() ? 1 : -1;
    }
    const int order = capacity_ == 0 ? 0 : std::memcmp(data_, buffer->getConstBuffer(), capacity_);
    return static_cast<int>(order > 0) - static_cast<int>(order < 0);
}

template <class Self, class Byte, class Order>
bool PositionedBytes<Self, Byte, Order>::equals(const Object& other) const {
    if (this == &other) {
        return true;
    }
    const auto* const buffer = dynamic_cast<const Self*>(&other);
    return buffer != nullptr && capacity_ == buffer->getCapacity() &&
           (capacity_ == 0 || std::memcmp(data_, buffer->getConstBuffer(), capacity_) == 0);
}

template <class Self, class Byte, class Order>
std::uint32_t PositionedBytes<Self, Byte, Order>::hashCode() const {
    const std::uint64_t step = capacity_ < 32 ? 1 : ((capacity_ - 32) >> 5) + 1;
    std::uint32_t hash = 0;
    for (std::uint64_t i = 0; i < capacity_; i += step) {
        hash = hash * 37 + static_cast<std::uint32_t>(static_cast<std::int32_t>(data_[i]));
    }
    return hash;
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::setLimit(unsigned int limit) {
    if (limit > capacity_) {
        throw RangeErrorException();
    }
    limit_ = limit;
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::setPosition(unsigned int position) {
    if (position > limit_) {
        throw RangeErrorException();
    }
    position_ = position;
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::setOrder(Order order) {
    if (order == Order{2}) {
        throw UnsupportedOperationException();
    }
    order_ = order;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::get(unsigned int index, Byte* destination,
                                                     unsigned int n) const noexcept {
    const unsigned int count = std::min(bytesFrom(index), n);
    if (count > 0) {
        std::memmove(destination, data_ + index, count);
    }
    return count;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::get(Byte* destination, unsigned int n) noexcept {
    const unsigned int count = get(position_, destination, n);
    position_ += count;
    return count;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::put(unsigned int index, const Byte* source,
                                                     unsigned int n) {
    const unsigned int count = std::min(writable().bytesFrom(index), n);
    if (count > 0) {
        std::memmove(data_ + index, source, count);
    }
    return count;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::put(const Byte* source, unsigned int n) {
    const unsigned int count = put(position_, source, n);
    position_ += count;
    return count;
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::put(Self* source) {
    PositionedBytes& from = *source;
    const unsigned int count =
        put(position_, from.data_ + from.position_, from.bytesFrom(from.position_));
    const unsigned int position = position_ + count;
    from.position_ += count;
    position_ = position; // where the two are one buffer, it has moved once
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::setBuffer(Byte* data, unsigned int size, Order order,
                                                   bool readOnly) {
    setOrder(order);
    if (ownsData_) {
        delete[] data_;
    }
    data_ = data;
    ownsData_ = false;
    readOnly_ = readOnly;
    capacity_ = size;
    clear();
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::setBuffer(const Byte* data, unsigned int size,
                                                   Order order) {
    setBuffer(const_cast<Byte*>(data), size, order, true);
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::readFrom(InputStream* in) {
    const unsigned int room = std::min(bytesFrom(position_), greatestPiece);
    if (room == 0) {
        return 0;
    }
    const std::int32_t read = in->read(reinterpret_cast<signed char*>(data_ + position_),
                                       static_cast<std::int32_t>(room));
    const auto count = static_cast<unsigned int>(std::max(read, 0));
    position_ += count;
    return count;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::readFully(InputStream* in) {
    unsigned int total = 0;
    for (unsigned int count = readFrom(in); count > 0; count = readFrom(in)) {
        total += count;
    }
    return total;
}

template <class Self, class Byte, class Order>
unsigned int PositionedBytes<Self, Byte, Order>::writeTo(OutputStream* out) {
    unsigned int total = 0;
    do {
        const unsigned int piece = std::min(bytesFrom(position_), greatestPiece);
        out->write(reinterpret_cast<const signed char*>(data_ + position_),
                   static_cast<std::int32_t>(piece));
        position_ += piece;
        total += piece;
    } while (bytesFrom(position_) > 0);
    return total;
}

template <class Self, class Byte, class Order>
Reference<Self> PositionedBytes<Self, Byte, Order>::duplicate(bool readOnly,
                                                              unsigned int capacity) const {
    auto copy = make<Self>(capacity != 0 ? capacity : capacity_, order_, readOnly);
    if (capacity != 0) {
        copy->setLimit(capacity_);
    }
    if (capacity_ > 0) {
        PositionedBytes& bytes = *copy;
        std::memcpy(bytes.data_, data_, capacity_);
    }
    return copy;
}

template <class Self, class Byte, class Order>
Reference<Self> PositionedBytes<Self, Byte, Order>::slice() const {
    return make<Self>(data_ + position_, bytesFrom(position_), order_, readOnly_);
}

template <class Self, class Byte, class Order>
void PositionedBytes<Self, Byte, Order>::throwReadOnly() {
    throw ReadOnlyException();
}

template class PositionedBytes<ByteBuffer, signed char, ENUM_QV_ENDIAN>;

} // namespace qv::io::detail
