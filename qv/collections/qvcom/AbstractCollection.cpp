#include "qv/collections/qvcom/AbstractCollection.h"

#include "qv/Exceptions.h"
#include "qv/collections/DefaultComparator.h"
#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

AbstractCollection::AbstractCollection() : comparator_(GetDefaultComparator()) {}

AbstractCollection::AbstractCollection(const IQVComparator* comparator)
    : comparator_(const_cast<IQVComparator*>(comparator)) {}

AbstractCollection::AbstractCollection(const AbstractCollection& other)
    : AbstractCollection(other.comparator_.get()) {}

bool AbstractCollection::add(IQVUnknown*) { throw UnsupportedOperationException(); }

bool AbstractCollection::addAll(const Collection& source) {
    bool changed = false;
    const auto walk = source.createConstIterator();
    for (int left = source.getSize(); left > 0 && walk->hasNext(); --left) {
        changed = add(walk->next()) || changed;
    }
    return changed;
}

void AbstractCollection::clear() {
    const auto walk = createIterator();
    while (walk->hasNext()) {
        const auto element = walk->next();
        walk->remove();
    }
}

int AbstractCollection::compareTo(const Object& other) const { return Object::compareTo(other); }

bool AbstractCollection::contains(const IQVUnknown* element) const {
    const auto walk = createConstIterator();
    while (walk->hasNext()) {
        if (detail::compareElements(comparator_, walk->next(), element) == 0) {
            return true;
        }
    }
    return false;
}

bool AbstractCollection::containsAll(const Collection& other) const {
    const auto walk = other.createConstIterator();
    while (walk->hasNext()) {
        if (!contains(walk->next())) {
            return false;
        }
    }
    return true;
}

bool AbstractCollection::equals(const Object& other) const { return Object::equals(other); }

std::uint32_t AbstractCollection::hashCode() const { return Object::hashCode(); }

bool AbstractCollection::remove(const IQVUnknown* element) {
    const auto walk = createIterator();
    while (walk->hasNext()) {
        const auto stored = walk->next();
        if (detail::compareElements(comparator_, stored, element) == 0) {
            walk->remove();
            return true;
        }
    }
    return false;
}

bool AbstractCollection::removeAll(const Collection& other) {
    bool changed = false;
    const auto walk = other.createConstIterator();
    while (walk->hasNext()) {
        changed = remove(walk->next()) || changed;
    }
    return changed;
}

bool AbstractCollection::retainAll(const Collection& other) {
    bool changed = false;
    const auto walk = createConstIterator();
    while (walk->hasNext()) {
        const auto element = walk->next();
        if (!other.contains(element)) {
            // Kept: not by the walk, which therefore fails at its next step; callers rely on what
            // is left then.
            remove(element);
            changed = true;
        }
    }
    return changed;
}

} // namespace qv::collections::qvcom
