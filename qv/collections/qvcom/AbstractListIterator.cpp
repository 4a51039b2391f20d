#include "qv/collections/qvcom/AbstractListIterator.h"

#include "qv/Exceptions.h"
#include "qv/collections/qvcom/detail/Rules.h"

namespace qv::collections::qvcom {

AbstractListIterator::AbstractListIterator(AbstractList& list, int index)
    : list_(&list), expectedModCount_(list.modCount_), cursor_(index) {}

bool AbstractListIterator::hasNext() const { return cursor_ < list_->getSize(); }

Reference<IQVUnknown> AbstractListIterator::next() {
    checkList();
    Reference<IQVUnknown> element = getAt(cursor_);
    lastIndex_ = cursor_++;
    return element;
}

void AbstractListIterator::remove() {
    checkList();
    checkLast();
    const Reference<IQVUnknown> removed = removeAt(lastIndex_); // ends when all is in order
    if (cursor_ > lastIndex_) {
        --cursor_;
    }
    detail::countChange(expectedModCount_);
    lastIndex_ = -1;
}

bool AbstractListIterator::hasPrevious() const { return cursor_ > 0; }

Reference<IQVUnknown> AbstractListIterator::previous() {
    checkList();
    Reference<IQVUnknown> element = getAt(cursor_ - 1);
    lastIndex_ = --cursor_;
    return element;
}

int AbstractListIterator::nextIndex() const { return cursor_; }

int AbstractListIterator::previousIndex() const { return cursor_ - 1; }

bool AbstractListIterator::add(IQVUnknown* element) {
    checkList();
    if (!addAt(cursor_, element)) {
        return false;
    }
    ++cursor_;
    detail::countChange(expectedModCount_);
    lastIndex_ = -1;
    return true;
}

void AbstractListIterator::set(IQVUnknown* element) {
    checkList();
    checkLast();
    const Reference<IQVUnknown> replaced = setAt(lastIndex_, element);
    detail::countChange(expectedModCount_);
}

Reference<IQVUnknown> AbstractListIterator::getAt(int index) { return list_->get(index); }

Reference<IQVUnknown> AbstractListIterator::removeAt(int index) { return list_->remove(index); }

bool AbstractListIterator::addAt(int index, IQVUnknown* element) {
    return list_->add(index, element);
}

Reference<IQVUnknown> AbstractListIterator::setAt(int index, IQVUnknown* element) {
    return list_->set(index, element);
}

void AbstractListIterator::checkList() const {
    detail::checkUnmodified(expectedModCount_, list_->modCount_);
}

void AbstractListIterator::checkLast() const {
    if (lastIndex_ == -1) {
        throw IllegalStateException();
    }
}

} // namespace qv::collections::qvcom
