#include "qv/collections/qvcom/HashSet.h"

#include "qv/Exceptions.h"
#include "qv/collections/DefaultComparator.h"
#include "qv/collections/detail/ProcessObject.h"
#include "qv/collections/qvcom/HashMapIterator.h"

namespace qv::collections::qvcom {

namespace {

using Table = collections::detail::ChainedTable<HashMapEntry, Reference<HashMapEntry>>;

/// The value under every element of every set.
Reference<Object> marker() { return collections::detail::ProcessObject<Object>::get(); }

} // namespace

HashSet::HashSet() : map_(make<HashMap>(Table::DEFAULT_CAPACITY, Table::DEFAULT_LOAD)) {}

HashSet::HashSet(const IQVComparator* comparator)
    : AbstractSet(comparator), map_(make<HashMap>(comparator, GetDefaultComparator().get(),
                                                  Table::DEFAULT_CAPACITY, Table::DEFAULT_LOAD)) {}

HashSet::HashSet(const Collection& source) : HashSet() { addAll(source); }

HashSet::HashSet(const Collection& source, const IQVComparator* comparator) : HashSet(comparator) {
    addAll(source);
}

HashSet::HashSet(const HashSet& source) : AbstractSet(source), map_(make<HashMap>(*source.map_)) {}

bool HashSet::add(IQVUnknown* element) {
    const Reference<Object> value = marker();
    return map_->put(element, static_cast<ComObject*>(value.get())).get() == nullptr;
}

void HashSet::clear() { map_->clear(); }

int HashSet::compareTo(const Object& other) const {
    if (this == &other) {
        return 0;
    }
    const auto* const set = dynamic_cast<const HashSet*>(&other);
    if (set == nullptr) {
        throw CastFailedException();
    }
    return map_->compareTo(*set->map_);
}

bool HashSet::contains(const IQVUnknown* element) const { return map_->containsKey(element); }

Reference<Iterator> HashSet::createIterator() {
    return Reference<Iterator>(new HashMapIterator(*map_, HashMapIterator::KEYS));
}

Reference<ConstIterator> HashSet::createConstIterator() const {
    return Reference<ConstIterator>(new HashMapIterator(*map_, HashMapIterator::KEYS));
}

bool HashSet::equals(const Object& other) const { return compareTo(other) == 0; }

int HashSet::getSize() const { return map_->getSize(); }

std::uint32_t HashSet::hashCode() const { return map_->hashCode(); }

bool HashSet::remove(const IQVUnknown* element) { return map_->remove(element).get() != nullptr; }

} // namespace qv::collections::qvcom
