#pragma once

#include "qv/IQVUnknown.h"

namespace qv::collections::qvcom::detail {

/// A class of the object tree that is also reached through an interface of the collections: on
/// either way the one object is counted and asked for its interfaces.
template <class Base, class Interface>
class QV_API_TEMPLATE Implements : public Base, public virtual Interface {
public:
    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override {
        return Base::QueryInterface(iid, out);
    }
    std::uint32_t AddRef() const noexcept override { return Base::AddRef(); }
    std::uint32_t Release() const noexcept override { return Base::Release(); }
};

} // namespace qv::collections::qvcom::detail
