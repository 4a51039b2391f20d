#include "qvcore/common/SystemComponents.h"

#include "qv/Results.h"

// The system has no registry of classes: only those registered for the process exist.

std::int32_t qv::core::findSystemClass(const char16_t*, GUID&) noexcept {
    return QV_E_UNKNOWNPROGID;
}

std::int32_t qv::core::createSystemObject(const GUID&, void*, const GUID&, void*&) noexcept {
    return QV_E_CLASSNOTREGISTERED;
}
