#pragma once

#include "qv/collections/qvcom/AbstractList.h"

#include <cstdint>

namespace qv::collections::qvcom {

/// A list of linked nodes: quick at both ends, and where a walk stands.
///
/// An index is reached from the first node, always forward, and nothing is remembered between two
/// calls. Walks keep the node that they reached: a step, and what they add, remove and set, costs
/// the same everywhere. A class derived from this one may answer for its elements in its own way,
/// and its walks go by index.
///
/// Thread safety: const-safe.
class QV_API LinkedList : public AbstractList {
    class Walk;

public:
    /// An empty list with the default comparator.
    LinkedList() = default;
    /// An empty list. Owns: a reference on `comparator`, which may be null where nothing is
    /// compared, here and below.
    explicit LinkedList(const IQVComparator* comparator);
    /// The elements of a collection, with the default comparator.
    explicit LinkedList(const Collection& source);
    LinkedList(const Collection& source, const IQVComparator* comparator);
    /// The same elements in nodes of its own, and the same comparator; changes are counted from 0.
    LinkedList(const LinkedList& other);
    ~LinkedList() override;

    using AbstractList::remove;

    /// Puts an element at the end.
    /// Kept: this is no counted change, and running walks see the element; `add(int, x)` is one.
    bool add(IQVUnknown* element) override;
    bool add(int index, IQVUnknown* element) override;
    /// Counts as one change.
    void clear() override;
    Reference<IQVUnknown> get(int index) const override;
    int getSize() const override;
    Reference<IQVUnknown> remove(int index) override;
    /// Counts as a change: walks of others end with it.
    Reference<IQVUnknown> set(int index, IQVUnknown* element) override;

protected:
    Reference<ListIterator> makeWalk(int index) override;

private:
    struct Node {
        Node* next = this;
        Node* previous = this;
        Reference<IQVUnknown> element;
    };

    /// The node `index` steps behind the first one; the sentinel behind the last.
    Node* internalGet(int index) const noexcept;
    /// Puts a new node in front of one. @throws std::bad_alloc, with the list as it was.
    Node* link(Node* before, IQVUnknown* element);
    Reference<IQVUnknown> unlink(Node* node) noexcept;
    static Reference<IQVUnknown> exchange(Node* node, IQVUnknown* element) noexcept;
    void releaseNodes() noexcept;

    Node head_; ///< the sentinel: the list is a ring, and begins behind it
    std::uint64_t size_ = 0;
    std::uint64_t removals_ = 0; ///< nodes that were taken out, ever
};

} // namespace qv::collections::qvcom
