#include "qvcore/Console.h"

#include "qvcore/Encoding.h"
#include "qvcore/File.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <windows.h>

namespace qv::core {

namespace {

constexpr std::int32_t abortKey = 3;
constexpr std::int32_t endOfInputKey = 26;

/// The console of standard input without echo, lines and keys that mean signals, for as long as the
/// object lives. One object at a time.
class RawConsole {
public:
    RawConsole(HANDLE console, DWORD mode) noexcept {
        console_ = console;
        previous_ = mode;
        isRaw_ = true;
        isRaw_ = SetConsoleMode(console,
                                mode & ~static_cast<DWORD>(ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT |
                                                           ENABLE_PROCESSED_INPUT)) != 0;
    }
    ~RawConsole() { restore(); }
    RawConsole(const RawConsole&) = delete;
    RawConsole& operator=(const RawConsole&) = delete;

    static bool isRaw() noexcept { return isRaw_; }

    /// Also called at the process's end, when a key was still awaited: the system has ended all
    /// other threads by then, at any point.
    static void restore() noexcept {
        if (isRaw_) {
            SetConsoleMode(console_, previous_);
            isRaw_ = false;
        }
    }

    /// Waits for a character.
    /// @return the units of it, 0 where the wait was broken off, as by Ctrl-Break, -1 on failure.
    int read(char16_t* units) noexcept {
        for (int count = 0; count < 2;) {
            DWORD taken = 0;
            if (!ReadConsoleW(console_, units + count, 1, &taken, nullptr)) {
                return -1;
            }
            if (taken == 0) {
                // What was typed in front belongs to no later line.
                FlushConsoleInputBuffer(console_);
                return 0;
            }
            ++count;
            if (!IS_HIGH_SURROGATE(units[count - 1])) {
                return count;
            }
        }
        return 2;
    }

private:
    static inline HANDLE console_;
    static inline DWORD previous_;
    static inline std::atomic<bool> isRaw_ = false;
};

/// The console gives characters and the caller takes bytes of the default encoding: what is left of
/// a character waits here for the next calls. Never destroyed.
///
/// Thread safety: internally locked.
class KeyBytes {
public:
    static KeyBytes& instance() {
        static KeyBytes& bytes = *new KeyBytes;
        return bytes;
    }

    std::int32_t read(HANDLE console, QVKeyTaker take, void* context) {
        const std::lock_guard lock(mutex_);
        DWORD mode = 0;
        if (!GetConsoleMode(console, &mode)) { // asked here: another reader has made it raw
            return lastNativeResult();
        }
        RawConsole raw(console, mode);
        if (!RawConsole::isRaw()) {
            return lastNativeResult();
        }
        std::int32_t key = 0;
        do {
            const std::int32_t result = next(raw, key);
            if (result != QV_S_OK) {
                return result;
            }
        } while (take(context, key) != 0);
        return QV_S_OK;
    }

private:
    KeyBytes() { std::atexit(RawConsole::restore); }

    std::int32_t next(RawConsole& raw, std::int32_t& key) {
        if (next_ == count_) {
            std::array<char16_t, 3> units = {};
            const int count = raw.read(units.data());
            if (count < 0) {
                return lastNativeResult();
            }
            if (count == 0) {
                key = abortKey;
                return QV_S_OK;
            }
            fill(units.data());
        }
        key = static_cast<unsigned char>(bytes_[next_++]);
        return QV_S_OK;
    }

    void fill(const char16_t* character) noexcept {
        const std::int32_t written =
            QVUnicodeToAnsi(bytes_.data(), character, static_cast<std::int32_t>(bytes_.size()));
        next_ = 0;
        // The key of the character 0 is a byte of its own, though it looks like an empty text.
        count_ = written > 1 ? static_cast<std::size_t>(written - 1) : 1;
    }

    std::mutex mutex_;
    std::array<char, 8> bytes_ = {};
    std::size_t next_ = 0;
    std::size_t count_ = 0;
};

std::int32_t readBytes(QVKeyTaker take, void* context) noexcept {
    unsigned char byte = 0;
    std::uint32_t count = 0;
    do {
        const std::int32_t result = QVFileRead(QVFileGetStandard(0), &byte, 1, &count);
        if (result < 0) {
            return result;
        }
    } while (take(context, count == 0 ? endOfInputKey : byte) != 0);
    return QV_S_OK;
}

} // namespace

} // namespace qv::core

std::int32_t QVConsoleReadKeys(QVKeyTaker take, void* context) noexcept {
    if (take == nullptr) {
        return qv::QV_E_POINTER;
    }
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(input, &mode)) {
        return qv::core::readBytes(take, context);
    }
    return qv::core::guarded(
        [=] { return qv::core::KeyBytes::instance().read(input, take, context); });
}
