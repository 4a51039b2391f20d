#pragma once

#include <cstddef>

namespace support {

/// One page of memory between two pages that may not be touched: an access outside it ends the
/// program.
class GuardedBuffer {
public:
    GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer();

    /// A place for units flush against the page in front.
    template <class Unit = char>
    Unit* atStart() const {
        return reinterpret_cast<Unit*>(page_);
    }
    /// A place for exactly `count` units flush against the page behind.
    template <class Unit = char>
    Unit* atEnd(std::size_t count) const {
        return reinterpret_cast<Unit*>(page_ + size_ - count * sizeof(Unit));
    }

private:
    std::size_t size_;
    char* page_;
};

} // namespace support
