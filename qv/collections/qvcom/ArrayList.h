#pragma once

#include "qv/collections/qvcom/AbstractList.h"

#include <vector>

namespace qv::collections::qvcom {

/// A list in one array: quick by index and at the end.
///
/// The array grows by half. Growing moves the elements, so that no count changes. An empty list has
/// no array.
///
/// Thread safety: const-safe.
class QV_API ArrayList : public AbstractList {
public:
    /// An empty list with the default comparator.
    ArrayList() = default;
    /// An empty list. Owns: a reference on `comparator`, which may be null where nothing is
    /// compared, here and below.
    explicit ArrayList(const IQVComparator* comparator);
    /// The elements of a collection, with the default comparator.
    explicit ArrayList(const Collection& source);
    ArrayList(const Collection& source, const IQVComparator* comparator);
    /// The same elements and the same comparator; changes are counted from 0.
    ArrayList(const ArrayList& other);

    using AbstractList::remove;

    /// Puts an element at the end.
    /// Kept: this is no counted change, and running walks see the element; `add(int, x)` is one.
    bool add(IQVUnknown* element) override;
    bool add(int index, IQVUnknown* element) override;
    /// Removes the elements from the last to the first, and counts one change more than these.
    void clear() override;
    Reference<IQVUnknown> get(int index) const override;
    int getSize() const override;
    Reference<IQVUnknown> remove(int index) override;
    /// Counts as a change: walks of others end with it.
    Reference<IQVUnknown> set(int index, IQVUnknown* element) override;

private:
    /// @throws std::bad_alloc, with the list as it was.
    void makeRoomForOne();

    std::vector<Reference<IQVUnknown>> elements_;
};

} // namespace qv::collections::qvcom
