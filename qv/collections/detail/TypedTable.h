#pragma once

#include "qv/Object.h"
#include "qv/Reference.h"
#include "qv/collections/detail/ChainedTable.h"

#include <memory>

namespace qv::collections::detail {

/// What the hash maps with keys by value are made of: a chained table of keys and objects.
///
/// Keys are compared only where their hashes are equal, by `==` of the stored key and whatever the
/// caller asks with. A new key's value, and a value put in place of another, is counted.
template <class Key>
class TypedTable {
    struct Entry;
    using Link = std::unique_ptr<Entry>;
    using Table = ChainedTable<Entry, Link>;

public:
    static constexpr int DEFAULT_CAPACITY = Table::DEFAULT_CAPACITY;
    static constexpr float DEFAULT_LOAD = Table::DEFAULT_LOAD;

    TypedTable(int capacity, float load) : table_(capacity, load) {}

    /// Kept: the size stays; callers live with it.
    void clear() noexcept { Table::release(table_.takeAll()); }

    template <class Probe>
    Reference<Object> get(std::uint32_t hash, const Probe& probe) const {
        const Entry* const entry = find(hash, probe);
        return entry != nullptr ? entry->value : nullptr;
    }

    int getSize() const noexcept { return table_.getSize(); }

    /// @return the old value, or null for a new key.
    /// @throws std::bad_alloc, with the table as it was.
    Reference<Object> put(std::uint32_t hash, const Key& key, Object* value) {
        Reference<Object> held(value);
        if (Entry* const entry = find(hash, key)) {
            held.swap(entry->value);
            return held;
        }
        table_.insert(std::make_unique<Entry>(hash, key, std::move(held)));
        return nullptr;
    }

    /// @return the value, or null for an unknown key.
    template <class Probe>
    Reference<Object> remove(std::uint32_t hash, const Probe& probe) {
        Entry* const entry = find(hash, probe);
        return entry != nullptr ? std::move(table_.remove(entry)->value) : nullptr;
    }

    /// Shows each key to `visit`: the buckets from the first, each chain from its head.
    template <class Visit>
    void forEachKey(Visit visit) const {
        for (int bucket = 0; bucket < table_.getCapacity(); ++bucket) {
            for (const Entry* entry = table_.getHead(bucket); entry != nullptr;
                 entry = entry->next.get()) {
                visit(entry->key);
            }
        }
    }

private:
    struct Entry {
        Entry(std::uint32_t keyHash, const Key& newKey, Reference<Object> newValue)
            : hash(keyHash), key(newKey), value(std::move(newValue)) {}

        std::uint32_t hash;
        Key key;
        Reference<Object> value;
        Link next;
    };

    template <class Probe>
    Entry* find(std::uint32_t hash, const Probe& probe) const {
        return table_.find(hash, [&](const Entry& entry) { return entry.key == probe; });
    }

    Table table_;
};

} // namespace qv::collections::detail
