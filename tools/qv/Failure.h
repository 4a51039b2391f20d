#pragma once

#include "qv/String.h"

namespace tool {

/// Exit codes of the program.
enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

/// Writes one line to standard error, in the default encoding.
void complain(const qv::String& line) noexcept;

/// Says what the exception being handled means: its description and its result. Requires: a handler
/// is active.
void complainOfException() noexcept;

} // namespace tool
