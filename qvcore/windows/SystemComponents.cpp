#include "qvcore/common/SystemComponents.h"

#include "qv/Results.h"

#include <objbase.h>

namespace qv::core {

namespace {

/// Lets the calling thread use components: one that has not entered an apartment enters the
/// multithreaded one, and stays in it, since objects outlive the call. Others are left as they are.
void enterApartment() noexcept {
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    if (CoGetApartmentType(&type, &qualifier) == CO_E_NOTINITIALIZED) {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    }
}

} // namespace

std::int32_t findSystemClass(const char16_t* progId, GUID& classId) noexcept {
    GUID found = {};
    if (FAILED(CLSIDFromProgID(reinterpret_cast<const wchar_t*>(progId), &found))) {
        return QV_E_UNKNOWNPROGID;
    }
    classId = found;
    return QV_S_OK;
}

std::int32_t createSystemObject(const GUID& classId, void* outer, const GUID& iid,
                                void*& out) noexcept {
    enterApartment();
    void* object = nullptr;
    const HRESULT result =
        CoCreateInstance(classId, static_cast<IUnknown*>(outer),
                         CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, iid, &object);
    if (SUCCEEDED(result)) {
        out = object;
    }
    return static_cast<std::int32_t>(result);
}

} // namespace qv::core
