#pragma once

#include "qv/Object.h"
#include "qv/Reference.h"
#include "qv/detail/NumberBytes.h"

#include <bit>
#include <cassert>
#include <cstdint>

namespace qv::io {
class InputStream;
class OutputStream;
} // namespace qv::io

namespace qv::io::detail {

/// A fixed area of bytes with a position, a limit and a byte order: all of a byte buffer but its
/// name. `Self` is the class that is named, `Byte` its byte, `Order` its enumeration of orders, of
/// which 0 is the host's and any other value swaps.
///
/// position <= limit <= capacity. Relative operations work at the position and move it on; absolute
/// ones take an index and leave it alone. Single bytes and numbers are not checked at all: to stay
/// in front of the limit is the caller's part. Blocks are cut at the limit; behind it they have no
/// bytes.
template <class Self, class Byte, class Order>
class QV_API_TEMPLATE PositionedBytes : public Object {
public:
    /// Allocates `capacity` bytes, which are not cleared. @throws std::bad_alloc.
    PositionedBytes(unsigned int capacity, Order order, bool readOnly);
    /// Borrows: `data`, as the following.
    PositionedBytes(Byte* data, unsigned int capacity, Order order, bool readOnly);
    PositionedBytes(const Byte* data, unsigned int capacity, Order order);
    PositionedBytes(const PositionedBytes&) = delete;
    PositionedBytes& operator=(const PositionedBytes&) = delete;
    ~PositionedBytes() noexcept override;

    /// By capacity, and with equal ones by the unsigned bytes of the whole areas: -1, 0 or 1.
    /// @throws CastFailedException for an object of another kind.
    int compareTo(const Object& other) const override;
    /// The same capacity and the same bytes in the whole areas.
    bool equals(const Object& other) const override;
    /// A hash over at most about 32 sampled bytes.
    std::uint32_t hashCode() const override;

    unsigned int getPosition() const noexcept { return position_; }
    unsigned int getCapacity() const noexcept { return capacity_; }
    unsigned int getLimit() const noexcept { return limit_; }
    Order getOrder() const noexcept { return order_; }
    bool isReadOnly() const noexcept { return readOnly_; }
    /// Bytes between position and limit.
    unsigned int remaining() const noexcept { return limit_ - position_; }

    /// The whole area is free again.
    void clear() noexcept {
        limit_ = capacity_;
        position_ = 0;
    }
    /// What was written is what is to be read.
    void flip() noexcept {
        limit_ = position_;
        position_ = 0;
    }
    void rewind() noexcept { position_ = 0; }
    /// Kept: a position behind the new limit stays there, and `remaining` wraps around.
    /// @throws RangeErrorException above the capacity.
    void setLimit(unsigned int limit);
    /// @throws RangeErrorException above the limit.
    void setPosition(unsigned int position);
    /// @throws UnsupportedOperationException for 2.
    void setOrder(Order order);

    Byte get() noexcept { return data_[advance(1)]; }
    Byte get(unsigned int index) const noexcept { return data_[inside(index, 1)]; }
    std::int16_t getInt16() noexcept { return load<std::int16_t>(advance(2)); }
    std::int16_t getInt16(unsigned int index) const noexcept { return load<std::int16_t>(index); }
    std::int32_t getInt32() noexcept { return load<std::int32_t>(advance(4)); }
    std::int32_t getInt32(unsigned int index) const noexcept { return load<std::int32_t>(index); }
    std::int64_t getInt64() noexcept { return load<std::int64_t>(advance(8)); }
    std::int64_t getInt64(unsigned int index) const noexcept { return load<std::int64_t>(index); }
    float getFloat() noexcept { return std::bit_cast<float>(getInt32()); }
    float getFloat(unsigned int index) const noexcept {
        return std::bit_cast<float>(getInt32(index));
    }
    double getDouble() noexcept { return std::bit_cast<double>(getInt64()); }
    double getDouble(unsigned int index) const noexcept {
        return std::bit_cast<double>(getInt64(index));
    }
    /// Copies at most `n` bytes. @return how many there were.
    unsigned int get(unsigned int index, Byte* destination, unsigned int n) const noexcept;
    unsigned int get(Byte* destination, unsigned int n) noexcept;

    // Every put throws ReadOnlyException on a read-only buffer, before it does anything.

    void put(Byte byte) { data_[writable().advance(1)] = byte; }
    void put(unsigned int index, Byte byte) { data_[writable().inside(index, 1)] = byte; }
    void putInt16(std::int16_t value) { store(writable().advance(2), value); }
    void putInt16(unsigned int index, std::int16_t value) { writable().store(index, value); }
    void putInt32(std::int32_t value) { store(writable().advance(4), value); }
    void putInt32(unsigned int index, std::int32_t value) { writable().store(index, value); }
    void putInt64(std::int64_t value) { store(writable().advance(8), value); }
    void putInt64(unsigned int index, std::int64_t value) { writable().store(index, value); }
    void putFloat(float value) { putInt32(std::bit_cast<std::int32_t>(value)); }
    void putFloat(unsigned int index, float value) {
        putInt32(index, std::bit_cast<std::int32_t>(value));
    }
    void putDouble(double value) { putInt64(std::bit_cast<std::int64_t>(value)); }
    void putDouble(unsigned int index, double value) {
        putInt64(index, std::bit_cast<std::int64_t>(value));
    }
    /// Copies at most `n` bytes. @return how many found room.
    unsigned int put(unsigned int index, const Byte* source, unsigned int n);
    unsigned int put(const Byte* source, unsigned int n);
    /// Moves as many bytes as the source has and this buffer has room for, and both positions with
    /// them. The areas may overlap.
    void put(Self* source);

    /// The area. @throws ReadOnlyException on a read-only buffer.
    Byte* getBuffer() { return writable().data_; }
    const Byte* getConstBuffer() const noexcept { return data_; }
    /// Goes over to another area, whole, and frees one of its own. Borrows: `data`, which must not
    /// be that of the buffer itself.
    /// @throws UnsupportedOperationException for the order 2; the buffer stays as it was then.
    void setBuffer(Byte* data, unsigned int size, Order order, bool readOnly);
    void setBuffer(const Byte* data, unsigned int size, Order order);

    /// Fills what remains by one read. Kept: also that of a read-only buffer.
    /// @return bytes read; 0 at the end of the stream.
    unsigned int readFrom(InputStream* in);
    /// Fills what remains by as many reads as it takes, up to one that gives nothing.
    unsigned int readFully(InputStream* in);
    /// Writes what remains. @return how many bytes that were.
    unsigned int writeTo(OutputStream* out);

    /// A new buffer with the bytes of the whole area, of the given capacity or, for 0, of this one.
    /// With a capacity given its limit is this buffer's capacity.
    /// @throws RangeErrorException for a capacity that is too small.
    Reference<Self> duplicate(bool readOnly, unsigned int capacity) const;
    /// A new buffer over what remains, in the same memory. Borrows: the area, which the slice does
    /// not keep alive.
    Reference<Self> slice() const;

private:
    PositionedBytes& writable() {
        if (readOnly_) [[unlikely]] {
            throwReadOnly();
        }
        return *this;
    }
    [[noreturn]] static void throwReadOnly();
    unsigned int inside(unsigned int index, [[maybe_unused]] unsigned int width) const noexcept {
        assert(std::uint64_t{index} + width <= capacity_);
        return index;
    }
    /// @return the place of the next `width` bytes, which are passed.
    unsigned int advance(unsigned int width) noexcept {
        const unsigned int index = inside(position_, width);
        position_ = index + width;
        return index;
    }
    template <class Number>
    Number load(unsigned int index) const noexcept {
        const auto stored = qv::detail::loadNumber<Number>(data_ + inside(index, sizeof(Number)));
        return order_ != Order{} ? qv::detail::swappedBytes(stored) : stored;
    }
    template <class Number>
    void store(unsigned int index, Number value) noexcept {
        qv::detail::storeNumber(data_ + inside(index, sizeof(Number)),
                                order_ != Order{} ? qv::detail::swappedBytes(value) : value);
    }
    unsigned int bytesFrom(unsigned int index) const noexcept {
        return index < limit_ ? limit_ - index : 0;
    }

    Order order_;
    unsigned int position_ = 0;
    unsigned int capacity_;
    unsigned int limit_;
    Byte* data_;
    bool ownsData_;
    bool readOnly_;
};

} // namespace qv::io::detail
