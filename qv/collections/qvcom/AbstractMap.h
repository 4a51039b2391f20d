#pragma once

#include "qv/IQVComparator.h"
#include "qv/collections/qvcom/Map.h"
#include "qv/collections/qvcom/detail/Implements.h"

namespace qv::collections::qvcom {

/// A map made out of one operation, `createEntrySet`: a set of MapEntry objects. All the others
/// walk it, and throw CastFailedException where it holds anything else.
///
/// Thread safety: one thread at a time.
class QV_API AbstractMap : public detail::Implements<Object, Map> {
public:
    AbstractMap& operator=(const AbstractMap&) = delete;

    Reference<const Set> createEntrySet() const override = 0;
    Reference<Set> createEntrySet() override = 0;

    void clear() override;
    /// By the values that the other map has for this map's keys, then by size.
    /// @throws CastFailedException for an object that is no map.
    int compareTo(const Object& other) const override;
    bool containsKey(const IQVUnknown* key) const override;
    bool containsValue(const IQVUnknown* value) const override;
    Reference<const Set> createKeySet() const override;
    Reference<Set> createKeySet() override;
    Reference<const Collection> createValueCollection() const override;
    Reference<Collection> createValueCollection() override;
    /// True for a map with equal values under the same keys.
    bool equals(const Object& other) const override;
    Reference<IQVUnknown> get(const IQVUnknown* key) const override;
    int getSize() const override;
    /// The sum of the entries' hashes.
    std::uint32_t hashCode() const override;
    /// @throws UnsupportedOperationException, unless a class can put.
    Reference<IQVUnknown> put(IQVUnknown* key, IQVUnknown* value) override;
    void putAll(const Map& source) override;
    /// Removes every entry with an equal key. @return the last one's value.
    Reference<IQVUnknown> remove(const IQVUnknown* key) override;

protected:
    /// With the default comparators.
    AbstractMap();
    /// Owns: a reference on each comparator. Either may be null where nothing is compared by it.
    AbstractMap(const IQVComparator* keys, const IQVComparator* values);
    /// Shares the other's comparators; the entries and the changes are not copied.
    AbstractMap(const AbstractMap& other);

    int compareToMap(const Map& other) const;

    Reference<IQVComparator> keyComparator_;
    Reference<IQVComparator> valueComparator_;
    std::int32_t modCount_ = 0;

private:
    friend class AbstractMapKeySet;
    friend class AbstractMapValueCollection;

    /// A view of a const map is handed out by its const interface alone.
    AbstractMap& mutableSelf() const noexcept { return const_cast<AbstractMap&>(*this); }
    int compareEntry(const MapEntry& entry, const Map& other) const;
};

} // namespace qv::collections::qvcom
