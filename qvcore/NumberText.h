#pragma once

#include "qvcore/Core.h"

/// Numbers from and to text, with the meaning of the runtime library's namesakes. Parsers skip
/// white space (blank, tab, line feed, vertical tab, form feed, carriage return), take an optional
/// sign and read as far as the number goes; `*end`, where `end` is not null, is the first unit not
/// taken, or the start of the text when there is no number, and then the value is 0. A radix of 0
/// reads a prefix
/// ("0x", "0"); a radix other than 0 and 2 to 36 reads nothing. Values out of range are cut to the
/// nearest that the type holds. None of them depends on the locale, unless it says so.

QVCORE_API int32_t QVStrToIW(const char16_t* text) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVStrToLW(const char16_t* text, const char16_t** end,
                             int32_t radix) QVCORE_NOEXCEPT;
/// A minus sign gives the two's complement of the value.
QVCORE_API uint32_t QVStrToULW(const char16_t* text, const char16_t** end,
                               int32_t radix) QVCORE_NOEXCEPT;
/// Reads decimal and hexadecimal forms, "inf", "infinity" and "nan" in any case. The decimal
/// separator is that of the process's runtime locale, as for the runtime's own function.
QVCORE_API double QVStrToDW(const char16_t* text, const char16_t** end) QVCORE_NOEXCEPT;

/// Writes the value in `radix`, 2 to 36, digits above 9 in lower case, and a terminator. `buffer`
/// holds at least 34 units. A minus sign stands only in radix 10; in every other radix the value is
/// written as an unsigned number. A radix out of range gives the empty text.
/// @return `buffer`.
QVCORE_API char16_t* QVLToStrW(int32_t value, char16_t* buffer, int32_t radix) QVCORE_NOEXCEPT;
QVCORE_API char* QVLToStrA(int32_t value, char* buffer, int32_t radix) QVCORE_NOEXCEPT;
