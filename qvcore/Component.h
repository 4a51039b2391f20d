#pragma once

#include "qvcore/Guid.h"

/// Finding and creating components. A ProgID is looked up without regard to case, first among the
/// classes registered for this process, then in the system's registry where it has one.

/// Makes a class object for a class: the same signature as a module's `DllGetClassObject`.
typedef int32_t (*QVComGetClassObject)(const GUID* classId, const GUID* iid, void** out);

/// Registers a class for the life of this process, or until QVComRevokeClass. 0x800700B7 if the
/// ProgID or the class id is registered already. A class with a null or empty ProgID is found by
/// its id only. Thread safety: internally locked.
QVCORE_API int32_t QVComRegisterClass(const char16_t* progId, const GUID* classId,
                                      QVComGetClassObject getClassObject) QVCORE_NOEXCEPT;
/// 0x80040154 if the class is not registered for this process.
QVCORE_API int32_t QVComRevokeClass(const GUID* classId) QVCORE_NOEXCEPT;

/// 0x800401F3 for an unknown ProgID.
QVCORE_API int32_t QVComClassIDFromProgID(const char16_t* progId, GUID* classId) QVCORE_NOEXCEPT;
/// Creates an object of a class on behalf of a module and returns its interface `iid`, counted for
/// the caller. 0x80040154 for an unknown class; otherwise what the class says.
QVCORE_API int32_t QVModuleComCreateObject(uint64_t module, const GUID* classId, void* outer,
                                           const GUID* iid, void** out) QVCORE_NOEXCEPT;
