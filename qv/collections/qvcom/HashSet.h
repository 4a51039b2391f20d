#pragma once

#include "qv/collections/qvcom/AbstractSet.h"
#include "qv/collections/qvcom/HashMap.h"

namespace qv::collections::qvcom {

/// A set: the keys of a HashMap, in the order of its table.
///
/// Thread safety: const-safe, where the comparator is.
class QV_API HashSet : public AbstractSet {
public:
    /// An empty set with the default comparator.
    HashSet();
    /// An empty set. Owns: a reference on `comparator`.
    explicit HashSet(const IQVComparator* comparator);
    /// The elements of a collection, with the default comparator.
    explicit HashSet(const Collection& source);
    HashSet(const Collection& source, const IQVComparator* comparator);
    /// The same elements and the same comparator.
    HashSet(const HashSet& source);

    /// @return whether the element is new; of equal ones the first stays.
    bool add(IQVUnknown* element) override;
    /// Kept: the size stays, as with HashMap::clear.
    void clear() override;
    /// As the maps of keys compare.
    /// @throws CastFailedException for an object that is no HashSet.
    int compareTo(const Object& other) const override;
    bool contains(const IQVUnknown* element) const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    /// Kept: unlike other collections, throws CastFailedException for an object that is no HashSet.
    bool equals(const Object& other) const override;
    int getSize() const override;
    /// Kept: always 0, as that of the map.
    std::uint32_t hashCode() const override;
    bool remove(const IQVUnknown* element) override;

private:
    Reference<HashMap> map_;
};

} // namespace qv::collections::qvcom
