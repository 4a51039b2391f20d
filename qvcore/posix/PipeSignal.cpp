#include "qvcore/posix/PipeSignal.h"

#include <cerrno>
#include <ctime>

namespace qv::core {

namespace {

sigset_t pipeSignal() noexcept {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool isPending() noexcept {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

PipeSignalBlock::PipeSignalBlock() noexcept : wasPending_(isPending()) {
    const sigset_t set = pipeSignal();
    pthread_sigmask(SIG_BLOCK, &set, &previous_);
}

PipeSignalBlock::~PipeSignalBlock() {
    const int error = errno;
    if (!wasPending_ && isPending()) {
        const sigset_t set = pipeSignal();
        const timespec noWait = {};
        while (sigtimedwait(&set, nullptr, &noWait) == -1 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    errno = error;
}

} // namespace qv::core
