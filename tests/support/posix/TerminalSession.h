#pragma once

#include <string>
#include <sys/types.h>
#include <termios.h>

namespace support {

/// A new session with a terminal of its own, in which the test program plays a role that tells
/// "ready" first. This side sees what the program writes and the terminal's mode.
class TerminalSession {
public:
    explicit TerminalSession(const std::string& role);
    /// Kills a program that still runs.
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    void type(const std::string& keys);
    /// The next line that the program wrote, or that the terminal echoed.
    std::string readLine();

    /// Waits until the terminal hands keys over raw, or no longer does.
    void awaitRaw(bool raw) const;
    bool isRestored() const;

    /// Types a key when the program awaits one, and expects it to be told.
    void expectKey();

    void signal(int number) const;
    /// Sends a word with the signal.
    void signal(int number, int word) const;
    /// Signals the processes in the foreground.
    void signalForeground(int number) const;
    void hangUp();
    /// @return the status with which the program ended.
    int await();

private:
    bool isRaw() const;

    int master_ = -1;
    int slave_ = -1;
    pid_t child_ = 0;
    bool isOver_ = false;
    termios before_ = {};
};

} // namespace support
