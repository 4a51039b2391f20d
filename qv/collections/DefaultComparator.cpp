#include "qv/collections/DefaultComparator.h"

#include "qv/collections/detail/ProcessObject.h"
#include "qv/util/Comparator.h"

namespace qv::collections {

Reference<IQVComparator> GetDefaultComparator() {
    return detail::ProcessObject<util::Comparator>::get();
}

} // namespace qv::collections

qv::Reference<IQVComparator> CQVCollections::getDefaultComparator() {
    return qv::collections::GetDefaultComparator();
}
