#pragma once

#include "qv/sync/SyncObject.h"

#include <cstdint>

namespace qv::ipc {

/// A count of free places that processes share by its name.
///
/// The first process that opens a name makes the semaphore; it is gone with the last handle of any
/// process. Where it was made with one place, the form of a lock, a place that a process took and
/// did not give back comes back when the process ends.
class QV_API Semaphore : public sync::Object {
public:
    /// Opens the semaphore of that name, or makes it with `value` free places.
    /// @throws ResultException with the platform's result.
    Semaphore(const char* name, std::uint32_t value);
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

} // namespace qv::ipc
