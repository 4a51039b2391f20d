#pragma once

#include "qvcore/Core.h"

/// Paths of the system in the library's text form, whose separator is `\` on every system. A
/// capacity counts units, the terminator included; a text that does not fit is 0x8007007A, a text
/// with units that the system cannot spell 0x8007007B.

/// Makes an absolute path without `.` and `..` parts out of `text`, relative to the current
/// directory. The file system is not asked and nothing need exist. An empty text is 0x80070057.
QVCORE_API int32_t QVPathExpand(const char16_t* text, char16_t* buffer,
                                int32_t capacity) QVCORE_NOEXCEPT;
/// The current directory, with no separator at its end unless it is a root.
QVCORE_API int32_t QVPathGetCurrentDirectory(char16_t* buffer, int32_t capacity) QVCORE_NOEXCEPT;
/// The directory for temporary files, with a separator at its end.
QVCORE_API int32_t QVPathGetTempDirectory(char16_t* buffer, int32_t capacity) QVCORE_NOEXCEPT;
