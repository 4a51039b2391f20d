#pragma once

#include "qv/collections/qvcom/AbstractList.h"

namespace qv::collections::qvcom {

/// A view of a range of a list, with that list's comparator.
///
/// Changes through the view are counted as they go to the list; after any other change of the list
/// the view throws Exception. An index is looked at before that.
///
/// Kept: the view's own counter never moves. A walk of `createIterator` looks at it, and fails at
/// the step behind its own `remove` or `set`, as `clear` does behind its first element; walks of
/// `createListIterator` do not. A view of a view looks at it too: that one notices no change of the
/// outer view, and throws Exception behind the first change of its own.
///
/// Thread safety: one thread at a time.
class QV_API AbstractListSubList : public AbstractList {
public:
    class SubListIterator;

    /// Owns: a reference on `parent`. Requires: a range of the parent.
    AbstractListSubList(AbstractList& parent, int from, int to);
    AbstractListSubList(const AbstractListSubList&) = delete;

    using AbstractList::add;
    using AbstractList::remove;

    bool add(int index, IQVUnknown* element) override;
    Reference<IQVUnknown> remove(int index) override;
    Reference<IQVUnknown> get(int index) const override;
    Reference<IQVUnknown> set(int index, IQVUnknown* element) override;
    int getSize() const override;
    Reference<ListIterator> createListIterator(int index) override;
    Reference<ConstListIterator> createConstListIterator(int index) const override;

private:
    void checkParent() const;
    void checkElement(int index) const;
    /// A change of the parent that moved the view's end by `growth`.
    void counted(int growth) noexcept;
    /// That change did not come about.
    void uncounted(int growth) noexcept;

    Reference<AbstractList> parent_;
    std::int32_t expectedModCount_;
    std::int32_t offset_;
    std::int32_t size_;
};

/// The walk through a sub list: one through the parent, kept inside the range.
class QV_API AbstractListSubList::SubListIterator
    : public detail::Implements<ComObject, ListIterator> {
public:
    /// Owns: a reference on `subList`. Requires: `index` from 0 to its size.
    SubListIterator(AbstractListSubList& subList, int index);
    SubListIterator(const SubListIterator&) = delete;
    SubListIterator& operator=(const SubListIterator&) = delete;

    bool hasNext() const override;
    /// @throws Exception at the end.
    Reference<IQVUnknown> next() override;
    void remove() override;
    bool hasPrevious() const override;
    /// @throws Exception at the start.
    Reference<IQVUnknown> previous() override;
    int nextIndex() const override;
    int previousIndex() const override;
    bool add(IQVUnknown* element) override;
    /// Kept: the sub list is not told. It throws Exception from then on; the walk goes on.
    void set(IQVUnknown* element) override;

private:
    Reference<AbstractListSubList> subList_;
    Reference<ListIterator> inner_;
};

} // namespace qv::collections::qvcom
