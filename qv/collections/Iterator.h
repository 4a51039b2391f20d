#pragma once

#include "qv/Integers.h"
#include "qv/String.h"
#include "qv/collections/detail/Elements.h"
#include "qv/collections/qvcom/Iterator.h"

/// The typed walks: each wraps one walk of the interface face and gives its elements as `T`.
///
/// An element that is no `T` throws CastFailedException; null is a null Reference.
///
/// Thread safety: one thread at a time.
namespace qv::collections {

/// A walk that only looks.
template <class T>
class QV_API_TEMPLATE ConstIterator : public Object {
public:
    /// Owns: a reference on `iterator`.
    explicit ConstIterator(qvcom::ConstIterator* iterator) : iterator_(iterator) {}

    bool hasNext() const { return iterator_->hasNext(); }
    Reference<T> next() { return detail::castHeld<T>(iterator_->next()); }

protected:
    /// The wrapped walk by another of its interfaces: classes inherit these virtually.
    template <class Interface>
    Interface& as() const {
        return dynamic_cast<Interface&>(*iterator_);
    }

private:
    Reference<qvcom::ConstIterator> iterator_;
};

/// A walk that can take out what it passed.
template <class T>
class QV_API_TEMPLATE Iterator : public ConstIterator<T> {
public:
    explicit Iterator(qvcom::Iterator* iterator) : ConstIterator<T>(iterator) {}

    void remove() { this->template as<qvcom::Iterator>().remove(); }
};

/// A walk through a list, in both directions.
template <class T>
class QV_API_TEMPLATE ConstListIterator : public ConstIterator<T> {
public:
    explicit ConstListIterator(qvcom::ConstListIterator* iterator) : ConstIterator<T>(iterator) {}

    bool hasPrevious() const { return inner().hasPrevious(); }
    Reference<T> previous() { return detail::castHeld<T>(inner().previous()); }
    int nextIndex() const { return inner().nextIndex(); }
    int previousIndex() const { return inner().previousIndex(); }

private:
    qvcom::ConstListIterator& inner() const {
        return this->template as<qvcom::ConstListIterator>();
    }
};

/// A walk through a list that can change it.
template <class T>
class QV_API_TEMPLATE ListIterator : public ConstListIterator<T> {
public:
    /// Owns: a reference on `iterator`.
    explicit ListIterator(qvcom::ListIterator* iterator)
        : ConstListIterator<T>(iterator), listIterator_(iterator) {}

    void remove() { listIterator_->remove(); }
    bool add(T* element) { return listIterator_->add(detail::elementOf(element)); }
    void set(T* element) { listIterator_->set(detail::elementOf(element)); }

private:
    Reference<qvcom::ListIterator> listIterator_;
};

QV_EXTERN_INSTANCE(ConstIterator<Integer32>);
QV_EXTERN_INSTANCE(ConstIterator<String>);
QV_EXTERN_INSTANCE(Iterator<Integer32>);
QV_EXTERN_INSTANCE(Iterator<String>);
QV_EXTERN_INSTANCE(ConstListIterator<String>);
QV_EXTERN_INSTANCE(ListIterator<String>);

} // namespace qv::collections
