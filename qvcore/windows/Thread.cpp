#include "qvcore/Thread.h"

#include "qvcore/common/ThreadToken.h"

#include <windows.h>

std::uint32_t QVThreadGetID() noexcept { return GetCurrentThreadId(); }

qv::core::ThreadToken qv::core::currentThread() noexcept { return GetCurrentThreadId(); }
