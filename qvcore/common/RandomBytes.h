#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::core {

/// Fills memory from the system's secure random source. @return 0, or the result of its failure.
std::int32_t fillWithRandomBytes(void* memory, std::size_t size) noexcept;

} // namespace qv::core
