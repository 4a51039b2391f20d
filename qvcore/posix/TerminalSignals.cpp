#include "qvcore/posix/TerminalSignals.h"

#include "qvcore/posix/RawTerminal.h"
#include "qvcore/posix/TerminalLock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <pthread.h>

namespace qv::core {

namespace {

/// Programs handle these to end or stop in their own way, and then find the terminal restored.
constexpr std::array orderly = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM,
                                SIGALRM, SIGUSR1, SIGUSR2, SIGTSTP};

/// These cannot be caught, do nothing by default, stop a process in the background, which has made
/// no terminal raw, or are a crash.
constexpr std::array leftAlone = {SIGKILL, SIGSTOP, SIGCHLD, SIGURG, SIGWINCH, SIGTTIN, SIGTTOU,
                                  SIGILL,  SIGTRAP, SIGABRT, SIGBUS, SIGFPE,   SIGSEGV, SIGSYS};

constexpr int signalCount = _NSIG;

// Change under the TerminalLock.
sigset_t caught;
/// How each signal is handled but for that. Remains behind the reading: who saw the handler
/// meanwhile may set it again.
std::array<struct sigaction, signalCount> handlings;

struct sigaction& handlingOf(int signal) noexcept {
    return handlings[static_cast<std::size_t>(signal)];
}

template <std::size_t count>
bool contains(const std::array<int, count>& signals, int signal) noexcept {
    return std::find(signals.begin(), signals.end(), signal) != signals.end();
}

bool isHandledByDefault(int signal) noexcept { return handlingOf(signal).sa_handler == SIG_DFL; }

void catchSignal(int signal) noexcept;

/// Has the system end or stop the process here and now.
void handleByDefault(int signal) noexcept {
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, nullptr);
    raise(signal);
    sigset_t one;
    sigset_t mask;
    sigemptyset(&one);
    sigaddset(&one, signal);
    pthread_sigmask(SIG_UNBLOCK, &one, &mask); // a process that was stopped goes on from here
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    const TerminalLock lock;
    if (sigismember(&caught, signal) == 1) {
        catchSignal(signal);
    }
}

void handleByProgram(int signal, siginfo_t* information, void* context) noexcept {
    const struct sigaction& handling = handlingOf(signal);
    if ((handling.sa_flags & SA_SIGINFO) != 0) {
        handling.sa_sigaction(signal, information, context);
    } else {
        handling.sa_handler(signal);
    }
}

void handle(int signal, siginfo_t* information, void* context) noexcept {
    const int error = errno;
    RawTerminal::pause();
    if (isHandledByDefault(signal)) {
        handleByDefault(signal);
    } else {
        handleByProgram(signal, information, context);
    }
    RawTerminal::resume();
    errno = error;
}

/// A process that goes on may do so in the background, or find the terminal set by others.
void handleContinue(int signal, siginfo_t* information, void* context) noexcept {
    const int error = errno;
    RawTerminal::renew();
    if (!isHandledByDefault(signal)) {
        handleByProgram(signal, information, context);
    }
    errno = error;
}

using Handler = void (*)(int, siginfo_t*, void*);

Handler handlerOf(int signal) noexcept { return signal == SIGCONT ? handleContinue : handle; }

/// Finds how a signal is handled. @return whether it is to be caught.
bool isToBeCaught(int signal) noexcept {
    struct sigaction handling = {};
    if (contains(leftAlone, signal) || sigaction(signal, nullptr, &handling) != 0 ||
        handling.sa_handler == SIG_IGN) {
        return false;
    }
    if (handling.sa_sigaction != handlerOf(signal)) { // unless set again by who saw it
        handlingOf(signal) = handling;
    }
    return isHandledByDefault(signal) || signal == SIGCONT || contains(orderly, signal);
}

void catchSignal(int signal) noexcept {
    struct sigaction handling = handlingOf(signal);
    if (isHandledByDefault(signal)) {
        handling.sa_flags = SA_RESTART | SA_ONSTACK; // a process that goes on notices nothing
    }
    handling.sa_flags |= SA_SIGINFO;
    handling.sa_sigaction = handlerOf(signal);
    sigaction(signal, &handling, nullptr);
}

void giveBack(int signal) noexcept {
    struct sigaction present = {};
    if (sigaction(signal, nullptr, &present) == 0 && present.sa_sigaction == handlerOf(signal)) {
        sigaction(signal, &handlingOf(signal), nullptr);
    }
}

} // namespace

TerminalSignals::TerminalSignals() noexcept {
    const TerminalLock lock;
    for (int signal = 1; signal < signalCount; ++signal) {
        if (isToBeCaught(signal)) {
            sigaddset(&caught, signal);
            catchSignal(signal);
        }
    }
}

TerminalSignals::~TerminalSignals() {
    const TerminalLock lock;
    forget();
}

void TerminalSignals::forget() noexcept {
    sigemptyset(&caught);
    for (int signal = 1; signal < signalCount; ++signal) {
        giveBack(signal);
    }
}

} // namespace qv::core
