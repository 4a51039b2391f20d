#include "qv/io/MaskedConsoleInputStream.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qvcore/Console.h"

namespace qv::io {

namespace {

enum Key : std::int32_t { CtrlC = 3, Backspace = 8, LineFeed = 10, Enter = 13, CtrlZ = 26 };

std::int32_t readKey() {
    std::int32_t key = 0;
    throwIfFailed(QVConsoleReadKey(&key));
    return key;
}

} // namespace

std::int32_t MaskedConsoleInputStream::read(signed char* destination, std::int32_t length) {
    if (length < 1) {
        return 0;
    }
    std::int32_t count = 0;
    bool ended = false;
    while (!ended && count < length) {
        const std::int32_t key = readKey();
        switch (key) {
        case CtrlZ:
            ended = true;
            break;
        case CtrlC:
            throw UserAbortException();
        case Backspace:
            count -= count > 0 ? 1 : 0;
            break;
        case Enter:
        case LineFeed:
            destination[count++] = LineFeed;
            ended = true;
            break;
        default:
            destination[count++] = static_cast<signed char>(key);
            break;
        }
    }
    return count > 0 ? count : -1;
}

} // namespace qv::io
