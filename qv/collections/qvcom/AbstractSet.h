#pragma once

#include "qv/collections/qvcom/AbstractCollection.h"
#include "qv/collections/qvcom/Set.h"

namespace qv::collections::qvcom {

/// Base of the sets. It adds nothing to what a collection does.
///
/// Thread safety: one thread at a time.
class QV_API AbstractSet : public AbstractCollection, public virtual Set {
protected:
    using AbstractCollection::AbstractCollection;
};

} // namespace qv::collections::qvcom
