#include "qvcore/Console.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"
#include "qvcore/posix/RawTerminal.h"
#include "qvcore/posix/TerminalLock.h"
#include "qvcore/posix/TerminalSignals.h"

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

/// The parent goes on to read: its child knows nothing of it.
void forgetInChild() noexcept {
    TerminalSignals::forget();
    RawTerminal::forget();
    OneReader::forget();
    TerminalLock::release();
}

/// Registered when the library is loaded, so that a fork takes the lock behind those of everybody
/// else, whom a handler that waits for it may hold up.
[[maybe_unused]] const int isTakenAtFork =
    pthread_atfork(TerminalLock::acquire, TerminalLock::release, forgetInChild);

bool registerEnd() noexcept {
    return std::atexit(RawTerminal::end) == 0 && std::at_quick_exit(RawTerminal::end) == 0;
}

std::int32_t readTerminalKeys(QVKeyTaker take, void* context) noexcept {
    static const bool isEndRegistered = registerEnd();
    if (!isEndRegistered) {
        return QV_E_OUTOFMEMORY;
    }
    const OneReader reader;
    const TerminalSignals signals;
    RawTerminal terminal;
    std::int32_t key = 0;
    std::int32_t result = terminal.open();
    while (result >= 0) {
        result = terminal.readKey(key);
        if (result >= 0 && take(context, key) == 0) {
            break;
        }
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
