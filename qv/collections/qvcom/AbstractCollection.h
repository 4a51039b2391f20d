#pragma once

#include "qv/IQVComparator.h"
#include "qv/collections/qvcom/Collection.h"
#include "qv/collections/qvcom/detail/Implements.h"

namespace qv::collections::qvcom {

/// A collection made out of three operations: `createIterator`, `createConstIterator` and
/// `getSize`. All the others walk.
///
/// Nothing is rolled back: where an operation fails, what it did until then stays.
///
/// Thread safety: one thread at a time.
class QV_API AbstractCollection : public detail::Implements<Object, Collection> {
public:
    AbstractCollection& operator=(const AbstractCollection&) = delete;

    /// @throws UnsupportedOperationException, unless a class can add.
    bool add(IQVUnknown* element) override;
    /// A source that grows with what is added here, as this collection itself and views of it do,
    /// counts as long as it was at the start.
    bool addAll(const Collection& source) override;
    void clear() override;
    /// The order of addresses, unless a class has a better one.
    int compareTo(const Object& other) const override;
    bool contains(const IQVUnknown* element) const override;
    bool containsAll(const Collection& other) const override;
    /// True only for the same object, unless a class has a better meaning.
    bool equals(const Object& other) const override;
    std::uint32_t hashCode() const override;
    bool remove(const IQVUnknown* element) override;
    bool removeAll(const Collection& other) override;
    /// Kept: the removal is not the walk's own. Where a collection counts its changes, one that
    /// removes anything but the last element ends in Exception, with that element removed.
    bool retainAll(const Collection& other) override;

protected:
    /// With the default comparator.
    AbstractCollection();
    /// Owns: a reference on `comparator`. It may be null in a collection that compares nothing.
    explicit AbstractCollection(const IQVComparator* comparator);
    /// Shares the other's comparator, and copies no elements.
    AbstractCollection(const AbstractCollection& other);

    Reference<IQVComparator> comparator_;
};

} // namespace qv::collections::qvcom
