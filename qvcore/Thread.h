#pragma once

#include "qvcore/Core.h"

/// The calling thread's id as the system's own tools show it; never 0.
QVCORE_API uint32_t QVThreadGetID(void) QVCORE_NOEXCEPT;
