#pragma once

#include <typeinfo>

namespace qv::detail {

/// `object` as a `Class`, if it is exactly that class and none derived from it; otherwise null.
/// What is known exactly is reached without the detour through its virtual table. Requires: an
/// object.
template <class Class, class Base>
Class* exactly(Base* object) noexcept {
    Base& known = *object; // through a pointer, typeid would look for null
    return &typeid(known) == &typeid(Class) ? static_cast<Class*>(object) : nullptr;
}

} // namespace qv::detail
