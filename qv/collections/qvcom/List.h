#pragma once

#include "qv/collections/qvcom/Collection.h"

namespace qv::collections::qvcom {

/// A collection in which each element has its place, counted from 0.
class QV_API List : public virtual Collection {
public:
    using Collection::add;
    using Collection::addAll;
    using Collection::remove;

    // Slot order is contract from here on. Where an index is out of its range, RangeErrorException
    // is thrown.

    /// Puts an element in front of the one at `index`; the size as index is the end.
    virtual bool add(int index, IQVUnknown* element) = 0;
    /// Puts the elements of another collection, in their order, in front of the one at `index`.
    /// @return whether there were any.
    virtual bool addAll(int index, const Collection& source) = 0;
    /// @return the element taken out.
    virtual Reference<IQVUnknown> remove(int index) = 0;
    /// A walk that starts in front of the element at `index`; the size as index is the end.
    virtual Reference<ListIterator> createListIterator(int index) = 0;
    virtual Reference<ConstListIterator> createConstListIterator(int index) const = 0;
    /// A view of the elements from `from` up to but not including `to`: what is changed in the one
    /// is changed in the other. The view ends with the first change of the list that is not made
    /// through it: from then on it throws Exception.
    virtual Reference<const List> createSubList(int from, int to) const = 0;
    virtual Reference<List> createSubList(int from, int to) = 0;
    virtual Reference<IQVUnknown> get(int index) const = 0;
    /// The lowest index of an equal element, or -1.
    virtual int indexOf(const IQVUnknown* element) const = 0;
    /// The highest index of an equal element, or -1.
    virtual int lastIndexOf(const IQVUnknown* element) const = 0;
    /// @return the old element.
    virtual Reference<IQVUnknown> set(int index, IQVUnknown* element) = 0;

protected:
    ~List() = default;
};

} // namespace qv::collections::qvcom
