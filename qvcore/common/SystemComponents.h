#pragma once

#include "qvcore/Guid.h"

#include <cstdint>

/// The classes that the system's own registry knows. Implemented by the system.
namespace qv::core {

/// @return QV_E_UNKNOWNPROGID if the registry has no class under that name.
std::int32_t findSystemClass(const char16_t* progId, GUID& classId) noexcept;

/// Creates an object of a class; `out` is set on success only.
/// @return QV_E_CLASSNOTREGISTERED if the registry has no such class.
std::int32_t createSystemObject(const GUID& classId, void* outer, const GUID& iid,
                                void*& out) noexcept;

} // namespace qv::core
