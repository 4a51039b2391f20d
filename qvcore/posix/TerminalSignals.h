#pragma once

namespace qv::core {

/// Has the terminal restored while a signal that may end or stop the process is handled, by default
/// or by the program, for as long as the object lives. Such a signal is handled where and as it
/// would be without: on the thread that it comes to, with the flags that the program chose.
///
/// Left alone is what is ignored; what the program handles that neither ends nor stops programs;
/// and crashes. So is a handling that the program sets meanwhile.
///
/// One object at a time.
class TerminalSignals {
public:
    TerminalSignals() noexcept;
    ~TerminalSignals();
    TerminalSignals(const TerminalSignals&) = delete;
    TerminalSignals& operator=(const TerminalSignals&) = delete;

    /// Gives the signals back in a forked child. Requires: the TerminalLock.
    static void forget() noexcept;
};

} // namespace qv::core
