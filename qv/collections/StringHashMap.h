#pragma once

#include "qv/collections/Set.h"
#include "qv/collections/detail/TypedTable.h"

namespace qv::collections {

/// The map from texts to objects: keys by value, no comparator, and a snapshot of the keys as the
/// only walk.
///
/// Keys are case-sensitive and share their characters with the string that was put. A value may be
/// null, and the key then counts as absent.
///
/// Thread safety: const-safe.
class QV_API StringHashMap : public Object {
    using Table = detail::TypedTable<String>;
    static constexpr int DEFAULT_CAPACITY = Table::DEFAULT_CAPACITY;
    static constexpr float DEFAULT_LOAD = Table::DEFAULT_LOAD;

public:
    /// An empty map of `capacity` buckets, which grows at `load` entries for each of them.
    /// Requires: a capacity above 0.
    /// @throws std::bad_alloc, for a negative capacity too.
    explicit StringHashMap(int capacity = DEFAULT_CAPACITY, float load = DEFAULT_LOAD);
    StringHashMap(const StringHashMap&) = delete;
    StringHashMap& operator=(const StringHashMap&) = delete;
    ~StringHashMap() override;

    // Slot order is contract from here on.

    /// Drops all entries; the number of buckets stays.
    /// Kept: so does the size, which counts the old entries from then on; callers live with it.
    virtual void clear();
    /// The value of a key, or null. A length of -1 means up to the terminator.
    virtual Reference<Object> get(const char16_t* key, int length) const;
    virtual Reference<Object> get(const String& key) const;
    virtual int getSize() const;
    /// Kept: false for a key whose value is null.
    virtual bool containsKey(const char16_t* key, int length) const;
    virtual bool containsKey(const String& key) const;
    virtual bool isEmpty() const;
    /// @return the old value of the key, or null. Of equal keys the first stays.
    /// @throws std::bad_alloc, with the map as it was.
    virtual Reference<Object> put(const String& key, Object* value);
    /// @return the value of the key taken out, or null.
    virtual Reference<Object> remove(const String& key);
    /// The keys as they are now, in a set of their own.
    virtual Reference<const Set<String>> createKeySet() const;

    // Slot order ends here.

private:
    Table table_;
};

} // namespace qv::collections
