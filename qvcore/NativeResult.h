#pragma once

#include "qvcore/Core.h"

/// Turns a native error number (errno; on Windows the last error) into a result. 0 gives 0. One
/// failure has one value on every system: a missing file is 0x80070002 everywhere. The end-of-file
/// error is 0x80070026. Numbers without a counterpart give 0x8BE10000 plus the number on Linux and
/// 0x80070000 plus the number on Windows.
QVCORE_API int32_t QVResultFromNative(uint32_t code) QVCORE_NOEXCEPT;
