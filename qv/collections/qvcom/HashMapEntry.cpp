#include "qv/collections/qvcom/HashMapEntry.h"

#include <utility>

namespace qv::collections::qvcom {

HashMapEntry::HashMapEntry(Reference<IQVUnknown>&& newKey, Reference<IQVUnknown>&& newValue,
                           std::uint32_t keyHash, Reference<HashMapEntry>&& nextEntry) noexcept
    : key(std::move(newKey)), value(std::move(newValue)), hash(keyHash),
      next(std::move(nextEntry)) {}

Reference<HashMapEntry> HashMapEntry::create(Reference<IQVUnknown> key, Reference<IQVUnknown> value,
                                             std::uint32_t hash) {
    auto* const entry = new HashMapEntry(std::move(key), std::move(value), hash, nullptr);
    entry->holdFirst();
    return Reference<HashMapEntry>::adopt(entry);
}

int HashMapEntry::compareTo(const Object&) const { return 0; }

bool HashMapEntry::equals(const Object&) const { return true; }

std::uint32_t HashMapEntry::hashCode() const { return 0; }

Reference<IQVUnknown> HashMapEntry::setValue(IQVUnknown* newValue) {
    Reference<IQVUnknown> old(newValue);
    old.swap(value);
    return old;
}

} // namespace qv::collections::qvcom
