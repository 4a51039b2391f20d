#pragma once

#include "qv/sync/SyncObject.h"

#include <cstdint>

namespace qv::sync {

/// A signal for one waiter: each signal lets one wait pass and is used up by it. Signals do not add
/// up: a second one before the wait changes nothing. A new event is not signalled.
class QV_API Event : public Object {
public:
    /// `name` labels the event for diagnostics only and may be null.
    /// @throws ResultException with the platform's result.
    explicit Event(const char* name = nullptr, std::uint32_t flags = 0);
    /// @throws ResultException, if the platform refuses.
    ~Event() noexcept(false) override;

    void wait() override;
    /// Always false, and leaves the event as it is.
    /// Kept: an event is waited for, never polled; `wait(0)` is the way to ask.
    [[nodiscard]] bool tryWait() override;

    // Slot order is contract from here on.

    /// Waits at most `timeout` milliseconds; 0xFFFFFFFF waits for ever.
    /// @return true when the signal was taken, false when the time ran out.
    /// @throws ResultException on any other failure.
    [[nodiscard]] virtual bool wait(std::uint32_t timeout);
    /// @throws ResultException with the platform's result.
    virtual void signal();

private:
    std::uint64_t handle_ = 0;
};

} // namespace qv::sync
