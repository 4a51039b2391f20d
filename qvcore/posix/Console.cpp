#include "qvcore/Console.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <optional>
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
        for (const int signal : signals) {
            sigaddset(&blocked, signal);
        }
        pthread_sigmask(SIG_BLOCK, &blocked, &mask_);
        for (std::size_t index = 0; index < signals.size(); ++index) {
            catchSignal(index);
        }
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

    /// Waits for input or one of those signals. Others are the program's own and leave the terminal
    /// as it is.
    /// @return false for a signal.
    bool wait(int descriptor) noexcept {
        pollfd ready = {descriptor, POLLIN, 0};
        while (!hasArrived()) { // another thread may have handed one on already
            if (ppoll(&ready, 1, nullptr, &mask_) != -1 || errno != EINTR) {
                return true;
            }
        }
        return false;
    }

private:
    static bool hasArrived() noexcept {
        return std::any_of(arrived_.begin(), arrived_.end(),
                           [](std::sig_atomic_t arrived) { return arrived != 0; });
    }

    void catchSignal(std::size_t index) noexcept {
        const int signal = signals[index];
        arrived_[index] = 0;
        sigaction(signal, nullptr, &previous_[index]);
        isCaught_[index] =
            previous_[index].sa_handler != SIG_IGN && sigismember(&mask_, signal) == 0;
        if (isCaught_[index]) {
            struct sigaction action = {};
            action.sa_handler = note;
            action.sa_flags = SA_RESTART; // other threads' calls go on; `wait` ends all the same
            sigaction(signal, &action, nullptr);
        }
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
        madeRawBy_ = getpid();
        restarted([&raw] { return tcsetattr(STDIN_FILENO, TCSANOW, &raw); });
    }
    ~RawTerminal() { restore(); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    /// Also called at the process's end, when another thread ends it while a key is awaited. A
    /// child that was forked meanwhile leaves the terminal alone.
    static void restore() noexcept {
        pid_t self = getpid();
        if (madeRawBy_.compare_exchange_strong(self, 0)) {
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
    static inline std::atomic<pid_t> madeRawBy_ = 0;
};

/// Reads one byte of standard input, which is the end of input where there is none.
std::int32_t readByte(std::optional<unsigned char>& byte) noexcept {
    unsigned char read = 0;
    const ssize_t count =
        transfer(STDIN_FILENO, POLLIN, [&read] { return ::read(STDIN_FILENO, &read, 1); });
    if (count == -1) {
        return lastNativeResult();
    }
    byte = count == 0 ? std::nullopt : std::optional(read);
    return QV_S_OK;
}

/// Reads keys until a signal comes.
/// @return false if one came.
bool tryReadTerminalKeys(QVKeyTaker take, void* context, std::int32_t& result) noexcept {
    SignalPause signalPause;
    const RawTerminal terminal;
    std::int32_t key = 0;
    do {
        if (!signalPause.wait(STDIN_FILENO)) {
            return false;
        }
        std::optional<unsigned char> byte;
        result = readByte(byte);
        if (result != QV_S_OK) {
            return true;
        }
        key = byte ? terminal.toKey(*byte) : endOfInputKey;
    } while (take(context, key) != 0);
    return true;
}

std::int32_t readTerminalKeys(QVKeyTaker take, void* context) noexcept {
    static constinit std::mutex oneReader;
    static const int isRegistered = std::atexit(RawTerminal::restore);
    static_cast<void>(isRegistered);
    const std::lock_guard lock(oneReader);
    std::int32_t result = QV_S_OK;
    while (!tryReadTerminalKeys(take, context, result)) {
    }
    return result;
}

std::int32_t readBytes(QVKeyTaker take, void* context) noexcept {
    std::optional<unsigned char> byte;
    do {
        const std::int32_t result = readByte(byte);
        if (result != QV_S_OK) {
            return result;
        }
    } while (take(context, byte ? *byte : endOfInputKey) != 0);
    return QV_S_OK;
}

} // namespace

} // namespace qv::core

std::int32_t QVConsoleReadKeys(QVKeyTaker take, void* context) noexcept {
    if (take == nullptr) {
        return qv::QV_E_POINTER;
    }
    return isatty(STDIN_FILENO) ? qv::core::readTerminalKeys(take, context)
                                : qv::core::readBytes(take, context);
}
