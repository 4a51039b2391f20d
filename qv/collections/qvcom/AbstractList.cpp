#include "qv/collections/qvcom/AbstractList.h"

#include "qv/Exceptions.h"
#include "qv/collections/qvcom/AbstractListIterator.h"
#include "qv/collections/qvcom/AbstractListSubList.h"
#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

namespace {

/// What the hash so far is multiplied by for each element. Kept: not 37, as the text hash has it.
constexpr std::uint32_t hashMultiplier = 38;

} // namespace

AbstractList::AbstractList(const AbstractList& other) : AbstractCollection(other) {}

bool AbstractList::add(IQVUnknown* element) {
    createListIterator(getSize())->add(element);
    return true;
}

int AbstractList::compareTo(const Object& other) const {
    if (this == &other) {
        return 0;
    }
    const auto* const list = dynamic_cast<const List*>(&other);
    if (list == nullptr) {
        throw CastFailedException();
    }
    return compareToList(*list);
}

bool AbstractList::equals(const Object& other) const {
    if (this == &other) {
        return true;
    }
    const auto* const list = dynamic_cast<const List*>(&other);
    return list != nullptr && getSize() == list->getSize() && compareToList(*list) == 0;
}

std::uint32_t AbstractList::hashCode() const {
    std::uint32_t hash = 1;
    const auto walk = createConstIterator();
    while (walk->hasNext()) {
        hash = hash * hashMultiplier + detail::hashElement(comparator_, walk->next());
    }
    return hash;
}

Reference<Iterator> AbstractList::createIterator() { return makeWalk(0); }

Reference<ConstIterator> AbstractList::createConstIterator() const {
    return mutableSelf().makeWalk(0);
}

bool AbstractList::addAll(int index, const Collection& source) {
    detail::checkPlaceIndex(index, getSize());
    bool any = false;
    const auto place = createListIterator(index);
    const auto walk = source.createConstIterator();
    for (int left = source.getSize(); left > 0 && walk->hasNext(); --left) {
        place->add(walk->next());
        any = true;
    }
    return any;
}

Reference<ListIterator> AbstractList::createListIterator(int index) {
    detail::checkPlaceIndex(index, getSize());
    return makeWalk(index);
}

Reference<ConstListIterator> AbstractList::createConstListIterator(int index) const {
    return mutableSelf().createListIterator(index);
}

Reference<const List> AbstractList::createSubList(int from, int to) const {
    return mutableSelf().createSubList(from, to);
}

Reference<List> AbstractList::createSubList(int from, int to) {
    if (from < 0 || to > getSize() || from > to) {
        detail::throwRangeError();
    }
    return Reference<List>(new AbstractListSubList(*this, from, to));
}

int AbstractList::indexOf(const IQVUnknown* element) const {
    const auto walk = createConstListIterator(0);
    while (walk->hasNext()) {
        if (detail::compareElements(comparator_, walk->next(), element) == 0) {
            return walk->previousIndex();
        }
    }
    return -1;
}

int AbstractList::lastIndexOf(const IQVUnknown* element) const {
    const auto walk = createConstListIterator(getSize());
    while (walk->hasPrevious()) {
        if (detail::compareElements(comparator_, walk->previous(), element) == 0) {
            return walk->nextIndex();
        }
    }
    return -1;
}

int AbstractList::compareToList(const List& other) const {
    const auto mine = createConstIterator();
    const auto theirs = other.createConstIterator();
    while (mine->hasNext() && theirs->hasNext()) {
        const auto element = mine->next();
        if (const int order = detail::compareElements(comparator_, element, theirs->next())) {
            return order;
        }
    }
    return static_cast<int>(mine->hasNext()) - static_cast<int>(theirs->hasNext());
}

Reference<ListIterator> AbstractList::makeWalk(int index) {
    return Reference<ListIterator>(new AbstractListIterator(*this, index));
}

} // namespace qv::collections::qvcom
