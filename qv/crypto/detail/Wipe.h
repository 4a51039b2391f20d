#pragma once

#include <cstddef>
#include <cstring>

namespace qv::crypto::detail {

/// Overwrites memory with zeros, also where nothing reads it any more.
inline void wipe(void* memory, std::size_t size) noexcept {
    std::memset(memory, 0, size);
    // A reader that the compiler knows nothing of: without it the writing would be left out.
    __asm__ __volatile__("" : : "r"(memory) : "memory");
}

} // namespace qv::crypto::detail
