#pragma once

#include "qv/collections/qvcom/AbstractCollection.h"
#include "qv/collections/qvcom/List.h"

namespace qv::collections::qvcom {

/// A list made out of five operations: `add(int, x)`, `remove(int)`, `get`, `set` and `getSize`.
///
/// Its walks and sub lists notice changes by a counter. A class raises `modCount_` by exactly one
/// for each `add(int, x)`, `remove(int)` and `set`: a walk that makes such a change itself counts
/// it once, and does not look again.
///
/// Thread safety: one thread at a time.
class QV_API AbstractList : public AbstractCollection, public virtual List {
    friend class AbstractListIterator;
    friend class AbstractListSubList;

public:
    using AbstractCollection::addAll;
    using AbstractCollection::remove;

    bool add(int index, IQVUnknown* element) override = 0;
    Reference<IQVUnknown> remove(int index) override = 0;
    Reference<IQVUnknown> get(int index) const override = 0;
    Reference<IQVUnknown> set(int index, IQVUnknown* element) override = 0;
    int getSize() const override = 0;

    /// Puts an element at the end. Always true.
    bool add(IQVUnknown* element) override;
    /// By elements, then by length: 1 for the longer one.
    /// @throws CastFailedException for an object that is no list.
    int compareTo(const Object& other) const override;
    /// True for a list of equal elements in the same order.
    bool equals(const Object& other) const override;
    /// 1 for an empty list; each element multiplies by 38 and adds its hash.
    std::uint32_t hashCode() const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;

    bool addAll(int index, const Collection& source) override;
    Reference<ListIterator> createListIterator(int index) override;
    Reference<ConstListIterator> createConstListIterator(int index) const override;
    Reference<const List> createSubList(int from, int to) const override;
    Reference<List> createSubList(int from, int to) override;
    int indexOf(const IQVUnknown* element) const override;
    int lastIndexOf(const IQVUnknown* element) const override;

protected:
    using AbstractCollection::AbstractCollection;
    /// Shares the other's comparator; the elements and the changes are not copied.
    AbstractList(const AbstractList& other);

    int compareToList(const List& other) const;
    /// The walk that the list hands out: one that gets its elements by index.
    /// Requires: `index` in the range of places.
    virtual Reference<ListIterator> makeWalk(int index);

    std::int32_t modCount_ = 0;

private:
    /// A walk or view of a const list is handed out by its const interface alone.
    AbstractList& mutableSelf() const noexcept { return const_cast<AbstractList&>(*this); }
};

} // namespace qv::collections::qvcom
