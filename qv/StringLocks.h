#pragma once

#include "qv/ErrorRule.h"
#include "qv/String.h"
#include "qv/detail/Exactly.h"
#include "qv/detail/Lengths.h"
#include "qv/util/ROBuffer.h"
#include "qv/util/RWBuffer.h"

/// How the string's own members reach its units. The two buffers that a string makes itself have no
/// lock and are reached directly; every other inner buffer is reached through its lock protocol.
namespace qv {

namespace detail {

/// True if a string may take a new buffer of `capacity` units in place of `buffer` where it would
/// write to it: it had to separate from it, or grow it. A foreign buffer of which the string is the
/// only holder is for writing through, and room that was reserved stays.
inline bool givesWay(IQVCharBuffer* buffer, int capacity) noexcept {
    if (const auto* own = exactly<util::RWCharBuffer>(buffer)) {
        return own->GetRefCount() > 1 || own->getCapacity() <= capacity;
    }
    return exactly<util::ROCharBuffer>(buffer) != nullptr;
}

} // namespace detail

/// Scoped read access to a string's units.
class String::Reader {
public:
    explicit Reader(const String& string) {
        if (const auto* own = detail::exactly<util::RWCharBuffer>(string.buffer_)) {
            take(own->util::RWCharBuffer::getData(), own->util::RWCharBuffer::getLength());
        } else if (const auto* literal = detail::exactly<util::ROCharBuffer>(string.buffer_)) {
            take(literal->util::ROCharBuffer::getData(), literal->util::ROCharBuffer::getLength());
        } else {
            const char16_t* units = nullptr;
            throwIfFailed(string.buffer_->GetReadLock(&units));
            locked_ = string.buffer_;
            take(units, locked_->GetLength());
        }
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() {
        if (locked_ != nullptr) {
            throwIfFailed(locked_->ReleaseReadLock()); // noexcept: a failure here ends the process
        }
    }

    const char16_t* units() const noexcept { return units_; }
    /// Units of the text, without the terminator.
    int length() const noexcept { return length_; }

private:
    void take(const char16_t* units, int innerLength) noexcept {
        units_ = units;
        length_ = innerLength > 0 ? innerLength - 1 : 0;
    }

    const IQVCharBuffer* locked_ = nullptr;
    const char16_t* units_ = nullptr;
    int length_ = 0;
};

/// Scoped write access to a string's units: separates the string, drops its narrow form, and ends
/// with the length set last.
class String::Writer {
public:
    /// Makes room for `capacity` units besides the terminator.
    explicit Writer(String& string, int capacity = 0) {
        string.dropNarrowCache();
        string.copyOnWrite(capacity + 1);
        own_ = detail::exactly<util::RWCharBuffer>(string.buffer_);
        inner_ = string.buffer_;
        if (own_ != nullptr) {
            units_ = own_->util::RWCharBuffer::ensureCapacity(capacity + 1);
            length_ = own_->util::RWCharBuffer::getLength() - 1;
        } else {
            throwIfFailed(inner_->GetWriteLock(capacity + 1, &units_));
            length_ = inner_->GetLength() - 1;
        }
        length_ = length_ < 0 ? 0 : length_;
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        units_[length_] = 0;
        if (own_ != nullptr) {
            own_->util::RWCharBuffer::releaseWriteLock(length_ + 1);
        } else {
            throwIfFailed(inner_->ReleaseWriteLock(length_ + 1)); // noexcept, as above
        }
    }

    char16_t* units() const noexcept { return units_; }
    int length() const noexcept { return length_; }
    /// Requires: room for `length` units and the terminator.
    void setLength(int length) noexcept { length_ = length; }

    /// Makes room for `capacity` units besides the terminator.
    void ensureCapacity(int capacity) {
        if (own_ != nullptr) {
            units_ = own_->util::RWCharBuffer::ensureCapacity(capacity + 1);
        } else {
            char16_t* units = nullptr; // a buffer that refuses stores null, and keeps its units
            throwIfFailed(inner_->EnsureCapacity(capacity + 1, &units));
            units_ = units;
        }
    }

private:
    util::RWCharBuffer* own_ = nullptr;
    IQVCharBuffer* inner_ = nullptr;
    char16_t* units_ = nullptr;
    int length_ = 0;
};

} // namespace qv
