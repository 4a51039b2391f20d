#pragma once

#include <cstddef>

namespace support {

/// Counts the allocations of this thread while it lives, by `new` and by the C library's functions,
/// and lets one fail on request: under a sanitizer one of those by `new`.
class Allocations {
public:
    /// With `failing` above 0 that allocation fails, counted from 1.
    explicit Allocations(std::size_t failing = 0) noexcept;
    Allocations(const Allocations&) = delete;
    Allocations& operator=(const Allocations&) = delete;
    ~Allocations();

    std::size_t count() const noexcept;
};

} // namespace support
