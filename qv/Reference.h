#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

namespace qv {

/// Owning pointer to a counted object: the usual way to hold one, and the usual result of a
/// factory. It is one pointer, and may be null.
///
/// Thread safety: one thread at a time; the object's count is safe from any thread.
template <class T>
class Reference {
public:
    Reference() noexcept = default;
    Reference(std::nullptr_t) noexcept {}
    /// Takes a reference if `object` is not null.
    Reference(T* object) noexcept : object_(object) { addRef(); }
    Reference(const Reference& other) noexcept : Reference(other.object_) {}
    Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> Reference(const Reference<U>& other)
    noexcept : Reference(static_cast<T*>(other.get())) {}

    ~Reference() {
        if (object_ != nullptr) {
            object_->Release();
        }
    }

    /// Takes the new reference before the old one is released, so that assigning a holder to itself
    /// leaves the count as it was.
    Reference& operator=(const Reference& other) noexcept {
        Reference(other).swap(*this);
        return *this;
    }
    Reference& operator=(Reference&& other) noexcept {
        Reference(std::move(other)).swap(*this);
        return *this;
    }
    Reference& operator=(T* object) noexcept {
        Reference(object).swap(*this);
        return *this;
    }

    T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    operator T*() const noexcept { return object_; }

    void swap(Reference& other) noexcept { std::swap(object_, other.object_); }

    /// Holds an object whose reference the caller already has and gives up here: what an
    /// out-parameter of a component operation hands out, for one.
    static Reference adopt(T* object) noexcept {
        Reference holder;
        holder.object_ = object;
        return holder;
    }
    /// Gives the reference up to the caller, who owes the Release. @return the object.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

private:
    void addRef() noexcept {
        if (object_ != nullptr) {
            object_->AddRef();
        }
    }

    T* object_ = nullptr;
};

/// The holder in the value position of a container that copies its values: a copy is another
/// reference to the same object, never a clone.
template <class T>
class CopyReference : public Reference<T> {
public:
    using Reference<T>::Reference;
    using Reference<T>::operator=;
};

/// Makes an object on the heap and holds it.
template <class T, class... Arguments>
Reference<T> make(Arguments&&... arguments) {
    return Reference<T>(new T(std::forward<Arguments>(arguments)...));
}

} // namespace qv
