#include "qv/collections/qvcom/detail/Entries.h"

#include "qv/Exceptions.h"
#include "qv/collections/detail/Elements.h"
#include "qv/collections/qvcom/HashMapEntry.h"

namespace qv::collections::qvcom::detail {

MapEntry* HeldEntry::entryOf(IQVUnknown* element) {
    if (auto* const known = collections::detail::exactElement<HashMapEntry>(element)) {
        return known;
    }
    auto* const entry = dynamic_cast<MapEntry*>(element);
    if (entry == nullptr) {
        throw CastFailedException();
    }
    return entry;
}

} // namespace qv::collections::qvcom::detail
