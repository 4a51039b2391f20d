#include "qvcore/Thread.h"

#include "qvcore/common/ThreadToken.h"

#include <pthread.h>
#include <unistd.h>

std::uint32_t QVThreadGetID() noexcept { return static_cast<std::uint32_t>(gettid()); }

qv::core::ThreadToken qv::core::currentThread() noexcept {
    return static_cast<ThreadToken>(pthread_self());
}
