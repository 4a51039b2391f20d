#pragma once

#include "qvcore/Core.h"

/// Tells the platform layer that a module is up (1) or going down (0). `identity` is a word that is
/// the module's own: the address of its entry routine.
QVCORE_API void QVModuleSetInitialized(uint64_t identity, int32_t initialized) QVCORE_NOEXCEPT;
/// 1 between the two calls, otherwise 0.
QVCORE_API int32_t QVModuleIsInitialized(uint64_t identity) QVCORE_NOEXCEPT;

/// Has `before` called in front of a fork, `after` behind it in both processes, until
/// QVModuleForgetFork. They must not load or unload modules, nor call this. A second registration
/// of `before` takes the place of the first. Nothing happens on systems without fork.
QVCORE_API int32_t QVModuleOnFork(void (*before)(void), void (*after)(void)) QVCORE_NOEXCEPT;
/// Ends what QVModuleOnFork began with `before`: to be called before the module that holds it goes.
/// Waits for a fork that is under way. Unknown functions are ignored.
QVCORE_API void QVModuleForgetFork(void (*before)(void)) QVCORE_NOEXCEPT;

/// The command line of the process as the system keeps it, program name and quoting included, on
/// systems that keep one; elsewhere null. Lives as long as the process.
QVCORE_API const char16_t* QVModuleGetCommandLine(void) QVCORE_NOEXCEPT;
