#pragma once

#include <cstddef>
#include <new>

namespace qv::core {

/// The one `T` of the layer: made on first use and never destroyed, so that static and thread-local
/// objects of any module may use it to the end. It lies in the module's own storage and goes with
/// the module; what it holds by then is its users' to have given back.
template <class T>
T& immortal() {
    alignas(T) static std::byte storage[sizeof(T)];
    static T* const object = new (storage) T;
    return *object;
}

} // namespace qv::core
