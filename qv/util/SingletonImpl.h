#pragma once

#include "qv/Exceptions.h"
#include "qv/sync/LockObject.h"
#include "qv/sync/ScopedLock.h"
#include "qv/util/Singleton.h"

namespace qv::util {

template <class T, sync::LockObject** lockPointer>
constinit std::atomic<Singleton<T, lockPointer>*> Singleton<T, lockPointer>::m_instance{nullptr};

template <class T, sync::LockObject** lockPointer>
T* Singleton<T, lockPointer>::getInstance() {
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

template <class T, sync::LockObject** lockPointer>
void Singleton<T, lockPointer>::freeInstance() {
    if (m_instance.load(std::memory_order_acquire) == nullptr || *lockPointer == nullptr) {
        return;
    }
    const sync::ScopedLock lock(**lockPointer);
    delete m_instance.exchange(nullptr, std::memory_order_acq_rel);
}

} // namespace qv::util
