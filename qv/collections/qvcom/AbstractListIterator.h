#pragma once

#include "qv/collections/qvcom/AbstractList.h"

namespace qv::collections::qvcom {

/// The walk of every list, by index. It is all four kinds of walk in one.
///
/// It counts the changes that it makes itself, each as one. `hasNext`, `hasPrevious` and the
/// indexes do not look for changes by others; everything else does, first of all.
///
/// Thread safety: one thread at a time.
class QV_API AbstractListIterator : public detail::Implements<ComObject, ListIterator> {
public:
    /// Owns: a reference on `list`. Requires: `index` from 0 to the list's size.
    AbstractListIterator(AbstractList& list, int index);
    AbstractListIterator(const AbstractListIterator&) = delete;
    AbstractListIterator& operator=(const AbstractListIterator&) = delete;

    bool hasNext() const override;
    /// @throws RangeErrorException at the end.
    Reference<IQVUnknown> next() override;
    void remove() override;
    bool hasPrevious() const override;
    /// @throws RangeErrorException at the start.
    Reference<IQVUnknown> previous() override;
    int nextIndex() const override;
    int previousIndex() const override;
    bool add(IQVUnknown* element) override;
    void set(IQVUnknown* element) override;

protected:
    // The list's operations, for walks that know a shorter way to the place.

    virtual Reference<IQVUnknown> getAt(int index);
    virtual Reference<IQVUnknown> removeAt(int index);
    virtual bool addAt(int index, IQVUnknown* element);
    virtual Reference<IQVUnknown> setAt(int index, IQVUnknown* element);

private:
    void checkList() const;
    /// @throws IllegalStateException where there is nothing to remove or set.
    void checkLast() const;

    Reference<AbstractList> list_;
    std::int32_t expectedModCount_;
    std::int32_t cursor_;
    std::int32_t lastIndex_ = -1;
};

} // namespace qv::collections::qvcom
