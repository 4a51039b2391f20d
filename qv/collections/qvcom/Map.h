#pragma once

#include "qv/collections/qvcom/MapEntry.h"
#include "qv/collections/qvcom/Set.h"

namespace qv::collections::qvcom {

/// Values under keys, as other modules see them.
///
/// Keys and values are counted like the elements of a collection; either may be null, as far as the
/// comparators take it. No two keys are equal. A map lives on the heap, as a collection does.
///
/// Thread safety: one thread at a time.
class QV_API Map : public IQVUnknown {
public:
    virtual void clear() = 0;
    /// @throws CastFailedException for an object that is no map.
    virtual int compareTo(const Object& other) const = 0;
    /// @throws ResultException with what a comparator returned, as all that look up.
    virtual bool containsKey(const IQVUnknown* key) const = 0;
    virtual bool containsValue(const IQVUnknown* value) const = 0;
    /// Views: each is the map seen as a collection, and what is removed there is removed here.
    virtual Reference<const Set> createEntrySet() const = 0;
    virtual Reference<Set> createEntrySet() = 0;
    virtual Reference<const Set> createKeySet() const = 0;
    virtual Reference<Set> createKeySet() = 0;
    virtual Reference<const Collection> createValueCollection() const = 0;
    virtual Reference<Collection> createValueCollection() = 0;
    virtual bool equals(const Object& other) const = 0;
    /// @return the value of a key; null for an unknown key.
    virtual Reference<IQVUnknown> get(const IQVUnknown* key) const = 0;
    virtual int getSize() const = 0;
    virtual std::uint32_t hashCode() const = 0;
    /// Sets the value of a key. @return the old value; null for a new key.
    /// @throws UnsupportedOperationException where keys cannot be put.
    virtual Reference<IQVUnknown> put(IQVUnknown* key, IQVUnknown* value) = 0;
    /// Puts the entries of another map one by one.
    virtual void putAll(const Map& source) = 0;
    /// @return the value of the key taken out; null for an unknown key.
    virtual Reference<IQVUnknown> remove(const IQVUnknown* key) = 0;

    // Slot order ends here.

    /// True for a size of 0.
    bool isEmpty() const { return getSize() == 0; }

protected:
    ~Map() = default;
};

} // namespace qv::collections::qvcom
