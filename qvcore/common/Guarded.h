#pragma once

#include "qv/Results.h"

#include <cstdint>
#include <new>

namespace qv::core {

/// Runs a callable that gives a result, and turns what it throws into one.
template <typename Body>
std::int32_t guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return QV_E_OUTOFMEMORY;
    } catch (...) {
        return QV_E_FAIL;
    }
}

} // namespace qv::core
