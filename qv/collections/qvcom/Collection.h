#pragma once

#include "qv/Object.h"
#include "qv/collections/qvcom/Iterator.h"

namespace qv::collections::qvcom {

/// A bag of objects, as other modules see it.
///
/// Elements are never copied: storing one takes a counted reference, dropping it gives that
/// reference back. Null is an element like any other. Which elements are equal is the affair of the
/// collection's comparator.
///
/// A collection lives on the heap, held by a Reference: its walks and views hold it too.
///
/// Thread safety: one thread at a time.
class QV_API Collection : public IQVUnknown {
public:
    /// @return whether the collection changed.
    /// @throws UnsupportedOperationException where elements cannot be added.
    virtual bool add(IQVUnknown* element) = 0;
    /// Adds the elements of another collection one by one. @return whether this one changed.
    /// @throws as `add`; what was added until then stays.
    virtual bool addAll(const Collection& source) = 0;
    virtual void clear() = 0;
    /// @throws CastFailedException for an object of another kind, where a class has an order.
    virtual int compareTo(const Object& other) const = 0;
    /// True if an element is equal to `element`, which may be null.
    /// @throws ResultException with what the comparator returned, as all that compare.
    virtual bool contains(const IQVUnknown* element) const = 0;
    virtual bool containsAll(const Collection& other) const = 0;
    virtual Reference<Iterator> createIterator() = 0;
    virtual Reference<ConstIterator> createConstIterator() const = 0;
    virtual bool equals(const Object& other) const = 0;
    virtual int getSize() const = 0;
    virtual std::uint32_t hashCode() const = 0;
    /// Removes the first element that is equal to `element`. @return whether there was one.
    virtual bool remove(const IQVUnknown* element) = 0;
    /// Removes one equal element for each element of another collection.
    /// @return whether this one changed.
    virtual bool removeAll(const Collection& other) = 0;
    /// Removes what another collection does not contain. @return whether this one changed.
    virtual bool retainAll(const Collection& other) = 0;

    // Slot order ends here.

    /// True for a size of 0.
    bool isEmpty() const { return getSize() == 0; }

protected:
    ~Collection() = default;
};

} // namespace qv::collections::qvcom
