#pragma once

#include <csignal>

namespace qv::core {

/// Catches the signals that end, stop or continue the process for as long as the object lives, so
/// that they do so when the terminal is restored. They are blocked outside of `wait`; what came is
/// raised again at the end, when their own handling is back, and does what it would have done.
///
/// Left alone is what the program handles itself, but for the signals that it handles to end, stop
/// or continue in its own way; what is ignored, or blocked by the thread; and crashes.
///
/// One object at a time.
class SignalPause {
public:
    SignalPause() noexcept;
    ~SignalPause();
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;

    /// Waits for input or one of those signals. Others leave the wait as it is.
    /// @return false for a signal.
    bool wait(int descriptor) noexcept;

    /// Holds the signals back from the calling thread while it forks.
    static void beginFork() noexcept;
    static void endFork() noexcept;

    /// Gives the signals back in a forked child, whose parent goes on to await them.
    static void forget() noexcept;

private:
    sigset_t mask_;
};

} // namespace qv::core
