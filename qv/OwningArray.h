#pragma once

#include <utility>

namespace qv {

/// Holds an array made by `new[]` and frees it at its end. May be null.
template <class T>
class OwningArray {
public:
    OwningArray() noexcept = default;
    /// Owns: `array`.
    explicit OwningArray(T* array) noexcept : array_(array) {}
    OwningArray(OwningArray&& other) noexcept : array_(other.detach()) {}
    OwningArray& operator=(OwningArray&& other) noexcept {
        delete[] std::exchange(array_, other.detach());
        return *this;
    }
    ~OwningArray() { delete[] array_; }

    T* get() const noexcept { return array_; }
    operator T*() const noexcept { return array_; }
    /// Gives the array to the caller.
    [[nodiscard]] T* detach() noexcept { return std::exchange(array_, nullptr); }

private:
    T* array_ = nullptr;
};

} // namespace qv
