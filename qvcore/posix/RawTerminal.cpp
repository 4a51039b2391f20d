#include "qvcore/posix/RawTerminal.h"

#include "qv/Results.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"
#include "qvcore/posix/TerminalLock.h"

#include <algorithm>
#include <iterator>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace qv::core {

namespace {

constexpr std::int32_t endOfInputKey = 26;
constexpr std::int32_t backspaceKey = 8;

// Change under the TerminalLock.
termios previous; ///< the mode to be restored
termios raw;      ///< the mode made of it
bool isRaw = false;
bool isDoubtful = false; ///< whether it still is
int pauses = 0;          ///< handlers that run
bool isEnding = false;   ///< the process, by `endingThread`
pthread_t endingThread;

/// At this event the reader looks anew at what it may do. -1 while nobody reads.
int wakeEvent = -1;

/// Requires: the TerminalLock.
void wakeReader() noexcept {
    if (wakeEvent != -1) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(wakeEvent, &one, sizeof one);
    }
}

/// Requires: the TerminalLock.
void closeEvent() noexcept {
    if (wakeEvent != -1) {
        close(std::exchange(wakeEvent, -1));
    }
}

/// Waits until the reader is to look anew, or for input where that is asked for.
/// @return what there is of the terminal, as poll tells it; nothing if the reader is to look anew.
short await(bool isForInput) noexcept {
    pollfd ready[] = {{wakeEvent, POLLIN, 0}, {isForInput ? STDIN_FILENO : -1, POLLIN, 0}};
    restarted([&ready] { return poll(ready, std::size(ready), -1); });
    if (ready[0].revents == 0) {
        return ready[1].revents;
    }
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(wakeEvent, &count, sizeof count);
    return 0;
}

/// True also where nobody can tell: the terminal may be that of another session.
bool isInForeground() noexcept {
    const pid_t group = tcgetpgrp(STDIN_FILENO);
    return group <= 0 || group == getpgrp();
}

/// Stops a process in the background until it comes to the foreground, as every read of its
/// terminal does: this one reads nothing.
/// @return the failure where the process is not to be stopped so.
std::int32_t awaitForeground() noexcept {
    unsigned char none = 0;
    return restarted([&none] { return read(STDIN_FILENO, &none, 0); }) == -1 ? lastNativeResult()
                                                                             : QV_S_OK;
}

bool isSame(const termios& left, const termios& right) noexcept {
    return left.c_iflag == right.c_iflag && left.c_oflag == right.c_oflag &&
           left.c_cflag == right.c_cflag && left.c_lflag == right.c_lflag &&
           std::equal(std::begin(left.c_cc), std::end(left.c_cc), std::begin(right.c_cc));
}

termios rawMode(termios mode) noexcept {
    mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHONL | ISIG | IEXTEN);
    mode.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON);
    mode.c_cc[VMIN] = 0; // another process may take the byte that was awaited
    mode.c_cc[VTIME] = 0;
    return mode;
}

/// A terminal that is found raw already was left so by this process, or by the one that it was
/// forked from: what there is to restore is known. One that has hung up needs no mode.
/// @return false on failure.
bool makeRaw() noexcept {
    termios found = {};
    if (tcgetattr(STDIN_FILENO, &found) != 0) {
        return errno == EIO;
    }
    if (!isSame(found, raw)) {
        const termios wanted = rawMode(found);
        if (tcsetattr(STDIN_FILENO, TCSANOW, &wanted) != 0) {
            return false;
        }
        previous = found;
        raw = wanted;
    }
    isRaw = true;
    isDoubtful = false;
    return true;
}

bool isStillRaw() noexcept {
    termios found = {};
    return !isDoubtful || (tcgetattr(STDIN_FILENO, &found) == 0 && isSame(found, raw));
}

/// In the background the terminal belongs to others, and is as they want it.
void restore() noexcept {
    if (isRaw && isInForeground() && isStillRaw()) {
        tcsetattr(STDIN_FILENO, TCSANOW, &previous);
    }
    isRaw = false;
}

enum class Access { Raw, Paused, Background, Ending, Failed };

/// Makes the terminal raw, if the reader may.
Access demandRaw() noexcept {
    const TerminalLock lock;
    if (isEnding && !pthread_equal(endingThread, pthread_self())) {
        return Access::Ending;
    }
    if (pauses != 0) {
        return Access::Paused;
    }
    if (isRaw && !isDoubtful) {
        return Access::Raw;
    }
    if (!isInForeground()) {
        return Access::Background;
    }
    return makeRaw() ? Access::Raw : Access::Failed;
}

/// What the terminal's user chose for erasing and for the end of input means just that.
std::int32_t toKey(cc_t byte) noexcept {
    if (byte != _POSIX_VDISABLE && byte == previous.c_cc[VERASE]) {
        return backspaceKey;
    }
    if (byte != _POSIX_VDISABLE && byte == previous.c_cc[VEOF]) {
        return endOfInputKey;
    }
    return byte;
}

constexpr std::int32_t noKey = -1;

bool isReadyForKeys() noexcept {
    const TerminalLock lock;
    return isRaw && !isDoubtful;
}

/// Reads the key for which the terminal is ready, or finds that somebody else has taken it, or the
/// terminal.
std::int32_t takeKey(bool isHungUp, std::int32_t& key) noexcept {
    if (!isHungUp) {
        const std::int32_t result = awaitForeground();
        if (result < 0 || !isReadyForKeys()) {
            return result;
        }
    }
    cc_t byte = 0;
    const ssize_t count = restarted([&byte] { return read(STDIN_FILENO, &byte, 1); });
    if (count == 1) {
        key = toKey(byte);
    } else if (isHungUp) {
        key = endOfInputKey;
    } else if (count == -1 && errno != EAGAIN) {
        return lastNativeResult();
    }
    return QV_S_OK;
}

} // namespace

RawTerminal::~RawTerminal() {
    const TerminalLock lock;
    restore();
    closeEvent();
}

std::int32_t RawTerminal::open() noexcept {
    const TerminalLock lock;
    wakeEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    return wakeEvent == -1 ? lastNativeResult() : QV_S_OK;
}

std::int32_t RawTerminal::readKey(std::int32_t& key) noexcept {
    std::int32_t result = QV_S_OK;
    for (key = noKey; key == noKey && result >= 0;) {
        switch (demandRaw()) {
        case Access::Raw:
            if (const short ready = await(true); ready != 0) {
                result = takeKey((ready & POLLHUP) != 0, key);
            }
            break;
        case Access::Paused:
            await(false);
            break;
        case Access::Background:
            result = awaitForeground();
            break;
        case Access::Ending:
            result = QV_E_UNAVAILABLE;
            break;
        case Access::Failed:
            result = lastNativeResult();
            break;
        }
    }
    return result;
}

void RawTerminal::pause() noexcept {
    const TerminalLock lock;
    ++pauses;
    restore();
}

void RawTerminal::resume() noexcept {
    const TerminalLock lock;
    pauses -= pauses > 0 ? 1 : 0; // a child that the handler forked has none
    wakeReader();
}

void RawTerminal::doubt() noexcept {
    const TerminalLock lock;
    isDoubtful = true;
    wakeReader();
}

void RawTerminal::end() noexcept {
    const TerminalLock lock;
    isEnding = true;
    endingThread = pthread_self();
    restore();
    wakeReader();
}

void RawTerminal::forget() noexcept {
    isRaw = false;
    pauses = 0;
    isEnding = isEnding && pthread_equal(endingThread, pthread_self());
    closeEvent(); // it is the parent's
}

} // namespace qv::core
