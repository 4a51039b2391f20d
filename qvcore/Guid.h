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
