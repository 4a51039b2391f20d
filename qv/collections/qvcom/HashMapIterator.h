#pragma once

#include "qv/collections/qvcom/AbstractSet.h"
#include "qv/collections/qvcom/HashMap.h"

namespace qv::collections::qvcom {

/// A walk through the table of a HashMap: its keys, its values or its entries.
///
/// It fails behind new keys and removals that are not its own. After HashMap::clear, which is
/// neither, it goes on over the table as that is then.
///
/// Thread safety: one thread at a time.
class QV_API HashMapIterator : public detail::Implements<ComObject, Iterator> {
public:
    /// What the walk shows of an entry.
    enum Kind : std::int32_t { KEYS = 0, VALUES = 1, ENTRIES = 2 };

    /// Owns: a reference on `map`.
    HashMapIterator(HashMap& map, Kind kind);
    HashMapIterator(const HashMapIterator&) = delete;
    HashMapIterator& operator=(const HashMapIterator&) = delete;

    bool hasNext() const override;
    /// @throws Exception at the end and behind a change by others.
    Reference<IQVUnknown> next() override;
    void remove() override;

private:
    void advance() const;
    void checkMap() const;
    /// Lets go of entries that left the map without a counted change, and so may be gone.
    void dropReleased() const;

    Reference<HashMap> map_;
    std::int32_t expectedModCount_;
    Kind kind_;
    mutable std::int32_t bucket_;
    mutable HashMapEntry* nextEntry_ = nullptr;
    mutable HashMapEntry* lastEntry_ = nullptr;
    mutable std::uint64_t removals_;
};

/// The entries of a HashMap as a set: a view, from which entries can be taken out.
///
/// Thread safety: one thread at a time.
class QV_API HashMapEntrySet : public AbstractSet {
public:
    /// Owns: a reference on `map`.
    explicit HashMapEntrySet(HashMap& map);

    /// True if the map has an equal key with an equal value.
    /// @throws CastFailedException for an object that is no entry.
    bool contains(const IQVUnknown* entry) const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    int getSize() const override;

private:
    Reference<HashMap> map_;
};

} // namespace qv::collections::qvcom
