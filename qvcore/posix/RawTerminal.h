#pragma once

#include <cstdint>

namespace qv::core {

/// The terminal of standard input without echo, lines and keys that mean signals, while keys are
/// read from it. The reader alone makes it so. It is restored by the reader, by the handler of a
/// signal that may end or stop the process, and at the process's end.
///
/// One object at a time. Requires: standard input is a terminal.
class RawTerminal {
public:
    RawTerminal() noexcept = default;
    /// Restores the terminal.
    ~RawTerminal();
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    /// Makes ready what the reading needs. @return the failure of the system.
    std::int32_t open() noexcept;

    /// Waits for a key, with the terminal raw but while a signal is handled. A process in the
    /// background is stopped until it is in the foreground.
    /// @return the failure of the system, or QV_E_UNAVAILABLE where another thread ends the
    /// process.
    std::int32_t readKey(std::int32_t& key) noexcept;

    /// Restores the terminal until the call of `resume`: for the handler of a signal, on any
    /// thread.
    static void pause() noexcept;
    static void resume() noexcept;
    /// Tells that others may have had the terminal and set it, while the process was stopped.
    static void doubt() noexcept;

    /// Restores the terminal at the end of the process, whose thread alone reads keys from then on.
    static void end() noexcept;

    /// Leaves the terminal to the parent in a forked child. Requires: the TerminalLock.
    static void forget() noexcept;
};

} // namespace qv::core
