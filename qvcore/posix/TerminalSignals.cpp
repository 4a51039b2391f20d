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
sigset_t takenOver; ///< what the program has set a handler for while it was caught
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

bool isByDefault(const struct sigaction& handling) noexcept {
    return handling.sa_handler == SIG_DFL;
}

bool isByProgram(const struct sigaction& handling) noexcept {
    return !isByDefault(handling) && handling.sa_handler != SIG_IGN;
}

bool isByThisLibrary(const struct sigaction& handling) noexcept;

void catchSignal(int signal) noexcept;

struct sigaction presentHandlingOf(int signal) noexcept {
    struct sigaction present = {};
    sigaction(signal, nullptr, &present);
    return present;
}

/// Lets the signal come that has been raised from its handler, which holds it back.
void deliver(int signal) noexcept {
    sigset_t one;
    sigset_t mask;
    sigemptyset(&one);
    sigaddset(&one, signal);
    pthread_sigmask(SIG_UNBLOCK, &one, &mask);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

/// Has the system end or stop the process here and now.
void handleByDefault(int signal) noexcept {
    struct sigaction byDefault = {};
    struct sigaction before = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, &before);
    raise(signal);
    deliver(signal); // a process that was stopped goes on from here
    const TerminalLock lock;
    if (!isByDefault(presentHandlingOf(signal))) {
        return; // the program has set another meanwhile
    }
    if (!isByDefault(before) && !isByThisLibrary(before)) {
        sigaction(signal, &before, nullptr); // the program's, which has called this library's
    } else if (sigismember(&caught, signal) == 1) {
        catchSignal(signal);
    }
}

/// The handling for this once: a handler may be meant for the first signal alone.
struct sigaction takeHandling(int signal) noexcept {
    const TerminalLock lock;
    const struct sigaction handling = handlingOf(signal);
    if ((handling.sa_flags & SA_RESETHAND) != 0) {
        handlingOf(signal) = {};
    }
    return handling;
}

void handleByProgram(const struct sigaction& handling, int signal, siginfo_t* information,
                     void* context) noexcept {
    if ((handling.sa_flags & SA_SIGINFO) != 0) {
        handling.sa_sigaction(signal, information, context);
    } else {
        handling.sa_handler(signal);
    }
    if (isByDefault(presentHandlingOf(signal))) {
        deliver(signal); // to end by its default is what some handlers do last
    }
}

void handle(int signal, siginfo_t* information, void* context) noexcept {
    const int error = errno;
    RawTerminal::pause();
    const struct sigaction handling = takeHandling(signal);
    if (isByDefault(handling)) {
        handleByDefault(signal);
    } else {
        handleByProgram(handling, signal, information, context);
    }
    RawTerminal::resume();
    errno = error;
}

/// A process goes on whether the program handles that or not, in the background perhaps.
void handleContinue(int signal, siginfo_t* information, void* context) noexcept {
    const int error = errno;
    RawTerminal::doubt();
    const struct sigaction handling = takeHandling(signal);
    if (isByProgram(handling)) {
        handleByProgram(handling, signal, information, context);
    }
    errno = error;
}

using Handler = void (*)(int, siginfo_t*, void*);

Handler handlerOf(int signal) noexcept { return signal == SIGCONT ? handleContinue : handle; }

bool isByThisLibrary(const struct sigaction& handling) noexcept {
    return handling.sa_sigaction == handle || handling.sa_sigaction == handleContinue;
}

/// @return whether a signal that is handled so is to be caught. A handler that was set while the
/// signal was caught may call this library's, as the one that it stands before, and is left alone.
bool isToBeCaught(int signal, const struct sigaction& handling) noexcept {
    const bool isDefault = isByDefault(handling);
    if (contains(leftAlone, signal) || (!isDefault && sigismember(&takenOver, signal) == 1)) {
        return false;
    }
    return isDefault || signal == SIGCONT ||
           (handling.sa_handler != SIG_IGN && contains(orderly, signal));
}

void catchSignal(int signal) noexcept {
    struct sigaction handling = handlingOf(signal);
    if (!isByProgram(handling)) {
        handling.sa_flags = SA_RESTART | SA_ONSTACK; // a process that goes on notices nothing
    }
    handling.sa_flags |= SA_SIGINFO;
    handling.sa_flags &= ~SA_RESETHAND; // this handler stays, and sees to that itself
    handling.sa_sigaction = handlerOf(signal);
    sigaction(signal, &handling, nullptr);
}

void catchIfWanted(int signal) noexcept {
    struct sigaction handling = {};
    if (sigaction(signal, nullptr, &handling) != 0) {
        return;
    }
    if (isByThisLibrary(handling)) { // set again by who saw it
        sigaddset(&caught, signal);
    } else if (isToBeCaught(signal, handling)) {
        handlingOf(signal) = handling;
        sigaddset(&caught, signal);
        catchSignal(signal);
    }
}

void giveBack(int signal) noexcept {
    const struct sigaction present = presentHandlingOf(signal);
    if (isByThisLibrary(present)) {
        sigaction(signal, &handlingOf(signal), nullptr);
    } else if (present.sa_sigaction != handlingOf(signal).sa_sigaction) {
        sigaddset(&takenOver, signal);
    }
}

} // namespace

TerminalSignals::TerminalSignals() noexcept {
    const TerminalLock lock;
    for (int signal = 1; signal < signalCount; ++signal) {
        catchIfWanted(signal);
    }
}

TerminalSignals::~TerminalSignals() {
    const TerminalLock lock;
    forget();
}

void TerminalSignals::forget() noexcept {
    if (sigisemptyset(&caught)) {
        return; // the child of a process that reads no keys
    }
    for (int signal = 1; signal < signalCount; ++signal) {
        if (sigismember(&caught, signal) == 1) {
            giveBack(signal);
        }
    }
    sigemptyset(&caught);
}

} // namespace qv::core
