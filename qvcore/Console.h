#pragma once

#include "qvcore/Core.h"

/// Takes one key from standard input with no echo and no line editing, and restores the terminal
/// before it returns, also when the process is stopped by a signal meanwhile. Where standard input
/// is no terminal, one byte is read. Ctrl-C arrives as the key 3. The end of input is the key 26.
QVCORE_API int32_t QVConsoleReadKey(int32_t* key) QVCORE_NOEXCEPT;
