#pragma once

#include "qv/collections/qvcom/AbstractMap.h"
#include "qv/collections/qvcom/AbstractSet.h"

namespace qv::collections::qvcom {

namespace detail {

/// A walk through a map's entries that shows one side of them.
class QV_API EntrySideIterator : public Implements<ComObject, Iterator> {
public:
    explicit EntrySideIterator(AbstractMap& map);
    EntrySideIterator(const EntrySideIterator&) = delete;
    EntrySideIterator& operator=(const EntrySideIterator&) = delete;

    bool hasNext() const override;
    void remove() override;

protected:
    Reference<Iterator> entries_;
};

} // namespace detail

/// The keys of a map: a view, from which keys can be taken out, with their entries.
///
/// Thread safety: one thread at a time.
class QV_API AbstractMapKeySet : public AbstractSet {
public:
    class KeySetIterator;

    /// Owns: a reference on `map`.
    explicit AbstractMapKeySet(AbstractMap& map);

    bool contains(const IQVUnknown* key) const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    int getSize() const override;

private:
    Reference<AbstractMap> map_;
};

class QV_API AbstractMapKeySet::KeySetIterator : public detail::EntrySideIterator {
public:
    using EntrySideIterator::EntrySideIterator;
    Reference<IQVUnknown> next() override;
};

/// The values of a map: a view, from which values can be taken out, with their entries.
///
/// Thread safety: one thread at a time.
class QV_API AbstractMapValueCollection : public AbstractCollection {
public:
    class ValueCollectionIterator;

    /// Owns: a reference on `map`.
    explicit AbstractMapValueCollection(AbstractMap& map);

    bool contains(const IQVUnknown* value) const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    int getSize() const override;

private:
    Reference<AbstractMap> map_;
};

class QV_API AbstractMapValueCollection::ValueCollectionIterator
    : public detail::EntrySideIterator {
public:
    using EntrySideIterator::EntrySideIterator;
    Reference<IQVUnknown> next() override;
};

} // namespace qv::collections::qvcom
