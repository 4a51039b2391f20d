#pragma once

#include "qv/Object.h"
#include "qv/Reference.h"

namespace qv::collections::qvcom {

/// A key of a map and its value: the element of a map's entry set.
class QV_API MapEntry : public IQVUnknown {
public:
    virtual int compareTo(const Object& other) const = 0;
    virtual bool equals(const Object& other) const = 0;
    virtual Reference<IQVUnknown> getKey() const = 0;
    virtual Reference<IQVUnknown> getValue() const = 0;
    virtual std::uint32_t hashCode() const = 0;
    /// Changes the value in the map. @return the old one.
    virtual Reference<IQVUnknown> setValue(IQVUnknown* value) = 0;

protected:
    ~MapEntry() = default;
};

} // namespace qv::collections::qvcom
