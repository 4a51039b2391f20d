#include "qv/io/ByteArrayInputStream.h"

#include <algorithm>

namespace qv::io {

ByteArrayInputStream::ByteArrayInputStream(const signed char* bytes, std::int32_t length)
    : data_(std::make_unique_for_overwrite<signed char[]>(
          static_cast<std::size_t>(std::max(length, 0)))),
      size_(length) {
    std::copy_n(bytes, length, data_.get());
}

std::int32_t ByteArrayInputStream::read(signed char* destination, std::int32_t length) {
    if (pos_ >= size_) {
        return -1;
    }
    const std::int32_t count = std::min(length, size_ - pos_);
    if (count < 1) {
        return 0;
    }
    std::copy_n(data_.get() + pos_, count, destination);
    pos_ += count;
    return count;
}

} // namespace qv::io
