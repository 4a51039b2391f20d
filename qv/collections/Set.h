#pragma once

#include "qv/collections/Collection.h"
#include "qv/collections/qvcom/Set.h"

namespace qv::collections {

/// The typed face of a set.
///
/// Thread safety: that of the wrapped set.
template <class T>
class QV_API_TEMPLATE Set : public virtual Collection<T> {
public:
    /// Owns: a reference on `set`.
    explicit Set(qvcom::Set* set) : Collection<T>(set) {}
};

QV_EXTERN_INSTANCE(Set<Integer32>);
QV_EXTERN_INSTANCE(Set<String>);

} // namespace qv::collections
