#pragma once

#include "qvcore/common/Guarded.h"

#include <cstdint>
#include <string>

/// Objects behind the 64-bit handles of the flat interface.
namespace qv::core {

enum class HandleKind : std::uint32_t {
    Mutex = 0x51564D58,
    RWLock = 0x51565257,
    Event = 0x51564556,
    Gate = 0x51564754,
    Semaphore = 0x51565345,
    Condition = 0x5156434F,
    SharedMemory = 0x5156534D,
};

/// The head of every such object. The kind is looked at before the object is used, so that a handle
/// of another family is refused.
class HandleObject {
public:
    HandleObject(const HandleObject&) = delete;
    HandleObject& operator=(const HandleObject&) = delete;

    HandleKind kind() const noexcept { return kind_; }

protected:
    HandleObject(HandleKind kind, const char* name) : kind_(kind), name_(name ? name : "") {}
    ~HandleObject() = default;

private:
    const HandleKind kind_;
    /// The label, for whoever looks at the object in a debugger or a dump.
    std::string name_;
};

/// The object behind a handle; null if it is not one of type `T`.
template <typename T>
T* fromHandle(std::uint64_t handle) noexcept {
    // A handle is an address: 0 is none, and an odd one was never given out.
    if (handle == 0 || handle % alignof(T) != 0) {
        return nullptr;
    }
    auto* object = reinterpret_cast<HandleObject*>(static_cast<std::uintptr_t>(handle));
    return object->kind() == T::handleKind ? static_cast<T*>(object) : nullptr;
}

template <typename T>
std::uint64_t toHandle(T* object) noexcept {
    return reinterpret_cast<std::uintptr_t>(static_cast<HandleObject*>(object));
}

/// Makes an object and gives its handle, which owns it.
template <typename T, typename... Arguments>
std::int32_t createHandle(std::uint64_t* handle, Arguments... arguments) noexcept {
    if (handle == nullptr) {
        return QV_E_POINTER;
    }
    return guarded([&] {
        *handle = toHandle(new T(arguments...));
        return QV_S_OK;
    });
}

/// Runs `body` on the object behind a handle.
template <typename T, typename Body>
std::int32_t withHandle(std::uint64_t handle, Body body) noexcept {
    T* object = fromHandle<T>(handle);
    if (object == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    return guarded([&] { return body(*object); });
}

/// Ends the object behind a handle, unless it is in use.
template <typename T>
std::int32_t destroyHandle(std::uint64_t handle) noexcept {
    T* object = fromHandle<T>(handle);
    if (object == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    if (object->isInUse()) {
        return QV_E_BUSY;
    }
    delete object;
    return QV_S_OK;
}

} // namespace qv::core
