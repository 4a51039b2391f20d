#pragma once

#include <cstdint>

namespace qv::core {

/// What tells one living thread of the process from another; never noThread. A fork does not change
/// it: the thread that forked has the same token in the child, and still owns what it owned.
using ThreadToken = std::uintptr_t;

constexpr ThreadToken noThread = 0;

/// The calling thread. Implemented by the system.
ThreadToken currentThread() noexcept;

} // namespace qv::core
