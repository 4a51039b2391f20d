#include "qvcore/posix/TerminalLock.h"

#include <atomic>
#include <csignal>
#include <sched.h>

namespace qv::core {

namespace {

constinit std::atomic_flag isHeld;
sigset_t holdersMask; // belongs to who holds the lock

} // namespace

void TerminalLock::acquire() noexcept {
    sigset_t all;
    sigset_t mask;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &mask);
    while (isHeld.test_and_set()) { // a mutex is not for signal handlers
        sched_yield();
    }
    holdersMask = mask;
}

void TerminalLock::release() noexcept {
    const sigset_t mask = holdersMask;
    isHeld.clear();
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

} // namespace qv::core
