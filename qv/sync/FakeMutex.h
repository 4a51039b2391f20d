#pragma once

#include "qv/sync/LockObject.h"

#include <cstdint>

namespace qv::sync {

/// Takes the place of a Mutex where no locking is wanted: it is always free and holds nobody back.
class QV_API FakeMutex : public LockObject {
public:
    /// The form of Mutex; both arguments are ignored.
    explicit FakeMutex(const char* name = nullptr, std::uint32_t flags = 0) noexcept;

    void wait() noexcept override {}
    [[nodiscard]] bool tryWait() noexcept override { return true; }
    void signal() noexcept override {}
};

} // namespace qv::sync
