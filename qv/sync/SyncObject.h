#pragma once

#include "qv/Object.h"

namespace qv::sync {

/// Root of all that can be waited for. `wait` means acquire or block, throughout.
///
/// Thread safety: internally locked, here and in every class below.
class QV_API Object : public qv::Object {
public:
    Object() noexcept = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// @throws ResultException with the platform's result.
    virtual void wait() = 0;
    /// Acquires only if that needs no waiting. Never throws.
    [[nodiscard]] virtual bool tryWait() = 0;
};

} // namespace qv::sync
