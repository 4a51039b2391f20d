#pragma once

#include <cstddef>

namespace support {

/// Counts the allocations by `new` of this thread while it lives, and lets one fail on request. The
/// test program's own operators new are what the library's modules call too.
class Allocations {
public:
    /// With `failing` above 0 that allocation fails with std::bad_alloc, counted from 1.
    explicit Allocations(std::size_t failing = 0) noexcept;
    Allocations(const Allocations&) = delete;
    Allocations& operator=(const Allocations&) = delete;
    ~Allocations();

    std::size_t count() const noexcept;
};

} // namespace support
