#pragma once

namespace qv::core {

/// Held while the terminal's mode or the handling of its signals changes. The handlers of those
/// signals take it too, so it keeps all signals from the thread that holds it. Held for a few calls
/// of the system only, none of which waits.
class TerminalLock {
public:
    TerminalLock() noexcept { acquire(); }
    ~TerminalLock() { release(); }
    TerminalLock(const TerminalLock&) = delete;
    TerminalLock& operator=(const TerminalLock&) = delete;

    /// For a fork, around which it is held: its begin and its end are two functions.
    static void acquire() noexcept;
    static void release() noexcept;
};

} // namespace qv::core
