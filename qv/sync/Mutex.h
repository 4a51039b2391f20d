#pragma once

#include "qv/sync/LockObject.h"

#include <cstdint>

namespace qv::sync {

/// Mutual exclusion. Recursive: its holder may take it again, and gives it back as often.
///
/// Destroying a held mutex is a fault that the platform refuses.
class QV_API Mutex : public LockObject {
public:
    /// `name` labels the mutex for diagnostics only and may be null.
    /// @throws ResultException with the platform's result.
    explicit Mutex(const char* name = nullptr, std::uint32_t flags = 0);
    /// @throws ResultException, if the platform refuses.
    ~Mutex() noexcept(false) override;

    void wait() override;
    [[nodiscard]] bool tryWait() override;
    /// @throws ResultException, QV_E_NOTOWNER from a thread that does not hold the mutex.
    void signal() override;

private:
    std::uint64_t handle_ = 0;
};

} // namespace qv::sync
