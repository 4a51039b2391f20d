#pragma once

#include "qv/Export.h"

#include <atomic>
#include <cstdint>

namespace qv::qvcom {

/// The unit that delivers components: it may be unloaded when its lock count is 0.
///
/// Objects that belong to a module (ComObject::SetComModule) move the count on their transitions
/// between 0 and 1, so it counts live objects and not references.
///
/// Thread safety: internally locked.
class Module {
public:
    Module() = default;
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    /// @return the new count.
    std::uint32_t AddRef() noexcept {
        return lockCount_.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    /// @return the new count.
    std::uint32_t Release() noexcept {
        return lockCount_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    /// A snapshot that may be stale when it returns.
    std::uint32_t GetRefCount() const noexcept {
        return lockCount_.load(std::memory_order_relaxed);
    }

private:
    std::atomic<std::uint32_t> lockCount_{0};
};

} // namespace qv::qvcom
