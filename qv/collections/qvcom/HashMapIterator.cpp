#include "qv/collections/qvcom/HashMapIterator.h"

#include "qv/Exceptions.h"
#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

HashMapIterator::HashMapIterator(HashMap& map, Kind kind)
    : map_(&map), expectedModCount_(map.modCount_), kind_(kind), bucket_(map.table_.getCapacity()),
      removals_(map.removals_) {}

bool HashMapIterator::hasNext() const {
    advance();
    return nextEntry_ != nullptr;
}

Reference<IQVUnknown> HashMapIterator::next() {
    checkMap();
    advance();
    if (nextEntry_ == nullptr) {
        detail::throwWalkFailed();
    }
    lastEntry_ = nextEntry_;
    nextEntry_ = lastEntry_->next;
    switch (kind_) {
    case KEYS:
        return lastEntry_->key;
    case VALUES:
        return lastEntry_->value;
    default:
        return static_cast<ComObject*>(lastEntry_);
    }
}

void HashMapIterator::remove() {
    checkMap();
    dropReleased();
    if (lastEntry_ == nullptr) {
        throw IllegalStateException();
    }
    const Reference<HashMapEntry> removed = map_->removeEntry(lastEntry_);
    detail::countChange(expectedModCount_);
    removals_ = map_->removals_;
    lastEntry_ = nullptr;
}

void HashMapIterator::advance() const {
    dropReleased();
    while (nextEntry_ == nullptr && bucket_ >= 1) {
        nextEntry_ = map_->table_.getHead(--bucket_);
    }
}

void HashMapIterator::checkMap() const {
    detail::checkUnmodified(expectedModCount_, map_->modCount_);
}

void HashMapIterator::dropReleased() const {
    // A walk that a counted change has ended touches no entry any more, and answers as it stood.
    if (removals_ != map_->removals_ && expectedModCount_ == map_->modCount_) {
        nextEntry_ = lastEntry_ = nullptr;
        removals_ = map_->removals_;
    }
}

// --- The entry set ---

HashMapEntrySet::HashMapEntrySet(HashMap& map) : map_(&map) {}

bool HashMapEntrySet::contains(const IQVUnknown* entry) const { return map_->containsEntry(entry); }

Reference<Iterator> HashMapEntrySet::createIterator() {
    return Reference<Iterator>(new HashMapIterator(*map_, HashMapIterator::ENTRIES));
}

Reference<ConstIterator> HashMapEntrySet::createConstIterator() const {
    return Reference<ConstIterator>(new HashMapIterator(*map_, HashMapIterator::ENTRIES));
}

int HashMapEntrySet::getSize() const { return map_->getSize(); }

} // namespace qv::collections::qvcom
