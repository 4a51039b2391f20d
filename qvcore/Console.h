#pragma once

#include "qvcore/Core.h"

/// Takes a key. The keys are read no further where it returns 0. Must not read keys itself.
typedef int32_t (*QVKeyTaker)(void* context, int32_t key);

/// Hands `take` the keys of standard input, one a call, with no echo and no line editing: the
/// terminal stays so from the first key to the last, and is restored before this returns, while a
/// signal stops the process, and when the process ends meanwhile, unless it crashes. Where standard
/// input is no terminal, single bytes are read. Ctrl-C arrives as the key 3, the end of input as
/// the key 26.
///
/// Thread safety: of several threads one reads, and the others wait for it.
QVCORE_API int32_t QVConsoleReadKeys(QVKeyTaker take, void* context) QVCORE_NOEXCEPT;

/// Reads one key as QVConsoleReadKeys does.
QVCORE_API int32_t QVConsoleReadKey(int32_t* key) QVCORE_NOEXCEPT;
