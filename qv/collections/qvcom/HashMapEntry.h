#pragma once

#include "qv/ComObject.h"
#include "qv/collections/qvcom/MapEntry.h"
#include "qv/collections/qvcom/detail/Implements.h"

namespace qv::collections::detail {
template <class Entry, class Link>
class ChainedTable;
}

namespace qv::collections::qvcom {

/// A key of a HashMap, its value, and its place in the chain of its bucket.
///
/// An entry that a walk has handed out outlives its removal. HashMap::remove takes its value then;
/// a walk's own removal leaves it.
///
/// Thread safety: one thread at a time.
class QV_API HashMapEntry final : public detail::Implements<ComObject, MapEntry> {
public:
    /// Takes the references over: what they are made from is null then.
    HashMapEntry(Reference<IQVUnknown>&& newKey, Reference<IQVUnknown>&& newValue,
                 std::uint32_t keyHash, Reference<HashMapEntry>&& nextEntry) noexcept;
    HashMapEntry(const HashMapEntry&) = delete;
    HashMapEntry& operator=(const HashMapEntry&) = delete;

    /// Makes an entry and its first reference.
    static Reference<HashMapEntry> create(Reference<IQVUnknown> key, Reference<IQVUnknown> value,
                                          std::uint32_t hash);

    /// Kept: entries have no order; it is always 0.
    int compareTo(const Object& other) const override;
    /// Kept: always true.
    bool equals(const Object& other) const override;
    Reference<IQVUnknown> getKey() const override { return key; }
    Reference<IQVUnknown> getValue() const override { return value; }
    /// Kept: always 0, and so is the hash of every HashMap.
    std::uint32_t hashCode() const override;
    Reference<IQVUnknown> setValue(IQVUnknown* newValue) override;

private:
    friend class HashMap;
    friend class HashMapIterator;
    template <class Entry, class Link>
    friend class collections::detail::ChainedTable;

    Reference<IQVUnknown> key;
    Reference<IQVUnknown> value;
    std::uint32_t hash; ///< of the key, computed once
    Reference<HashMapEntry> next;
};

} // namespace qv::collections::qvcom
