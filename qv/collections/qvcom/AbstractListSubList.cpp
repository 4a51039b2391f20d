#include "qv/collections/qvcom/AbstractListSubList.h"

#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

AbstractListSubList::AbstractListSubList(AbstractList& parent, int from, int to)
    : AbstractList(parent.comparator_.get()), parent_(&parent), expectedModCount_(parent.modCount_),
      offset_(from), size_(to - from) {}

bool AbstractListSubList::add(int index, IQVUnknown* element) {
    detail::checkPlaceIndex(index, size_);
    checkParent();
    if (!parent_->add(offset_ + index, element)) {
        return false;
    }
    counted(1);
    return true;
}

Reference<IQVUnknown> AbstractListSubList::remove(int index) {
    checkElement(index);
    Reference<IQVUnknown> element = parent_->remove(offset_ + index);
    counted(-1);
    return element;
}

Reference<IQVUnknown> AbstractListSubList::get(int index) const {
    checkElement(index);
    return parent_->get(offset_ + index);
}

Reference<IQVUnknown> AbstractListSubList::set(int index, IQVUnknown* element) {
    checkElement(index);
    Reference<IQVUnknown> old = parent_->set(offset_ + index, element);
    counted(0);
    return old;
}

int AbstractListSubList::getSize() const { return size_; }

Reference<ListIterator> AbstractListSubList::createListIterator(int index) {
    detail::checkPlaceIndex(index, size_);
    return Reference<ListIterator>(new SubListIterator(*this, index));
}

Reference<ConstListIterator> AbstractListSubList::createConstListIterator(int index) const {
    return const_cast<AbstractListSubList*>(this)->createListIterator(index);
}

void AbstractListSubList::checkParent() const {
    detail::checkUnmodified(expectedModCount_, parent_->modCount_);
}

void AbstractListSubList::checkElement(int index) const {
    detail::checkElementIndex(index, size_);
    checkParent();
}

void AbstractListSubList::counted(int growth) noexcept {
    size_ += growth;
    detail::countChange(expectedModCount_);
}

void AbstractListSubList::uncounted(int growth) noexcept {
    size_ -= growth;
    detail::uncountChange(expectedModCount_);
}

// --- SubListIterator ---

AbstractListSubList::SubListIterator::SubListIterator(AbstractListSubList& subList, int index)
    : subList_(&subList), inner_(subList.parent_->createListIterator(subList.offset_ + index)) {}

bool AbstractListSubList::SubListIterator::hasNext() const {
    return nextIndex() < subList_->getSize();
}

Reference<IQVUnknown> AbstractListSubList::SubListIterator::next() {
    if (!hasNext()) {
        detail::throwWalkFailed();
    }
    return inner_->next();
}

void AbstractListSubList::SubListIterator::remove() {
    // Counted first: the element may end in the removal, and look at the sub list then.
    subList_->counted(-1);
    try {
        inner_->remove();
    } catch (...) {
        subList_->uncounted(-1);
        throw;
    }
}

bool AbstractListSubList::SubListIterator::hasPrevious() const { return previousIndex() >= 0; }

Reference<IQVUnknown> AbstractListSubList::SubListIterator::previous() {
    if (!hasPrevious()) {
        detail::throwWalkFailed();
    }
    return inner_->previous();
}

int AbstractListSubList::SubListIterator::nextIndex() const {
    return inner_->nextIndex() - subList_->offset_;
}

int AbstractListSubList::SubListIterator::previousIndex() const {
    return inner_->previousIndex() - subList_->offset_;
}

bool AbstractListSubList::SubListIterator::add(IQVUnknown* element) {
    const bool added = inner_->add(element);
    subList_->counted(1);
    return added;
}

void AbstractListSubList::SubListIterator::set(IQVUnknown* element) { inner_->set(element); }

} // namespace qv::collections::qvcom
