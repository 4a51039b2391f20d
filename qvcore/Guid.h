#pragma once

#include "qvcore/Core.h"

/// The system's 16-byte globally unique identifier. The guard is the one that the Windows headers
/// use, so that both may be included in either order.
#ifndef GUID_DEFINED
#    define GUID_DEFINED
typedef struct _GUID {
#    ifdef _WIN32
    unsigned long Data1;
#    else
    uint32_t Data1;
#    endif
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
#endif

/// 0 when both identifiers are the same 16 bytes, otherwise negative or positive by their order.
QVCORE_API int32_t QVComCompareGUID(const GUID* left, const GUID* right) QVCORE_NOEXCEPT;

/// Reads the text form: 32 hexadecimal digits of either case in groups of 8, 4, 4, 4 and 12 with
/// hyphens between them, in braces, 38 units in all. 0x80070057 for any other text, null included.
QVCORE_API int32_t QVComGUIDFromString(const char16_t* text, GUID* guid) QVCORE_NOEXCEPT;
/// Writes the text form, in upper case, and a terminator: 39 units. 0x80004009 for a `size` below
/// that.
QVCORE_API int32_t QVComStringFromGUID(const GUID* guid, char16_t* text,
                                       int32_t size) QVCORE_NOEXCEPT;
/// A fresh identifier of version 4: 122 bits from the system's secure random source. Fails where
/// that fails. Thread safety: internally locked. Source: RFC 4122, 4.4.
QVCORE_API int32_t QVComGenerateGUID(GUID* guid) QVCORE_NOEXCEPT;
