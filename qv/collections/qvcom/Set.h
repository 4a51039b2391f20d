#pragma once

#include "qv/collections/qvcom/Collection.h"

namespace qv::collections::qvcom {

/// A collection in which no two elements are equal.
class QV_API Set : public virtual Collection {
protected:
    ~Set() = default;
};

} // namespace qv::collections::qvcom
