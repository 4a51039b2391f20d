#include "qvcore/posix/SignalPause.h"

#include "qvcore/posix/TerminalChange.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <pthread.h>

namespace qv::core {

namespace {

/// A program handles these to end, stop or continue in its own way, and finds the terminal
/// restored.
constexpr std::array orderly = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM, SIGALRM,
                                SIGUSR1, SIGUSR2, SIGTSTP, SIGCONT};

/// These cannot be caught, do nothing by default, stop a process in the background, which has made
/// no terminal raw, or are a crash.
constexpr std::array leftAlone = {SIGKILL, SIGSTOP, SIGCHLD, SIGURG, SIGWINCH, SIGTTIN, SIGTTOU,
                                  SIGILL,  SIGTRAP, SIGABRT, SIGBUS, SIGFPE,   SIGSEGV, SIGSYS};

constexpr int signalCount = _NSIG;

pthread_t reader;
sigset_t caught;   // changes under terminalChange
sigset_t forkMask; // likewise
std::array<struct sigaction, signalCount> previous;
std::array<volatile std::sig_atomic_t, signalCount> arrived;

template <std::size_t count>
bool contains(const std::array<int, count>& signals, int signal) noexcept {
    return std::find(signals.begin(), signals.end(), signal) != signals.end();
}

/// Runs `action` for each signal of the set.
template <typename Action>
void forEach(const sigset_t& signals, Action action) noexcept {
    for (int signal = 1; signal < signalCount; ++signal) {
        if (sigismember(&signals, signal) == 1) {
            action(signal);
        }
    }
}

bool hasArrived() noexcept {
    return std::any_of(arrived.begin(), arrived.end(),
                       [](std::sig_atomic_t each) { return each != 0; });
}

/// The handler. A thread other than the reader hands the signal on.
void note(int signal) noexcept {
    if (pthread_equal(pthread_self(), reader)) {
        arrived[static_cast<std::size_t>(signal)] = 1;
    } else {
        pthread_kill(reader, signal);
    }
}

/// Whether a signal that the thread does not block is to be caught. Keeps its handling.
bool isAwaited(int signal) noexcept {
    struct sigaction& handling = previous[static_cast<std::size_t>(signal)];
    if (contains(leftAlone, signal) || sigaction(signal, nullptr, &handling) != 0) {
        return false;
    }
    return handling.sa_handler == SIG_DFL ||
           (handling.sa_handler != SIG_IGN && contains(orderly, signal));
}

sigset_t awaitedSignals(const sigset_t& blocked) noexcept {
    sigset_t signals;
    sigemptyset(&signals);
    for (int signal = 1; signal < signalCount; ++signal) {
        if (sigismember(&blocked, signal) == 0 && isAwaited(signal)) {
            sigaddset(&signals, signal);
        }
    }
    return signals;
}

void giveBack() noexcept {
    forEach(caught, [](int signal) {
        sigaction(signal, &previous[static_cast<std::size_t>(signal)], nullptr);
    });
    sigemptyset(&caught);
}

void forgetArrived() noexcept { std::fill(arrived.begin(), arrived.end(), 0); }

} // namespace

SignalPause::SignalPause() noexcept {
    const std::lock_guard lock(terminalChange);
    reader = pthread_self();
    forgetArrived();
    pthread_sigmask(SIG_BLOCK, nullptr, &mask_);
    caught = awaitedSignals(mask_);
    pthread_sigmask(SIG_BLOCK, &caught, nullptr);
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART; // other threads' calls go on; `wait` ends all the same
    forEach(caught, [&action](int signal) { sigaction(signal, &action, nullptr); });
}

SignalPause::~SignalPause() {
    {
        const std::lock_guard lock(terminalChange);
        giveBack();
    }
    // From here on handlers of the program may run, which may end the process.
    pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    for (int signal = 1; signal < signalCount; ++signal) {
        if (arrived[static_cast<std::size_t>(signal)] != 0) {
            raise(signal);
        }
    }
}

bool SignalPause::wait(int descriptor) noexcept {
    pollfd ready = {descriptor, POLLIN, 0};
    while (!hasArrived()) { // another thread may have handed one on already
        if (ppoll(&ready, 1, nullptr, &mask_) != -1 || errno != EINTR) {
            return true;
        }
    }
    return false;
}

void SignalPause::beginFork() noexcept { pthread_sigmask(SIG_BLOCK, &caught, &forkMask); }

void SignalPause::endFork() noexcept { pthread_sigmask(SIG_SETMASK, &forkMask, nullptr); }

void SignalPause::forget() noexcept {
    giveBack();
    forgetArrived();
}

} // namespace qv::core
