#pragma once

#include "qv/ComObject.h"
#include "qv/Reference.h"

#include <type_traits>
#include <typeinfo>

/// The way between an object and the pointer by which it stands in a collection.
namespace qv::collections::detail {

[[noreturn]] QV_API void throwForeignElement();

/// An element as a `T`, if it is exactly that class and none derived from it; otherwise null.
template <class T>
T* exactElement(IQVUnknown* element) noexcept {
    if (element == nullptr || &typeid(*element) != &typeid(T)) {
        return nullptr;
    }
    return static_cast<T*>(dynamic_cast<void*>(element));
}

/// An element as a `T`; null stays null. @throws CastFailedException for an element that is no `T`.
template <class T>
T* castElement(IQVUnknown* element) {
    if (T* const known = exactElement<T>(element)) {
        return known;
    }
    T* const object = dynamic_cast<T*>(element);
    if (object == nullptr && element != nullptr) {
        throwForeignElement();
    }
    return object;
}

/// The same for a held element, whose reference goes over.
template <class T>
Reference<T> castHeld(Reference<IQVUnknown> element) {
    T* const object = castElement<T>(element);
    static_cast<void>(element.detach());
    return Reference<T>::adopt(object);
}

/// The pointer by which an object stands in a collection: that of its root.
template <class T>
IQVUnknown* elementOf(T* object) noexcept {
    return static_cast<ComObject*>(const_cast<std::remove_const_t<T>*>(object));
}

} // namespace qv::collections::detail
