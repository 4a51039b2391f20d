#pragma once

#include "qv/sync/SyncObject.h"

#include <cstdint>

namespace qv::sync {

/// A door for threads: open lets every waiter pass, closed holds them.
///
/// A gate stays as it was left: unlike an event it is not used up by the waiter that passes. A new
/// gate is closed. Destroying a gate while a thread waits on it is a fault of the caller.
class QV_API Gate : public Object {
public:
    /// `name` labels the gate for diagnostics only and may be null.
    /// @throws ResultException with the platform's result.
    explicit Gate(const char* name = nullptr, std::uint32_t flags = 0);
    /// @throws ResultException, if the platform refuses.
    ~Gate() noexcept(false) override;

    void wait() override;
    /// Passes an open gate. Never throws.
    [[nodiscard]] bool tryWait() override;

    // Slot order is contract from here on.

    /// Waits at most `timeout` milliseconds; 0xFFFFFFFF waits for ever.
    /// @return true when the gate was passed, false when the time ran out.
    /// @throws ResultException on any other failure.
    [[nodiscard]] virtual bool wait(std::uint32_t timeout);
    /// @throws ResultException with the platform's result.
    virtual void open();
    /// @throws ResultException with the platform's result.
    virtual void close();

private:
    std::uint64_t handle_ = 0;
};

} // namespace qv::sync
