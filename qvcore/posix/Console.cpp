#include "qvcore/Console.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <pthread.h>
#include <termios.h>

namespace qv::core {

namespace {

constexpr std::int32_t endOfInputKey = 26;
constexpr std::int32_t backspaceKey = 8;

/// The signals that end, stop or continue a process and can be caught.
constexpr std::array signals = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM, SIGALRM,
                                SIGUSR1, SIGUSR2, SIGTSTP, SIGCONT};

/// Catches those signals for as long as the object lives, so that they do not end or stop the
/// process before the terminal is restored. They are blocked outside of `wait`; what came is raised
/// again at the end, when their own handling is back, and does what it would have done. Left alone
/// is what is ignored, or blocked by the thread itself. One object at a time.
class SignalPause {
public:
    SignalPause() noexcept {
        reader_ = pthread_self();
        sigset_t blocked;
        sigemptyset(&blocked);
        pthread_sigmask(SIG_BLOCK, nullptr, &mask_);
        for (std::size_t index = 0; index < signals.size(); ++index) {
            if (catchSignal(index)) {
                sigaddset(&blocked, signals[index]);
            }
        }
        pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    }

    ~SignalPause() {
        for (std::size_t index = 0; index < signals.size(); ++index) {
            if (isCaught_[index]) {
                sigaction(signals[index], &previous_[index], nullptr);
            }
        }
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
        for (std::size_t index = 0; index < signals.size(); ++index) {
            if (arrived_[index] != 0) {
                raise(signals[index]);
            }
        }
    }

    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;

    /// Waits for input or a signal.
    /// @return false for a signal.
    bool wait(int descriptor) noexcept {
        pollfd ready = {descriptor, POLLIN, 0};
        return ppoll(&ready, 1, nullptr, &mask_) != -1 || errno != EINTR;
    }

private:
    bool catchSignal(std::size_t index) noexcept {
        const int signal = signals[index];
        arrived_[index] = 0;
        sigaction(signal, nullptr, &previous_[index]);
        isCaught_[index] =
            previous_[index].sa_handler != SIG_IGN && sigismember(&mask_, signal) == 0;
        if (isCaught_[index]) {
            struct sigaction action = {};
            action.sa_handler = note;
            sigaction(signal, &action, nullptr);
        }
        return isCaught_[index];
    }

    /// The handler. A thread other than the reader hands the signal on.
    static void note(int signal) noexcept {
        if (!pthread_equal(pthread_self(), reader_)) {
            pthread_kill(reader_, signal);
            return;
        }
        for (std::size_t index = 0; index < signals.size(); ++index) {
            if (signals[index] == signal) {
                arrived_[index] = 1;
            }
        }
    }

    static inline pthread_t reader_;
    static inline std::array<volatile std::sig_atomic_t, signals.size()> arrived_;

    sigset_t mask_;
    std::array<struct sigaction, signals.size()> previous_;
    std::array<bool, signals.size()> isCaught_;
};

/// The terminal of standard input without echo, lines and keys that mean signals, for as long as
/// the object lives. Requires: standard input is a terminal. One object at a time.
class RawTerminal {
public:
    RawTerminal() noexcept {
        tcgetattr(STDIN_FILENO, &previous_);
        termios raw = previous_;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHONL | ISIG | IEXTEN);
        raw.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON);
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        isRaw_ = true;
        restarted([&raw] { return tcsetattr(STDIN_FILENO, TCSANOW, &raw); });
    }
    ~RawTerminal() { restore(); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    /// Also called at the process's end, when another thread ends it while a key is awaited.
    static void restore() noexcept {
        if (isRaw_) {
            isRaw_ = false;
            restarted([] { return tcsetattr(STDIN_FILENO, TCSANOW, &previous_); });
        }
    }

    /// The key that a byte stands for: what the terminal's user chose for erasing and for the end
    /// of input means just that.
    std::int32_t toKey(unsigned char byte) const noexcept {
        if (byte != _POSIX_VDISABLE && byte == previous_.c_cc[VERASE]) {
            return backspaceKey;
        }
        if (byte != _POSIX_VDISABLE && byte == previous_.c_cc[VEOF]) {
            return endOfInputKey;
        }
        return byte;
    }

private:
    static inline termios previous_;
    static inline std::atomic<bool> isRaw_ = false;
};

/// @return false if a signal came first.
bool tryReadTerminalKey(std::int32_t& key, std::int32_t& result) noexcept {
    SignalPause signalPause;
    const RawTerminal terminal;
    if (!signalPause.wait(STDIN_FILENO)) {
        return false;
    }
    unsigned char byte = 0;
    const ssize_t count =
        transfer(STDIN_FILENO, POLLIN, [&byte] { return read(STDIN_FILENO, &byte, 1); });
    if (count == -1) {
        result = lastNativeResult();
    } else {
        key = count == 0 ? endOfInputKey : terminal.toKey(byte);
        result = QV_S_OK;
    }
    return true;
}

std::int32_t readTerminalKey(std::int32_t& key) noexcept {
    static constinit std::mutex oneReader;
    static const int isRegistered = std::atexit(RawTerminal::restore);
    static_cast<void>(isRegistered);
    const std::lock_guard lock(oneReader);
    std::int32_t result = QV_S_OK;
    while (!tryReadTerminalKey(key, result)) {
    }
    return result;
}

std::int32_t readByte(std::int32_t& key) noexcept {
    unsigned char byte = 0;
    const ssize_t count =
        transfer(STDIN_FILENO, POLLIN, [&byte] { return read(STDIN_FILENO, &byte, 1); });
    if (count == -1) {
        return lastNativeResult();
    }
    key = count == 0 ? endOfInputKey : byte;
    return QV_S_OK;
}

} // namespace

} // namespace qv::core

std::int32_t QVConsoleReadKey(std::int32_t* key) noexcept {
    if (key == nullptr) {
        return qv::QV_E_POINTER;
    }
    return isatty(STDIN_FILENO) ? qv::core::readTerminalKey(*key) : qv::core::readByte(*key);
}
