#include "qv/collections/qvcom/LinkedList.h"

#include "qv/collections/qvcom/AbstractListIterator.h"
#include "qv/collections/qvcom/detail/Rules.h"

#include <memory>
#include <typeinfo>
#include <utility>

namespace qv::collections::qvcom {

/// A walk that keeps the node at its place: valid for its index while the list counts no change
/// that is not its own, since appending leaves all nodes where they are.
class LinkedList::Walk : public AbstractListIterator {
public:
    Walk(LinkedList& list, int index)
        : AbstractListIterator(list, index), list_(list), node_(list.internalGet(index)),
          index_(index), removals_(list.removals_) {}

protected:
    Reference<IQVUnknown> getAt(int index) override { return nodeOf(index)->element; }
    Reference<IQVUnknown> removeAt(int index) override {
        Node* const node = nodeOf(index);
        Node* const next = node->next;
        Reference<IQVUnknown> element = list_.unlink(node);
        detail::countChange(list_.modCount_);
        keep(next, index);
        return element;
    }
    bool addAt(int index, IQVUnknown* element) override {
        detail::checkPlaceIndex(index, list_.getSize());
        keep(list_.link(placeOf(index), element), index);
        detail::countChange(list_.modCount_);
        return true;
    }
    Reference<IQVUnknown> setAt(int index, IQVUnknown* element) override {
        Node* const node = nodeOf(index);
        detail::countChange(list_.modCount_);
        return exchange(node, element);
    }

private:
    Node* nodeOf(int index) {
        detail::checkElementIndex(index, list_.getSize());
        return placeOf(index);
    }

    /// The node at an index, or the sentinel behind the last: from the node that is kept, one step
    /// away as a rule.
    Node* placeOf(int index) {
        if (removals_ != list_.removals_) { // the counter of changes has gone all the way round
            keep(list_.internalGet(index), index);
        }
        if (node_ == &list_.head_) { // the end, which appending moves on
            index_ = list_.getSize();
        }
        for (; index_ < index; ++index_) {
            node_ = node_->next;
        }
        for (; index_ > index; --index_) {
            node_ = node_->previous;
        }
        return node_;
    }

    void keep(Node* node, int index) noexcept {
        node_ = node;
        index_ = index;
        removals_ = list_.removals_;
    }

    LinkedList& list_;
    Node* node_;
    int index_;
    std::uint64_t removals_;
};

LinkedList::LinkedList(const IQVComparator* comparator) : AbstractList(comparator) {}

// By way of another constructor, so that the nodes made until then end where an addition fails.

LinkedList::LinkedList(const Collection& source) : LinkedList() { addAll(source); }

LinkedList::LinkedList(const Collection& source, const IQVComparator* comparator)
    : LinkedList(comparator) {
    addAll(source);
}

LinkedList::LinkedList(const LinkedList& other) : LinkedList(other.comparator_.get()) {
    addAll(other);
}

LinkedList::~LinkedList() { releaseNodes(); }

bool LinkedList::add(IQVUnknown* element) {
    // Kept: not counted; callers append during a walk.
    link(&head_, element);
    return true;
}

bool LinkedList::add(int index, IQVUnknown* element) {
    detail::checkPlaceIndex(index, getSize());
    link(internalGet(index), element);
    detail::countChange(modCount_);
    return true;
}

void LinkedList::clear() {
    detail::countChange(modCount_);
    releaseNodes();
}

Reference<IQVUnknown> LinkedList::get(int index) const {
    detail::checkElementIndex(index, getSize());
    return internalGet(index)->element;
}

int LinkedList::getSize() const { return static_cast<int>(size_); }

Reference<IQVUnknown> LinkedList::remove(int index) {
    detail::checkElementIndex(index, getSize());
    detail::countChange(modCount_);
    return unlink(internalGet(index));
}

Reference<IQVUnknown> LinkedList::set(int index, IQVUnknown* element) {
    detail::checkElementIndex(index, getSize());
    detail::countChange(modCount_);
    return exchange(internalGet(index), element);
}

Reference<ListIterator> LinkedList::makeWalk(int index) {
    if (typeid(*this) != typeid(LinkedList)) {
        return AbstractList::makeWalk(index);
    }
    return Reference<ListIterator>(new Walk(*this, index));
}

LinkedList::Node* LinkedList::internalGet(int index) const noexcept {
    Node* node = head_.next;
    for (int i = 0; i < index; ++i) {
        node = node->next;
    }
    return node;
}

LinkedList::Node* LinkedList::link(Node* before, IQVUnknown* element) {
    auto* const node = new Node{before, before->previous, Reference<IQVUnknown>(element)};
    before->previous->next = node;
    before->previous = node;
    ++size_;
    return node;
}

Reference<IQVUnknown> LinkedList::unlink(Node* node) noexcept {
    const std::unique_ptr<Node> owner(node);
    node->previous->next = node->next;
    node->next->previous = node->previous;
    --size_;
    ++removals_;
    return std::move(node->element);
}

Reference<IQVUnknown> LinkedList::exchange(Node* node, IQVUnknown* element) noexcept {
    Reference<IQVUnknown> old(element);
    old.swap(node->element);
    return old;
}

void LinkedList::releaseNodes() noexcept {
    Node* node = std::exchange(head_.next, &head_);
    head_.previous = &head_;
    removals_ += std::exchange(size_, 0);
    // The list is in order by now: an element that ends may use it.
    while (node != &head_) {
        const std::unique_ptr<Node> owner(node);
        node = node->next;
    }
}

} // namespace qv::collections::qvcom
