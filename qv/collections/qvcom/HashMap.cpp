#include "qv/collections/qvcom/HashMap.h"

#include "qv/collections/qvcom/HashMapIterator.h"
#include "qv/collections/qvcom/detail/Entries.h"
#include "qv/collections/qvcom/detail/Rules.h"

#include <utility>

namespace qv::collections::qvcom {

HashMap::HashMap() : HashMap(DEFAULT_CAPACITY, DEFAULT_LOAD) {}

HashMap::HashMap(int capacity, float load) : table_(capacity, load) {}

HashMap::HashMap(const IQVComparator* keys, const IQVComparator* values, int capacity, float load)
    : AbstractMap(keys, values), table_(capacity, load) {}

HashMap::HashMap(const Map& source, float load) : table_(calcCapacity(source.getSize()), load) {
    putAll(source);
}

HashMap::HashMap(const Map& source, const IQVComparator* keys, const IQVComparator* values,
                 float load)
    : AbstractMap(keys, values), table_(calcCapacity(source.getSize()), load) {
    putAll(source);
}

HashMap::HashMap(const HashMap& source)
    : AbstractMap(source), table_(source.table_.getCapacity(), source.table_.getLoad()) {
    putAll(source);
}

HashMap::~HashMap() = default;

void HashMap::clear() {
    ++removals_;
    // Kept: size and counter of changes stay; callers live with both.
    Table::release(table_.takeAll());
}

bool HashMap::containsKey(const IQVUnknown* key) const {
    return find(key, getKeyHashCode(key)) != nullptr;
}

bool HashMap::containsValue(const IQVUnknown* value) const {
    for (int bucket = table_.getCapacity() - 1; bucket >= 0; --bucket) {
        for (const HashMapEntry* entry = table_.getHead(bucket); entry != nullptr;
             entry = entry->next) {
            if (valuesEqual(entry->value, value)) {
                return true;
            }
        }
    }
    return false;
}

Reference<const Set> HashMap::createEntrySet() const {
    return const_cast<HashMap*>(this)->createEntrySet();
}

Reference<Set> HashMap::createEntrySet() { return Reference<Set>(new HashMapEntrySet(*this)); }

Reference<IQVUnknown> HashMap::get(const IQVUnknown* key) const {
    const HashMapEntry* const entry = find(key, getKeyHashCode(key));
    return entry != nullptr ? entry->value : nullptr;
}

int HashMap::getSize() const { return table_.getSize(); }

Reference<IQVUnknown> HashMap::put(IQVUnknown* key, IQVUnknown* value) {
    Reference<IQVUnknown> heldKey(key);
    Reference<IQVUnknown> heldValue(value);
    const std::uint32_t hash = getKeyHashCode(key);
    if (HashMapEntry* const entry = find(key, hash)) {
        heldValue.swap(entry->value);
        return heldValue;
    }
    table_.insert(HashMapEntry::create(std::move(heldKey), std::move(heldValue), hash));
    detail::countChange(modCount_);
    return nullptr;
}

Reference<IQVUnknown> HashMap::remove(const IQVUnknown* key) {
    HashMapEntry* const entry = find(key, getKeyHashCode(key));
    if (entry == nullptr) {
        return nullptr;
    }
    Reference<IQVUnknown> value = std::move(entry->value);
    removeEntry(entry);
    return value;
}

int HashMap::calcCapacity(int size) noexcept {
    // A doubling that goes beyond all numbers gives a negative one, and that no table.
    return size > 5 ? static_cast<int>(static_cast<unsigned>(size) * 2) : 11;
}

HashMapEntry* HashMap::find(const IQVUnknown* key, std::uint32_t hash) const {
    return table_.find(hash, [&](const HashMapEntry& entry) { return keysEqual(entry.key, key); });
}

Reference<HashMapEntry> HashMap::removeEntry(const HashMapEntry* entry) noexcept {
    detail::countChange(modCount_);
    ++removals_;
    return table_.remove(entry);
}

bool HashMap::containsEntry(const IQVUnknown* object) const {
    const detail::HeldEntry wanted(const_cast<IQVUnknown*>(object));
    const auto key = wanted->getKey();
    const auto value = wanted->getValue();
    return table_.find(getKeyHashCode(key), [&](const HashMapEntry& entry) {
        return keysEqual(entry.key, key) && valuesEqual(entry.value, value);
    }) != nullptr;
}

std::uint32_t HashMap::getKeyHashCode(const IQVUnknown* key) const {
    return detail::hashElement(keyComparator_, key);
}

bool HashMap::keysEqual(const IQVUnknown* stored, const IQVUnknown* probe) const {
    return detail::compareElements(keyComparator_, stored, probe) == 0;
}

bool HashMap::valuesEqual(const IQVUnknown* stored, const IQVUnknown* probe) const {
    return detail::compareElements(valueComparator_, stored, probe) == 0;
}

} // namespace qv::collections::qvcom
