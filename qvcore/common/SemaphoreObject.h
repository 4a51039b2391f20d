#pragma once

#include "qvcore/common/Handle.h"

namespace qv::core {

/// The greatest count of a semaphore.
constexpr std::uint32_t greatestCount = 0x7FFFFFFF;

/// What the semaphore operations work on: a semaphore of this process, or one that processes share.
///
/// Thread safety: internally locked.
class SemaphoreObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::Semaphore;

    virtual ~SemaphoreObject() = default;

    virtual std::int32_t wait() = 0;
    /// @return QV_E_TIMEOUT if the count is 0.
    virtual std::int32_t tryWait() = 0;
    /// @return QV_E_TOOMANYPOSTS beyond greatestCount.
    virtual std::int32_t post() = 0;
    virtual std::int32_t getValue(std::int32_t& value) = 0;

    /// Which of the two it is: each is ended by an operation of its own.
    virtual bool isShared() const noexcept = 0;
    bool isInUse() const noexcept { return false; }

protected:
    explicit SemaphoreObject(const char* name) : HandleObject(handleKind, name) {}
};

} // namespace qv::core
