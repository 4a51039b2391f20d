#pragma once

#include "qv/IQVComparator.h"
#include "qv/Reference.h"

namespace qv::collections {

/// The comparator that collections take where none is given: one util::Comparator for the process,
/// made at the first call. Thread safety: internally locked.
QV_API Reference<IQVComparator> GetDefaultComparator();

} // namespace qv::collections

/// The same, for callers that name the library's classes by their component names.
class QV_API CQVCollections {
public:
    static qv::Reference<IQVComparator> getDefaultComparator();
};
