#pragma once

/// What every header of the platform layer starts from: the export macro and the fixed-width types.
///
/// The platform layer is a flat interface in C linkage. Unless a function says otherwise it returns
/// a result: 0 on success, negative on failure, with the values of `qv/Results.h`. Outputs are not
/// touched on failure. Texts are 0-terminated unless a length stands beside them.

#include <stddef.h>
#include <stdint.h>

#ifndef __cplusplus
#    include <uchar.h>
#endif

#ifdef _WIN32
#    ifdef QVCORE_BUILD
#        define QVCORE_EXPORT __declspec(dllexport)
#    else
#        define QVCORE_EXPORT __declspec(dllimport)
#    endif
#else
#    define QVCORE_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#    define QVCORE_API extern "C" QVCORE_EXPORT
#    define QVCORE_NOEXCEPT noexcept
#else
#    define QVCORE_API extern QVCORE_EXPORT
#    define QVCORE_NOEXCEPT
#endif
