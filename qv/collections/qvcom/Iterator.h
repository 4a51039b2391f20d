#pragma once

#include "qv/IQVUnknown.h"
#include "qv/Reference.h"

/// The interfaces of walks through a collection.
///
/// A walk stands between two elements. It keeps what it walks alive, and fails with an Exception
/// where it finds that its source was changed other than through it. Classes inherit these
/// interfaces virtually, so that a list iterator is one iterator.
///
/// Thread safety: one thread at a time.
namespace qv::collections::qvcom {

/// A walk that only looks.
class QV_API ConstIterator : public IQVUnknown {
public:
    /// True if an element stands behind the walk's place. Never fails.
    virtual bool hasNext() const = 0;
    /// Passes an element. @return it, which may be null.
    /// @throws Exception at the end or where the source was changed; lists RangeErrorException at
    /// the end.
    virtual Reference<IQVUnknown> next() = 0;

protected:
    ~ConstIterator() = default;
};

/// A walk that can take out what it passed.
class QV_API Iterator : public virtual ConstIterator {
public:
    /// Removes the element passed last.
    /// @throws IllegalStateException where there is none, or it is gone already.
    /// @throws Exception where the source was changed.
    virtual void remove() = 0;

protected:
    ~Iterator() = default;
};

/// A walk through a list, in both directions.
class QV_API ConstListIterator : public virtual ConstIterator {
public:
    virtual bool hasPrevious() const = 0;
    /// Passes the element in front of the walk's place. @return it, which may be null.
    /// @throws as `next`.
    virtual Reference<IQVUnknown> previous() = 0;
    /// The index of the element that `next` would give; the size at the end.
    virtual int nextIndex() const = 0;
    /// The index of the element that `previous` would give; -1 at the start.
    virtual int previousIndex() const = 0;

protected:
    ~ConstListIterator() = default;
};

/// A walk through a list that can change it.
class QV_API ListIterator : public virtual Iterator, public virtual ConstListIterator {
public:
    /// Puts an element at the walk's place, and passes it. There is nothing to remove or set then.
    /// @return whether the list took it.
    /// @throws Exception where the list was changed.
    virtual bool add(IQVUnknown* element) = 0;
    /// Puts an element in place of the one passed last.
    /// @throws as `remove`.
    virtual void set(IQVUnknown* element) = 0;

protected:
    ~ListIterator() = default;
};

} // namespace qv::collections::qvcom
