#pragma once

#include <cstdint>

namespace qv::core {

/// The terminal of standard input without echo, lines and keys that mean signals, for as long as
/// the object lives, or until the process ends. Requires: standard input is a terminal. One object
/// at a time.
class RawTerminal {
public:
    RawTerminal() noexcept;
    ~RawTerminal();
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    /// The key that a byte stands for: what the terminal's user chose for erasing and for the end
    /// of input means just that.
    std::int32_t toKey(unsigned char byte) const noexcept;

    /// Restores the terminal at the end of the process, when another thread still awaits a key.
    /// From then on the thread that ends the process alone makes it raw.
    static void end() noexcept;

    /// Leaves the terminal to the parent in a forked child.
    static void forget() noexcept;
};

} // namespace qv::core
