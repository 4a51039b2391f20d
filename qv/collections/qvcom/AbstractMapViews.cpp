#include "qv/collections/qvcom/AbstractMapViews.h"

#include "qv/collections/qvcom/detail/Entries.h"

namespace qv::collections::qvcom {

namespace detail {

EntrySideIterator::EntrySideIterator(AbstractMap& map)
    : entries_(map.createEntrySet()->createIterator()) {}

bool EntrySideIterator::hasNext() const { return entries_->hasNext(); }

void EntrySideIterator::remove() { entries_->remove(); }

} // namespace detail

// --- Keys ---

AbstractMapKeySet::AbstractMapKeySet(AbstractMap& map)
    : AbstractSet(map.keyComparator_.get()), map_(&map) {}

bool AbstractMapKeySet::contains(const IQVUnknown* key) const { return map_->containsKey(key); }

Reference<Iterator> AbstractMapKeySet::createIterator() {
    return Reference<Iterator>(new KeySetIterator(*map_));
}

Reference<ConstIterator> AbstractMapKeySet::createConstIterator() const {
    return Reference<ConstIterator>(new KeySetIterator(*map_));
}

int AbstractMapKeySet::getSize() const { return map_->getSize(); }

Reference<IQVUnknown> AbstractMapKeySet::KeySetIterator::next() {
    return detail::HeldEntry(entries_->next())->getKey();
}

// --- Values ---

AbstractMapValueCollection::AbstractMapValueCollection(AbstractMap& map)
    : AbstractCollection(map.valueComparator_.get()), map_(&map) {}

bool AbstractMapValueCollection::contains(const IQVUnknown* value) const {
    return map_->containsValue(value);
}

Reference<Iterator> AbstractMapValueCollection::createIterator() {
    return Reference<Iterator>(new ValueCollectionIterator(*map_));
}

Reference<ConstIterator> AbstractMapValueCollection::createConstIterator() const {
    return Reference<ConstIterator>(new ValueCollectionIterator(*map_));
}

int AbstractMapValueCollection::getSize() const { return map_->getSize(); }

Reference<IQVUnknown> AbstractMapValueCollection::ValueCollectionIterator::next() {
    return detail::HeldEntry(entries_->next())->getValue();
}

} // namespace qv::collections::qvcom
