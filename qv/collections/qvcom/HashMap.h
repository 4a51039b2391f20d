#pragma once

#include "qv/collections/detail/ChainedTable.h"
#include "qv/collections/qvcom/AbstractMap.h"
#include "qv/collections/qvcom/HashMapEntry.h"

namespace qv::collections::qvcom {

/// The map from object to object: a chained hash table over two comparators.
///
/// Keys are hashed once, when they are put; the key comparator compares only keys of equal hashes.
/// The order of a walk is that of the table: buckets from the last to the first, and in a bucket
/// the key put last comes first. Growing turns the chains round.
///
/// New keys and removals end running walks; changing the value of a key does not.
///
/// Where the comparator or an allocation fails, the map is as it was.
///
/// Thread safety: const-safe, where the comparators are.
class QV_API HashMap : public AbstractMap {
    using Table = collections::detail::ChainedTable<HashMapEntry, Reference<HashMapEntry>>;
    static constexpr int DEFAULT_CAPACITY = Table::DEFAULT_CAPACITY;
    static constexpr float DEFAULT_LOAD = Table::DEFAULT_LOAD;

public:
    HashMap();
    /// An empty map of `capacity` buckets, which grows at `load` entries for each of them.
    /// Requires: a capacity above 0. Kept: neither is looked at; with no buckets the first look-up
    /// is a division by 0.
    /// @throws std::bad_alloc, for a negative capacity too, as all of these.
    HashMap(int capacity, float load);
    /// Owns: a reference on each comparator.
    HashMap(const IQVComparator* keys, const IQVComparator* values, int capacity, float load);
    /// The entries of another map, in twice as many buckets, at least 11.
    HashMap(const Map& source, float load);
    HashMap(const Map& source, const IQVComparator* keys, const IQVComparator* values, float load);
    /// The same entries, comparators, load and number of buckets.
    HashMap(const HashMap& source);
    ~HashMap() override;

    /// Drops all entries; the number of buckets stays.
    /// Kept: so does the size, which counts the old entries from then on, and running walks go on
    /// over the empty table. Callers live with it. The `clear` of a view leaves the size right.
    void clear() override;
    bool containsKey(const IQVUnknown* key) const override;
    bool containsValue(const IQVUnknown* value) const override;
    Reference<const Set> createEntrySet() const override;
    Reference<Set> createEntrySet() override;
    Reference<IQVUnknown> get(const IQVUnknown* key) const override;
    int getSize() const override;
    /// The key put first stays; the value is the new one.
    Reference<IQVUnknown> put(IQVUnknown* key, IQVUnknown* value) override;
    Reference<IQVUnknown> remove(const IQVUnknown* key) override;

private:
    friend class HashMapEntrySet;
    friend class HashMapIterator;

    static int calcCapacity(int size) noexcept;

    HashMapEntry* find(const IQVUnknown* key, std::uint32_t hash) const;
    /// @return the entry, out of the table.
    Reference<HashMapEntry> removeEntry(const HashMapEntry* entry) noexcept;
    /// @throws CastFailedException for an object that is no entry.
    bool containsEntry(const IQVUnknown* object) const;
    std::uint32_t getKeyHashCode(const IQVUnknown* key) const;
    bool keysEqual(const IQVUnknown* stored, const IQVUnknown* probe) const;
    bool valuesEqual(const IQVUnknown* stored, const IQVUnknown* probe) const;

    Table table_;
    std::uint64_t removals_ = 0; ///< entries or tables of them that were taken out, ever
};

} // namespace qv::collections::qvcom
