#pragma once

#include "qv/sync/SyncObject.h"

#include <cstdint>

namespace qv::sync {

/// A count of free places: a wait takes one and blocks at 0, a signal gives one back. It belongs to
/// no thread.
class QV_API Semaphore : public Object {
public:
    /// Starts with `initial` places. `name` labels the semaphore for diagnostics only and may be
    /// null.
    /// @throws ResultException with the platform's result.
    explicit Semaphore(std::uint32_t initial, const char* name = nullptr, std::uint32_t flags = 0);
    /// @throws ResultException, if the platform refuses.
    ~Semaphore() noexcept(false) override;

    void wait() override;
    [[nodiscard]] bool tryWait() override;

    // Slot order is contract from here on.

    /// @throws ResultException, QV_E_TOOMANYPOSTS beyond the greatest count.
    virtual void signal();
    /// The count at this moment.
    /// @throws ResultException with the platform's result.
    [[nodiscard]] virtual std::int32_t getValue();

private:
    std::uint64_t handle_ = 0;
};

} // namespace qv::sync
