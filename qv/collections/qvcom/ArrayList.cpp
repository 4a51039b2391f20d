#include "qv/collections/qvcom/ArrayList.h"

#include "qv/collections/qvcom/detail/Rules.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace qv::collections::qvcom {

ArrayList::ArrayList(const IQVComparator* comparator) : AbstractList(comparator) {}

ArrayList::ArrayList(const Collection& source) { addAll(source); }

ArrayList::ArrayList(const Collection& source, const IQVComparator* comparator)
    : AbstractList(comparator) {
    addAll(source);
}

ArrayList::ArrayList(const ArrayList& other) : AbstractList(other) { addAll(other); }

bool ArrayList::add(IQVUnknown* element) {
    makeRoomForOne();
    // Kept: not counted; callers append during a walk.
    elements_.emplace_back(element);
    return true;
}

bool ArrayList::add(int index, IQVUnknown* element) {
    detail::checkPlaceIndex(index, getSize());
    makeRoomForOne();
    elements_.emplace(elements_.begin() + index, element);
    detail::countChange(modCount_);
    return true;
}

void ArrayList::clear() {
    for (int i = getSize() - 1; i >= 0; --i) {
        if (i < getSize()) { // an element that ends may take others out
            remove(i);
        }
    }
    detail::countChange(modCount_);
}

Reference<IQVUnknown> ArrayList::get(int index) const {
    detail::checkElementIndex(index, getSize());
    return elements_[static_cast<std::size_t>(index)];
}

int ArrayList::getSize() const { return static_cast<int>(elements_.size()); }

Reference<IQVUnknown> ArrayList::remove(int index) {
    detail::checkElementIndex(index, getSize());
    const auto place = elements_.begin() + index;
    Reference<IQVUnknown> element = std::move(*place);
    elements_.erase(place);
    detail::countChange(modCount_);
    return element;
}

Reference<IQVUnknown> ArrayList::set(int index, IQVUnknown* element) {
    detail::checkElementIndex(index, getSize());
    Reference<IQVUnknown> old(element);
    old.swap(elements_[static_cast<std::size_t>(index)]);
    detail::countChange(modCount_);
    return old;
}

void ArrayList::makeRoomForOne() {
    const std::size_t capacity = elements_.capacity();
    const std::size_t needed = elements_.size() + 1;
    if (needed <= capacity) {
        return;
    }
    if (needed > std::numeric_limits<int>::max()) {
        throw std::bad_alloc();
    }
    elements_.reserve(std::max(capacity + capacity / 2, needed));
}

} // namespace qv::collections::qvcom
