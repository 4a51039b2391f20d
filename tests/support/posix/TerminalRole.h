#pragma once

#include "qvcore/Console.h"
#include "tests/support/TestProcess.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <termios.h>
#include <thread>
#include <unistd.h>

/// What roles do that play in a TerminalSession.
namespace support {

inline termios terminalMode() {
    termios mode = {};
    tcgetattr(STDIN_FILENO, &mode);
    return mode;
}

/// Also for signal handlers.
inline bool isTerminalRaw() { return (terminalMode().c_lflag & (ICANON | ECHO | ISIG)) == 0; }

inline void awaitRawTerminal() {
    while (!isTerminalRaw()) {
        std::this_thread::yield();
    }
}

/// Tells the key that it reads, or that there is none to be read.
inline void tellKey() {
    std::int32_t key = 0;
    const std::int32_t result = QVConsoleReadKey(&key);
    tell(result == 0 ? std::to_string(key) : "failed");
}

/// Tells a line from within a signal handler.
inline void tellInHandler(std::string_view line) noexcept {
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
    errno = error;
}

/// Tells from within a signal handler how it found the terminal.
inline void tellModeInHandler() noexcept {
    tellInHandler(isTerminalRaw() ? "raw\n" : "restored\n");
}

} // namespace support
