#include "qv/io/detail/BufferedInput.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qv::io::detail {

template <class Source, class Unit>
BufferedInput<Source, Unit>::BufferedInput(Source* in, std::int32_t size)
    : in_(in), bufferSize_(std::max(size, 16)),
      buffer_(std::make_unique_for_overwrite<Unit[]>(static_cast<std::size_t>(bufferSize_))) {}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::fillBuffer() {
    if (markPos_ < 0) {
        fillFrom(0);
    } else if (pos_ - markPos_ < markLimit_) {
        keepMarkedUnits();
        fillFrom(count_);
    } else {
        refillGivingUpMark();
    }
}

/// Brings the units behind the mark to the front of the buffer, which grows to the mark's limit if
/// that is more than it has.
template <class Source, class Unit>
void BufferedInput<Source, Unit>::keepMarkedUnits() {
    const std::int32_t used = pos_ - markPos_;
    const Unit* const marked = buffer_.get() + markPos_;
    if (markLimit_ > bufferSize_) {
        auto grown = std::make_unique_for_overwrite<Unit[]>(static_cast<std::size_t>(markLimit_));
        std::copy_n(marked, used, grown.get());
        buffer_ = std::move(grown);
        bufferSize_ = markLimit_;
    } else {
        std::copy_n(marked, used, buffer_.get());
    }
    markPos_ = 0;
    pos_ = count_ = used;
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::fillFrom(std::int32_t offset) {
    const std::int32_t read = in_->read(buffer_.get() + offset, bufferSize_ - offset);
    if (read > 0) {
        pos_ = offset;
        count_ = offset + read;
    }
}

/// Reads into a buffer of its own, so that a source that fails leaves the mark and its units whole.
template <class Source, class Unit>
void BufferedInput<Source, Unit>::refillGivingUpMark() {
    auto fresh = std::make_unique_for_overwrite<Unit[]>(static_cast<std::size_t>(bufferSize_));
    buffer_.swap(fresh);
    try {
        fillFrom(0);
    } catch (...) {
        buffer_.swap(fresh);
        throw;
    }
    markPos_ = markGivenUp;
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::provide(Room& room, std::int32_t count) const {
    const auto needed = static_cast<std::size_t>(count) + static_cast<std::size_t>(bufferSize_);
    if (room.size < needed) {
        const std::size_t size = needed + static_cast<std::size_t>(count);
        room.units = std::make_unique_for_overwrite<Unit[]>(size);
        room.size = size;
    }
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::takeBack(const Unit* units, std::int32_t count,
                                           Room& room) noexcept {
    if (count == 0 || markPos_ >= 0) {
        pos_ -= count; // a live mark has kept them in the buffer
        return;
    }
    const std::int32_t left = unreadCount();
    const std::int32_t all = count + left;
    const bool grows = all > bufferSize_;
    Unit* const front = grows ? room.units.get() : buffer_.get();
    std::memmove(front + count, unread(), static_cast<std::size_t>(left) * sizeof(Unit));
    std::copy_n(units, count, front);
    if (grows) {
        buffer_ = std::move(room.units);
        bufferSize_ = all;
    }
    pos_ = 0;
    count_ = all;
}

template <class Source, class Unit>
std::int32_t BufferedInput<Source, Unit>::read(Unit* destination, std::int32_t length) {
    ensureOpen();
    Room room;
    std::int32_t total = 0;
    try {
        readBlock(destination, length, total, room);
    } catch (...) {
        takeBack(destination, total, room);
        throw;
    }
    return total;
}

/// Adds what it hands out to `total`, or makes that -1 where the source has ended.
template <class Source, class Unit>
void BufferedInput<Source, Unit>::readBlock(Unit* destination, std::int32_t length,
                                            std::int32_t& total, Room& room) {
    while (total < length) {
        if (isUsedUp()) {
            if (total > 0 && in_->available() == 0) {
                return;
            }
            const std::int32_t remaining = length - total;
            if (remaining >= bufferSize_ && markPos_ < 0) {
                const std::int32_t read = in_->read(destination + total, remaining);
                total += read > 0 || total == 0 ? read : 0;
                return;
            }
            if (total > 0 && length > bufferSize_) {
                provide(room, total);
            }
            fillBuffer();
            if (isUsedUp()) {
                total = total > 0 ? total : -1;
                return;
            }
        }
        const std::int32_t copied = std::min(length - total, unreadCount());
        std::copy_n(unread(), copied, destination + total);
        pass(copied);
        total += copied;
    }
}

template <class Source, class Unit>
std::int32_t BufferedInput<Source, Unit>::skip(std::int32_t count) {
    ensureOpen();
    std::int32_t skipped = 0;
    while (skipped < count) {
        if (isUsedUp()) {
            fillBuffer();
        }
        if (isUsedUp()) {
            break;
        }
        const std::int32_t step = std::min(count - skipped, unreadCount());
        pass(step);
        skipped += step;
    }
    return skipped;
}

template <class Source, class Unit>
std::int32_t BufferedInput<Source, Unit>::available() {
    ensureOpen();
    const auto sum =
        static_cast<std::uint32_t>(in_->available()) + static_cast<std::uint32_t>(unreadCount());
    return static_cast<std::int32_t>(sum);
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::close() {
    buffer_.reset();
    in_->close();
}

template <class Source, class Unit>
bool BufferedInput<Source, Unit>::markSupported() {
    return true;
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::mark(std::int32_t limit) {
    ensureOpen();
    markLimit_ = limit;
    markPos_ = pos_;
}

template <class Source, class Unit>
void BufferedInput<Source, Unit>::reset() {
    ensureOpen();
    if (markPos_ == markGivenUp) {
        throw IoException(u"mark invalid");
    }
    if (markPos_ < 0) {
        throw IoException(u"stream not marked");
    }
    pos_ = markPos_;
}

template class BufferedInput<InputStream, signed char>;
template class BufferedInput<Reader, char16_t>;

} // namespace qv::io::detail
