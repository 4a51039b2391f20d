#include "qv/io/BufferedReader.h"

#include "qv/String.h"
#include "qv/detail/Units.h"

namespace qv::io {

namespace {

constexpr char16_t lineFeed = 10;
constexpr char16_t carriageReturn = 13;

} // namespace

BufferedReader::BufferedReader(Reader* in, std::int32_t size) : BufferedInput(in, size) {}

int BufferedReader::read() { return nextUnit(); }

std::int32_t BufferedReader::readLine(String& line) {
    ensureOpen();
    line.clear();
    Room room;
    try {
        return takeLine(line, room);
    } catch (...) {
        takeBack(line.getData(), line.getLength(), room);
        throw;
    }
}

std::int32_t BufferedReader::takeLine(String& line, Room& room) {
    std::int32_t total = 0;
    for (;;) {
        if (isUsedUp()) {
            refillBehind(total, room);
        }
        if (isUsedUp()) {
            return total != 0 ? total : -1;
        }
        const char16_t* const units = unread();
        const std::int32_t end =
            qv::detail::findEither(units, unreadCount(), lineFeed, carriageReturn);
        const std::int32_t length = end >= 0 ? end : unreadCount();
        line.append(units, length);
        total += length;
        if (end < 0) {
            pass(length);
            continue;
        }
        pass(length + 1);
        if (units[end] == carriageReturn) {
            skipLineFeed(total, room);
        }
        return total;
    }
}

/// Reads on into the buffer while the line has `total` units already.
void BufferedReader::refillBehind(std::int32_t total, Room& room) {
    if (total > 0) {
        provide(room, total);
    }
    fillBuffer();
}

/// Behind a carriage return.
void BufferedReader::skipLineFeed(std::int32_t total, Room& room) {
    if (isUsedUp()) {
        try {
            refillBehind(total, room);
        } catch (...) {
            takeBack(&carriageReturn, 1, room);
            throw;
        }
    }
    if (!isUsedUp() && *unread() == lineFeed) {
        pass(1);
    }
}

} // namespace qv::io
