#pragma once

#include "qv/collections/Iterator.h"
#include "qv/collections/detail/ElementRange.h"
#include "qv/collections/qvcom/Collection.h"

namespace qv::collections {

template <class T>
class List;

/// The typed face of a collection: it wraps one collection of the interface face and hands out `T`.
///
/// Every operation is that of the wrapped collection, with its failures. Kept: `compareTo` and
/// `equals` hand their argument on as it stands; a wrapper is no collection of the interface face,
/// so two wrappers of one list do not compare equal.
///
/// `for (T& element : collection)` walks it, and throws CastFailedException at an element that is
/// null or no `T`. The collection must be held meanwhile: `for` does not hold what a call returns.
///
/// Thread safety: that of the wrapped collection.
template <class T>
class QV_API_TEMPLATE Collection : public Object {
public:
    /// Owns: a reference on `collection`.
    explicit Collection(qvcom::Collection* collection) : collection_(collection) {}

    int compareTo(const Object& other) const override { return collection_->compareTo(other); }
    bool equals(const Object& other) const override { return collection_->equals(other); }
    std::uint32_t hashCode() const override { return collection_->hashCode(); }

    // Slot order is contract from here on.

    virtual bool add(T* element) { return collection_->add(detail::elementOf(element)); }
    virtual bool contains(const T* element) const {
        return collection_->contains(detail::elementOf(element));
    }
    virtual bool remove(const T* element) {
        return collection_->remove(static_cast<const IQVUnknown*>(detail::elementOf(element)));
    }
    virtual bool addAll(const Collection& source) {
        return collection_->addAll(*source.collection_);
    }
    virtual void clear() { collection_->clear(); }
    virtual Reference<Iterator<T>> createIterator() {
        return make<Iterator<T>>(collection_->createIterator());
    }
    virtual Reference<ConstIterator<T>> createConstIterator() const {
        return make<ConstIterator<T>>(constCollection().createConstIterator());
    }
    virtual int getSize() const { return collection_->getSize(); }
    virtual bool isEmpty() const { return collection_->isEmpty(); }
    virtual bool removeAll(const Collection& other) {
        return collection_->removeAll(*other.collection_);
    }
    virtual bool retainAll(const Collection& other) {
        return collection_->retainAll(*other.collection_);
    }

    // Slot order ends here.

    detail::ElementWalk<T> begin() {
        return detail::ElementWalk<T>(constCollection().createConstIterator());
    }
    detail::ElementWalk<const T> begin() const {
        return detail::ElementWalk<const T>(constCollection().createConstIterator());
    }
    std::default_sentinel_t end() const noexcept { return {}; }

private:
    friend class List<T>;

    const qvcom::Collection& constCollection() const noexcept { return *collection_; }

    Reference<qvcom::Collection> collection_;
};

QV_EXTERN_INSTANCE(Collection<Integer32>);
QV_EXTERN_INSTANCE(Collection<String>);

} // namespace qv::collections
