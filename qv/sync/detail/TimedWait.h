#pragma once

#include "qv/ErrorRule.h"

#include <cstdint>

namespace qv::sync::detail {

/// What a platform's timed wait means to the caller of a timed wait that tells a timeout by its
/// result. Kept: a positive result is no acquisition and reads as false.
/// @return true for 0, false for a timeout.
/// @throws ResultException with any other failure.
inline bool acquiredInTime(std::int32_t result) {
    if (result != QV_E_TIMEOUT) {
        throwIfFailed(result);
    }
    return result == QV_S_OK;
}

} // namespace qv::sync::detail
