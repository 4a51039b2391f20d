#include "qv/io/MaskedConsoleInputStream.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qvcore/Console.h"

namespace qv::io {

namespace {

enum Key : std::int32_t { CtrlC = 3, Backspace = 8, LineFeed = 10, Enter = 13, CtrlZ = 26 };

/// The bytes that the keys leave in the caller's area.
class MaskedLine {
public:
    MaskedLine(signed char* bytes, std::int32_t capacity) noexcept
        : bytes_(bytes), capacity_(capacity) {}

    /// @return false where the key ends the line.
    bool take(std::int32_t key) noexcept {
        switch (key) {
        case CtrlZ:
            return false;
        case CtrlC:
            isAborted_ = true;
            return false;
        case Backspace:
            count_ -= count_ > 0 ? 1 : 0;
            return true;
        case Enter:
        case LineFeed:
            bytes_[count_++] = LineFeed;
            return false;
        default:
            bytes_[count_++] = static_cast<signed char>(key);
            return count_ < capacity_;
        }
    }

    bool isAborted() const noexcept { return isAborted_; }
    std::int32_t count() const noexcept { return count_; }

private:
    signed char* bytes_;
    std::int32_t capacity_;
    std::int32_t count_ = 0;
    bool isAborted_ = false;
};

} // namespace

std::int32_t MaskedConsoleInputStream::read(signed char* destination, std::int32_t length) {
    if (length < 1) {
        return 0;
    }
    MaskedLine line(destination, length);
    throwIfFailed(QVConsoleReadKeys(
        [](void* context, std::int32_t key) {
            return static_cast<MaskedLine*>(context)->take(key) ? 1 : 0;
        },
        &line));
    if (line.isAborted()) {
        throw UserAbortException();
    }
    return line.count() > 0 ? line.count() : -1;
}

} // namespace qv::io
