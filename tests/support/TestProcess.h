#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace support {

/// The test program started again in one of its roles (tests/support/ChildRole.h), with pipes to
/// its standard input and from its standard output.
class TestProcess {
public:
    TestProcess(const std::string& role, const std::vector<std::string>& arguments);
    /// Kills a process that still runs.
    ~TestProcess();

    bool isStarted() const;
    std::uint32_t id() const;

    /// The next line of its output without the line end; empty at the end of the output.
    std::string readLine();
    void write(const std::string& bytes);
    void closeInput();
    /// The process finds its standard output broken.
    void closeOutput();
    /// Ends the process at once, and waits until it is gone.
    void kill();
    /// @return the exit code, 128 and the signal's number for one that ended by a signal.
    int wait();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// In a role: tells the parent a line.
void tell(const std::string& line);
/// In a role: waits for a line of the parent, or for the end of the input.
std::string hear();

} // namespace support
