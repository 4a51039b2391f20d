#include "qv/collections/qvcom/AbstractMap.h"

#include "qv/Exceptions.h"
#include "qv/collections/DefaultComparator.h"
#include "qv/collections/qvcom/AbstractMapViews.h"
#include "qv/collections/qvcom/detail/Entries.h"
#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

AbstractMap::AbstractMap()
    : keyComparator_(GetDefaultComparator()), valueComparator_(keyComparator_) {}

AbstractMap::AbstractMap(const IQVComparator* keys, const IQVComparator* values)
    : keyComparator_(const_cast<IQVComparator*>(keys)),
      valueComparator_(const_cast<IQVComparator*>(values)) {}

AbstractMap::AbstractMap(const AbstractMap& other)
    : AbstractMap(other.keyComparator_.get(), other.valueComparator_.get()) {}

void AbstractMap::clear() { createEntrySet()->clear(); }

int AbstractMap::compareTo(const Object& other) const {
    if (this == &other) {
        return 0;
    }
    const auto* const map = dynamic_cast<const Map*>(&other);
    if (map == nullptr) {
        throw CastFailedException();
    }
    return compareToMap(*map);
}

bool AbstractMap::containsKey(const IQVUnknown* key) const {
    const auto walk = createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        if (detail::compareElements(keyComparator_, entry->getKey(), key) == 0) {
            return true;
        }
    }
    return false;
}

bool AbstractMap::containsValue(const IQVUnknown* value) const {
    const auto walk = createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        if (detail::compareElements(valueComparator_, entry->getValue(), value) == 0) {
            return true;
        }
    }
    return false;
}

Reference<const Set> AbstractMap::createKeySet() const { return mutableSelf().createKeySet(); }

Reference<Set> AbstractMap::createKeySet() { return Reference<Set>(new AbstractMapKeySet(*this)); }

Reference<const Collection> AbstractMap::createValueCollection() const {
    return mutableSelf().createValueCollection();
}

Reference<Collection> AbstractMap::createValueCollection() {
    return Reference<Collection>(new AbstractMapValueCollection(*this));
}

bool AbstractMap::equals(const Object& other) const {
    if (this == &other) {
        return true;
    }
    const auto* const map = dynamic_cast<const Map*>(&other);
    return map != nullptr && getSize() == map->getSize() && compareToMap(*map) == 0;
}

Reference<IQVUnknown> AbstractMap::get(const IQVUnknown* key) const {
    const auto walk = createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        if (detail::compareElements(keyComparator_, entry->getKey(), key) == 0) {
            return entry->getValue();
        }
    }
    return nullptr;
}

int AbstractMap::getSize() const { return createEntrySet()->getSize(); }

std::uint32_t AbstractMap::hashCode() const {
    std::uint32_t hash = 0;
    const auto walk = createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        hash += detail::HeldEntry(walk->next())->hashCode();
    }
    return hash;
}

Reference<IQVUnknown> AbstractMap::put(IQVUnknown*, IQVUnknown*) {
    throw UnsupportedOperationException();
}

void AbstractMap::putAll(const Map& source) {
    const auto walk = source.createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        put(entry->getKey(), entry->getValue());
    }
}

Reference<IQVUnknown> AbstractMap::remove(const IQVUnknown* key) {
    Reference<IQVUnknown> value;
    Reference<IQVUnknown> probe; // where `key` is the map's own, it is needed to the end
    const auto walk = createEntrySet()->createIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        Reference<IQVUnknown> stored = entry->getKey();
        if (detail::compareElements(keyComparator_, stored, key) == 0) {
            if (stored.get() == key) {
                probe.swap(stored);
            }
            value = entry->getValue();
            walk->remove();
        }
    }
    return value;
}

int AbstractMap::compareToMap(const Map& other) const {
    const auto walk = createEntrySet()->createConstIterator();
    while (walk->hasNext()) {
        const detail::HeldEntry entry(walk->next());
        if (const int order = compareEntry(*entry, other)) {
            return order;
        }
    }
    return static_cast<int>(static_cast<unsigned>(getSize()) -
                            static_cast<unsigned>(other.getSize()));
}

int AbstractMap::compareEntry(const MapEntry& entry, const Map& other) const {
    const auto key = entry.getKey();
    const auto value = entry.getValue();
    if (value.get() != nullptr) {
        return detail::compareElements(valueComparator_, value, other.get(key));
    }
    if (!other.containsKey(key)) {
        return 1;
    }
    return other.get(key).get() != nullptr ? -1 : 0;
}

} // namespace qv::collections::qvcom
