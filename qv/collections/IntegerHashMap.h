#pragma once

#include "qv/collections/Set.h"
#include "qv/collections/detail/TypedTable.h"

namespace qv::collections {

/// The map from numbers to objects: keys by value, no comparator, and a snapshot of the keys as the
/// only walk.
///
/// A key is its own hash. A value may be null, and cannot be told from an absent one then.
///
/// Thread safety: const-safe.
class QV_API IntegerHashMap : public Object {
    using Table = detail::TypedTable<int>;
    static constexpr int DEFAULT_CAPACITY = Table::DEFAULT_CAPACITY;
    static constexpr float DEFAULT_LOAD = Table::DEFAULT_LOAD;

public:
    /// An empty map of `capacity` buckets, which grows at `load` entries for each of them.
    /// Requires: a capacity above 0.
    /// @throws std::bad_alloc, for a negative capacity too.
    explicit IntegerHashMap(int capacity = DEFAULT_CAPACITY, float load = DEFAULT_LOAD);
    IntegerHashMap(const IntegerHashMap&) = delete;
    IntegerHashMap& operator=(const IntegerHashMap&) = delete;
    ~IntegerHashMap() override;

    // Slot order is contract from here on.

    /// Drops all entries; the number of buckets stays.
    /// Kept: so does the size, which counts the old entries from then on; callers live with it.
    virtual void clear();
    /// The value of a key, or null.
    virtual Reference<Object> get(int key) const;
    virtual int getSize() const;
    virtual bool isEmpty() const;
    /// @return the old value of the key, or null.
    /// @throws std::bad_alloc, with the map as it was.
    virtual Reference<Object> put(int key, Object* value);
    /// @return the value of the key taken out, or null.
    virtual Reference<Object> remove(int key);
    /// The keys as they are now, in a set of their own.
    virtual Reference<const Set<Integer32>> createKeySet() const;

    // Slot order ends here.

private:
    Table table_;
};

} // namespace qv::collections
