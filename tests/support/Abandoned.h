#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace support {

/// An object whose end is watched and whose memory stays, together with what its destructor had to
/// leave behind: nothing is reported as leaked. One for each type and number.
template <class T, int = 0>
class Abandoned {
public:
    template <class... Arguments>
    explicit Abandoned(Arguments&&... arguments)
        : object_(new (storage) T(std::forward<Arguments>(arguments)...)) {}

    T* operator->() const { return object_; }
    void end() { object_->~T(); }

private:
    alignas(T) static inline std::byte storage[sizeof(T)];
    T* object_;
};

} // namespace support
