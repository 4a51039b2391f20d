#include "qv/qvcom/InterfaceMap.h"

#include "qv/Object.h"
#include "qv/Results.h"

#include <bit>

namespace qv::qvcom {

namespace {

constexpr std::uintptr_t offsetEntry = 1;

std::int32_t answerAtOffset(ComObject* self, std::uint32_t offset, void** out) {
    if (self == nullptr) {
        *out = nullptr;
        return QV_S_OK;
    }
    void* const pointer = reinterpret_cast<std::byte*>(self) + offset;
    static_cast<IQVUnknown*>(pointer)->AddRef();
    *out = pointer;
    return QV_S_OK;
}

} // namespace

std::int32_t QueryInterfaceMap(const InterfaceData* map, ComObject* self, const GUID& iid,
                               void** out) {
    if (out == nullptr) {
        return QV_E_POINTER;
    }
    if (equalGuids(iid, IID_IQVUnknown)) {
        if (self != nullptr) {
            self->AddRef();
        }
        *out = self;
        return QV_S_OK;
    }
    for (const InterfaceData* row = map; std::bit_cast<std::uintptr_t>(row->entry) != 0; ++row) {
        if (row->iid != nullptr && !equalGuids(*row->iid, iid)) {
            continue;
        }
        if (std::bit_cast<std::uintptr_t>(row->entry) == offsetEntry) {
            return answerAtOffset(self, row->data, out);
        }
        const std::int32_t result = row->entry.function(self, iid, out, row->data);
        if (result == QV_S_OK || (row->iid != nullptr && result < 0)) {
            return result;
        }
    }
    *out = nullptr;
    return QV_E_NOINTERFACE;
}

std::int32_t chainToObject(ComObject* self, const GUID& iid, void** out, std::uint32_t) {
    return QueryInterfaceMap(Object::GetComIntfMap(), self, iid, out);
}

} // namespace qv::qvcom
