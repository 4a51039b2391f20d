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

std::uint32_t ComObject::AddRef() const noexcept {
    const std::uint32_t count = InternalAddRef();
    if (count == 1 && module_ != nullptr) {
        module_->AddRef();
    }
    return count;
}

std::uint32_t ComObject::Release() const noexcept {
    const std::uint32_t count = InternalRelease();
    if (count != 0) {
        return count;
    }
    if (module_ != nullptr) {
        module_->Release();
    }
    delete this;
    return 0;
}

std::int32_t ComObject::NonDelegatingQueryInterface(const GUID& iid, void** out) noexcept {
    return QueryInterface(iid, out);
}

std::int32_t ComObject::SetOuterUnknown(IQVUnknown*) noexcept { return QV_E_NOAGGREGATION; }

const qvcom::InterfaceData* ComObject::GetComIntfMap() noexcept { return comObjectMap; }

std::uint32_t ComObject::InternalAddRef() const noexcept {
    return count_.fetch_add(1, std::memory_order_relaxed) + 1;
}

std::uint32_t ComObject::InternalRelease() const noexcept {
    return count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
}

} // namespace qv
