#include "qvcore/Console.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"
#include "qvcore/posix/RawTerminal.h"
#include "qvcore/posix/SignalPause.h"
#include "qvcore/posix/TerminalChange.h"

#include <atomic>
#include <cstdlib>
#include <optional>
#include <pthread.h>
#include <unistd.h>

namespace qv::core {

namespace {

constexpr std::int32_t endOfInputKey = 26;

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

/// Stops a process in the background until it comes to the foreground, as every read of its
/// terminal does: this one reads nothing. What the terminal is found to be afterwards is what it
/// was made for this process.
/// @return the failure where the process is not to be stopped so.
std::int32_t awaitForeground() noexcept {
    unsigned char none = 0;
    return restarted([&none] { return ::read(STDIN_FILENO, &none, 0); }) == -1 ? lastNativeResult()
                                                                               : QV_S_OK;
}

/// Reads keys until a signal comes.
/// @return false if one came.
bool tryReadTerminalKeys(QVKeyTaker take, void* context, std::int32_t& result) noexcept {
    result = awaitForeground();
    if (result != QV_S_OK) {
        return true;
    }
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

/// The terminal's one reader. The others wait, but for a forked child, whose parent goes on to
/// read.
class OneReader {
public:
    OneReader() noexcept {
        while (isReading_.exchange(true)) {
            isReading_.wait(true);
        }
    }
    ~OneReader() {
        isReading_ = false;
        isReading_.notify_one();
    }
    OneReader(const OneReader&) = delete;
    OneReader& operator=(const OneReader&) = delete;

    static void forget() noexcept { isReading_ = false; }

private:
    static inline std::atomic<bool> isReading_ = false;
};

void beginFork() noexcept {
    terminalChange.lock();
    SignalPause::beginFork();
}

void endFork() noexcept {
    SignalPause::endFork();
    terminalChange.unlock();
}

/// The parent goes on to read: its child knows nothing of it.
void endForkInChild() noexcept {
    SignalPause::forget();
    RawTerminal::forget();
    OneReader::forget();
    endFork();
}

/// Makes forks and the end of the process leave the terminal and the signals as they should be.
bool registerReader() noexcept {
    return std::atexit(RawTerminal::end) == 0 &&
           pthread_atfork(beginFork, endFork, endForkInChild) == 0;
}

std::int32_t readTerminalKeys(QVKeyTaker take, void* context) noexcept {
    static const bool isRegistered = registerReader();
    if (!isRegistered) {
        return QV_E_OUTOFMEMORY;
    }
    const OneReader reader;
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
