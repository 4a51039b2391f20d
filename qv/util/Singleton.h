#pragma once

#include "qv/Exceptions.h"
#include "qv/GlobalLock.h"
#include "qv/sync/LockObject.h"
#include "qv/sync/ScopedLock.h"

#include <atomic>

namespace qv::util {

/// The one instance of `T`, made on first use under the lock behind `lockPointer`.
///
/// Before library start and after library end there is no lock and nothing is made: `getInstance` then
/// throws. Requires: `T` lets this class construct and destroy it.
///
/// Thread safety: internally locked; an existing instance is found without the lock.
template <class T, sync::LockObject** lockPointer> class Singleton : public T {
public:
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    /// Borrows: the instance, until `freeInstance`.
    /// @throws IllegalStateException where the lock does not exist.
    static T* getInstance() {
        if (Singleton* const instance = m_instance.load(std::memory_order_acquire)) {
            return instance;
        }
        if (*lockPointer == nullptr) {
            throw IllegalStateException();
        }
        const sync::ScopedLock lock(**lockPointer);
        if (m_instance.load(std::memory_order_relaxed) == nullptr) {
            m_instance.store(new Singleton, std::memory_order_release);
        }
        return m_instance.load(std::memory_order_relaxed);
    }

    /// Destroys the instance, if there is one.
    static void freeInstance() {
        if (m_instance.load(std::memory_order_acquire) == nullptr || *lockPointer == nullptr) {
            return;
        }
        const sync::ScopedLock lock(**lockPointer);
        delete m_instance.exchange(nullptr, std::memory_order_acq_rel);
    }

private:
    Singleton() = default;
    ~Singleton() = default;

    static std::atomic<Singleton*> m_instance;
};

template <class T, sync::LockObject** lockPointer>
constinit std::atomic<Singleton<T, lockPointer>*> Singleton<T, lockPointer>::m_instance{nullptr};

} // namespace qv::util
