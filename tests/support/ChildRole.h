#pragma once

#include <functional>
#include <string>
#include <vector>

namespace support {

/// What a test program does instead of its tests when it is started again as
/// `PROGRAM --child NAME ARGUMENT...`. Roles are static objects; the result is the exit code.
class ChildRole {
public:
    using Work = std::function<int(const std::vector<std::string>& arguments)>;

    ChildRole(const char* name, Work work);

    /// Runs the role that the command line names. @return false if it names none.
    static bool run(int argc, char** argv, int& exitCode);
};

/// The path of the running test program.
const std::string& programPath();

} // namespace support
