#include "qvcore/posix/RawTerminal.h"

#include "qvcore/posix/Descriptor.h"
#include "qvcore/posix/TerminalChange.h"

#include <optional>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace qv::core {

namespace {

constexpr std::int32_t endOfInputKey = 26;
constexpr std::int32_t backspaceKey = 8;

termios previous;

// Change under terminalChange.
bool isRaw = false;
std::optional<std::thread::id> endingThread;

void set(const termios& mode) noexcept {
    restarted([&mode] { return tcsetattr(STDIN_FILENO, TCSANOW, &mode); });
}

void restore() noexcept {
    if (isRaw) {
        set(previous);
        isRaw = false;
    }
}

} // namespace

RawTerminal::RawTerminal() noexcept {
    const std::lock_guard lock(terminalChange);
    tcgetattr(STDIN_FILENO, &previous);
    if (endingThread && *endingThread != std::this_thread::get_id()) {
        return;
    }
    termios raw = previous;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHONL | ISIG | IEXTEN);
    raw.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON);
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    isRaw = true;
    set(raw);
}

RawTerminal::~RawTerminal() {
    const std::lock_guard lock(terminalChange);
    restore();
}

std::int32_t RawTerminal::toKey(unsigned char byte) const noexcept {
    if (byte != _POSIX_VDISABLE && byte == previous.c_cc[VERASE]) {
        return backspaceKey;
    }
    if (byte != _POSIX_VDISABLE && byte == previous.c_cc[VEOF]) {
        return endOfInputKey;
    }
    return byte;
}

void RawTerminal::end() noexcept {
    const std::lock_guard lock(terminalChange);
    endingThread = std::this_thread::get_id();
    restore();
}

void RawTerminal::forget() noexcept { isRaw = false; }

} // namespace qv::core
