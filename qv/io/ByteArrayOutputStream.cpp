#include "qv/io/ByteArrayOutputStream.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>

namespace qv::io {

namespace {

constexpr std::int64_t greatestCount = std::numeric_limits<std::int32_t>::max();

} // namespace

ByteArrayOutputStream::ByteArrayOutputStream(std::int32_t capacity) { reallocBuffer(capacity); }

/// Where in the buffer `bytes` begin, or -1 where they are not in it.
std::ptrdiff_t ByteArrayOutputStream::placeOf(const signed char* bytes) const noexcept {
    const std::less<const signed char*> isBefore;
    const signed char* const begin = buffer_.get();
    return isBefore(bytes, begin) || !isBefore(bytes, begin + size_) ? -1 : bytes - begin;
}

void ByteArrayOutputStream::write(const signed char* bytes, std::int32_t length) {
    if (length < 1) {
        return;
    }
    if (length > capacity_ - size_) {
        if (length > greatestCount - size_) {
            throw std::bad_alloc();
        }
        const std::ptrdiff_t ownPlace = placeOf(bytes);
        ensureCapacity(size_ + length);
        if (ownPlace >= 0) {
            bytes = buffer_.get() + ownPlace; // they moved with the buffer
        }
    }
    std::copy_n(bytes, length, buffer_.get() + size_);
    size_ += length;
}

String ByteArrayOutputStream::toString() const { return toString(nullptr); }

String ByteArrayOutputStream::toString(const char16_t* encoding) const {
    return String(buffer_.get(), size_, encoding);
}

std::int32_t ByteArrayOutputStream::getBytes(signed char* destination, std::int32_t max) const {
    const std::int32_t count = std::clamp(max, 0, size_);
    std::copy_n(buffer_.get(), count, destination);
    return count;
}

void ByteArrayOutputStream::reset() { size_ = 0; }

void ByteArrayOutputStream::writeTo(OutputStream* out) const { out->write(buffer_.get(), size_); }

void ByteArrayOutputStream::ensureCapacity(std::int32_t needed) {
    if (capacity_ < needed) {
        const std::int64_t withReserve = std::int64_t{needed} * 5 / 4;
        reallocBuffer(static_cast<std::int32_t>(std::min(withReserve, greatestCount)));
    }
}

void ByteArrayOutputStream::reallocBuffer(std::int32_t capacity) {
    capacity = std::max(capacity, 0);
    // One byte at least, so that null always means that memory ran out.
    void* const moved =
        std::realloc(buffer_.get(), static_cast<std::size_t>(std::max(capacity, 1)));
    if (moved == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(buffer_.release());
    buffer_.reset(static_cast<signed char*>(moved));
    capacity_ = capacity;
    size_ = std::min(capacity, size_);
}

} // namespace qv::io
