#pragma once

#include "qv/Object.h"

namespace qv {

/// Base of the few classes whose values are copied: the count and the module of an object never
/// travel with its value.
class QV_API CopyObject : public Object {
public:
    CopyObject(const CopyObject&) noexcept : Object() {}
    CopyObject& operator=(const CopyObject&) noexcept { return *this; }
    ~CopyObject() noexcept override = default;

protected:
    CopyObject() noexcept = default;
};

} // namespace qv
