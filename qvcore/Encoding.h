#pragma once

#include "qvcore/Core.h"

/// The process's default encoding and the narrow conversions that the platform layer itself needs.

/// Writes the name of the default character encoding as a 0-terminated text of at most `size`
/// units, the terminator included; an empty text if the name does not fit. On Windows "CPn" for the
/// ANSI code page n, or "UTF-8" for 65001; on Linux the code set of the process's locale, where the
/// C and POSIX locales count as "UTF-8".
QVCORE_API void QVGetDefaultCharEncoding(char16_t* buffer, int32_t size) QVCORE_NOEXCEPT;

/// Narrows a wide text to the default encoding. At most `size` bytes are written, the terminator
/// included; a text that does not fit is cut, never inside a character. What has no form becomes
/// "?".
/// @return the bytes written, the terminator included; 0 if `size` is below 1 or an argument is
///     null; -1 if the default encoding cannot be served.
QVCORE_API int32_t QVUnicodeToAnsi(char* destination, const char16_t* source,
                                   int32_t size) QVCORE_NOEXCEPT;

/// Widens `length` bytes (-1: up to the terminator) from the default encoding. At most `size` units
/// are written, and no terminator. Bad bytes become U+FFFD.
/// @return the units that the whole text takes, also where it did not fit; -1 if the default
///     encoding cannot be served. With `size` 0 it only measures.
QVCORE_API int32_t QVAnsiToUnicode(char16_t* destination, const char* source, int32_t length,
                                   int32_t size) QVCORE_NOEXCEPT;
