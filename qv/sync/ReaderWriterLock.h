#pragma once

#include "qv/sync/LockObject.h"

#include <cstdint>

namespace qv::sync {

/// Several readers at once, or one writer. The members of every lock are the writer's side; the
/// shared ones are the reader's.
///
/// Not recursive: a thread that holds one side does not ask for the other, nor for the same again.
/// Where it would wait for itself it is refused with the result 0x8007046B. A waiting writer goes
/// before new readers. Each side is given back by the thread that took it. Destroying a held lock
/// is a fault that the platform refuses.
class QV_API ReaderWriterLock : public LockObject {
public:
    /// `name` labels the lock for diagnostics only and may be null.
    /// @throws ResultException with the platform's result.
    explicit ReaderWriterLock(const char* name = nullptr, std::uint32_t flags = 0);
    /// @throws ResultException, if the platform refuses.
    ~ReaderWriterLock() noexcept(false) override;

    void wait() override;
    [[nodiscard]] bool tryWait() override;
    /// @throws ResultException, QV_E_NOTOWNER from a thread that does not hold the writer's side.
    void signal() override;

    // Slot order is contract from here on.

    /// @throws ResultException with the platform's result.
    virtual void waitShared();
    /// Acquires the reader's side only if that needs no waiting. Never throws.
    [[nodiscard]] virtual bool tryWaitShared();
    /// @throws ResultException, QV_E_NOTOWNER from a thread that does not hold the reader's side.
    virtual void signalShared();

private:
    std::uint64_t handle_ = 0;
};

} // namespace qv::sync
