#include "qvcore/Console.h"

#include "qvcore/Encoding.h"
#include "qvcore/File.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"

#include <array>
#include <mutex>
#include <windows.h>

namespace qv::core {

namespace {

constexpr std::int32_t endOfInputKey = 26;

/// A console without echo, lines and keys that mean signals, for as long as the object lives.
class RawConsole {
public:
    RawConsole(HANDLE console, DWORD mode) noexcept : console_(console), mode_(mode) {
        SetConsoleMode(console_, mode_ & ~static_cast<DWORD>(ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT |
                                                             ENABLE_PROCESSED_INPUT));
    }
    ~RawConsole() { SetConsoleMode(console_, mode_); }
    RawConsole(const RawConsole&) = delete;
    RawConsole& operator=(const RawConsole&) = delete;

    /// Waits for a character.
    /// @return the units of it, 0 at the end of input, -1 on failure.
    int read(char16_t* units) noexcept {
        for (int count = 0; count < 2;) {
            DWORD taken = 0;
            if (!ReadConsoleW(console_, units + count, 1, &taken, nullptr)) {
                return -1;
            }
            if (taken == 0) {
                return count;
            }
            ++count;
            if (!IS_HIGH_SURROGATE(units[count - 1])) {
                return count;
            }
        }
        return 2;
    }

private:
    HANDLE console_;
    DWORD mode_;
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

    std::int32_t read(HANDLE console, DWORD mode, std::int32_t& key) {
        const std::lock_guard lock(mutex_);
        if (next_ == count_) {
            std::array<char16_t, 3> units = {};
            const int count = RawConsole(console, mode).read(units.data());
            if (count < 0) {
                return lastNativeResult();
            }
            if (count == 0) {
                key = endOfInputKey;
                return QV_S_OK;
            }
            fill(units.data());
        }
        key = static_cast<unsigned char>(bytes_[next_++]);
        return QV_S_OK;
    }

private:
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

std::int32_t readByte(std::int32_t& key) noexcept {
    unsigned char byte = 0;
    std::uint32_t count = 0;
    const std::int32_t result = QVFileRead(QVFileGetStandard(0), &byte, 1, &count);
    if (result >= 0) {
        key = count == 0 ? endOfInputKey : byte;
    }
    return result;
}

} // namespace

} // namespace qv::core

std::int32_t QVConsoleReadKey(std::int32_t* key) noexcept {
    if (key == nullptr) {
        return qv::QV_E_POINTER;
    }
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(input, &mode)) {
        return qv::core::readByte(*key);
    }
    return qv::core::guarded(
        [=] { return qv::core::KeyBytes::instance().read(input, mode, *key); });
}
