#pragma once

#include "qv/sync/SyncObject.h"

namespace qv::sync {

/// Root of all that is held by one holder at a time and given back with `signal`.
class QV_API LockObject : public Object {
public:
    /// @throws ResultException with the platform's result.
    virtual void signal() = 0;
};

} // namespace qv::sync
