#pragma once

#include <mutex>

namespace qv::core {

/// Held while the terminal's mode or the signals change hands, so that a fork and the end of the
/// process find neither half done.
inline constinit std::mutex terminalChange;

} // namespace qv::core
