#include "qv/ComObject.h"

#include "qv/Results.h"
#include "qv/qvcom/Module.h"

namespace qv {

namespace {

constexpr qvcom::InterfaceData comObjectMap[] = {
    qvcom::offsetRow(IID_IQVUnknown, 0),
    qvcom::endRow(),
};

} // namespace

std::int32_t ComObject::QueryInterface(const GUID& iid, void** out) noexcept {
    return qvcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

void ComObject::lockModule() const noexcept { module_->AddRef(); }

void ComObject::end() const noexcept {
    if (module_ != nullptr) {
        module_->Release();
    }
    delete this;
}

std::int32_t ComObject::NonDelegatingQueryInterface(const GUID& iid, void** out) noexcept {
    return QueryInterface(iid, out);
}

std::int32_t ComObject::SetOuterUnknown(IQVUnknown*) noexcept { return QV_E_NOAGGREGATION; }

const qvcom::InterfaceData* ComObject::GetComIntfMap() noexcept { return comObjectMap; }

} // namespace qv
