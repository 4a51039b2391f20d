#pragma once

#include "qv/qvcom/InterfaceMap.h"

#include <atomic>

namespace qv {

namespace qvcom {
class Module;
}

/// Root of all classes: counting and interface lookup.
///
/// Life of a counted object: it is made with count 0; the first AddRef, normally by a Reference,
/// makes it 1; the Release that reaches 0 deletes it. Whoever makes an object on the heap owes it
/// that first AddRef. An object on the stack or held by value is never counted and must not be
/// given to anything that releases it to 0.
///
/// An object may belong to a module. SetComModule is called before the first AddRef, or the
/// module's lock count goes down without ever having gone up.
///
/// Thread safety: AddRef, Release and QueryInterface are internally locked; the rest is one thread
/// at a time.
class QV_API ComObject : public IQVUnknown {
public:
    ComObject() noexcept = default;
    /// The count and the module belong to the object, never to its value.
    ComObject(const ComObject&) noexcept : ComObject() {}
    ComObject& operator=(const ComObject&) noexcept { return *this; }

    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() const noexcept override {
        const std::uint32_t count = InternalAddRef();
        if (count == 1 && module_ != nullptr) {
            lockModule();
        }
        return count;
    }
    std::uint32_t Release() const noexcept override {
        const std::uint32_t count = InternalRelease();
        if (count == 0) {
            end();
        }
        return count;
    }
    /// May throw: the platform may refuse to end what a class holds, a held lock for one.
    virtual ~ComObject() noexcept(false) {}

    /// Gives the last reference back, as Release does, but without a locked operation.
    /// Requires: the count is 1, and no other thread can take a reference meanwhile.
    void ReleaseLast() const noexcept { end(); }

    /// A snapshot that may be stale when it returns.
    std::uint32_t GetRefCount() const noexcept { return count_.load(std::memory_order_acquire); }
    /// Calls QueryInterface: there is no separate inner unknown.
    std::int32_t NonDelegatingQueryInterface(const GUID& iid, void** out) noexcept;
    /// Borrows: the module, which must outlive the object.
    void SetComModule(qvcom::Module* module) noexcept { module_ = module; }
    /// Always QV_E_NOAGGREGATION, and changes nothing: no object can be aggregated.
    std::int32_t SetOuterUnknown(IQVUnknown* outer) noexcept;
    static const qvcom::InterfaceData* GetComIntfMap() noexcept;

protected:
    /// Count without touching the module or the object's life: for code that holds an object up
    /// while it is made or torn down. @return the new count.
    std::uint32_t InternalAddRef() const noexcept {
        return count_.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    std::uint32_t InternalRelease() const noexcept {
        return count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    /// The first reference of an object that nobody else has seen yet and that has no module.
    void holdFirst() noexcept { count_.store(1, std::memory_order_relaxed); }

private:
    void lockModule() const noexcept;
    /// Unlocks the module and deletes the object.
    void end() const noexcept;

    mutable std::atomic<std::uint32_t> count_{0};
    qvcom::Module* module_ = nullptr;
};

} // namespace qv
