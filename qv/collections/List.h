#pragma once

#include "qv/collections/Collection.h"
#include "qv/collections/qvcom/List.h"

namespace qv::collections {

/// The typed face of a list. An element that is no `T` throws CastFailedException where it is
/// handed out; null is a null Reference.
///
/// Thread safety: that of the wrapped list.
template <class T>
class QV_API_TEMPLATE List : public Collection<T> {
public:
    /// Owns: a reference on `list`.
    explicit List(qvcom::List* list) : Collection<T>(list), list_(list) {}

    using Collection<T>::add;
    using Collection<T>::addAll;
    using Collection<T>::remove;

    // Slot order is contract from here on.

    virtual bool add(int index, T* element) {
        return list_->add(index, detail::elementOf(element));
    }
    virtual bool addAll(int index, const Collection<T>& source) {
        return list_->addAll(index, *source.collection_);
    }
    virtual Reference<T> remove(int index) { return detail::castHeld<T>(list_->remove(index)); }
    virtual Reference<ListIterator<T>> createListIterator(int index) {
        return make<ListIterator<T>>(list_->createListIterator(index));
    }
    virtual Reference<ConstListIterator<T>> createConstListIterator(int index) const {
        return make<ConstListIterator<T>>(list_->createConstListIterator(index));
    }
    virtual Reference<const List> createSubList(int from, int to) const {
        return make<List>(list_->createSubList(from, to));
    }
    virtual Reference<List> createSubList(int from, int to) {
        return make<List>(list_->createSubList(from, to));
    }
    virtual Reference<T> get(int index) const { return detail::castHeld<T>(list_->get(index)); }
    virtual int indexOf(const T* element) const {
        return list_->indexOf(detail::elementOf(element));
    }
    virtual int lastIndexOf(const T* element) const {
        return list_->lastIndexOf(detail::elementOf(element));
    }
    virtual Reference<T> set(int index, T* element) {
        return detail::castHeld<T>(list_->set(index, detail::elementOf(element)));
    }

private:
    Reference<qvcom::List> list_;
};

QV_EXTERN_INSTANCE(List<String>);

} // namespace qv::collections
