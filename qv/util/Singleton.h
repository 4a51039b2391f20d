#pragma once

#include "qv/GlobalLock.h"

#include <atomic>

namespace qv::util {

/// The one instance of `T`, made on first use under the lock behind `lockPointer`.
///
/// The members are defined in qv/util/SingletonImpl.h, for the one source that instantiates the
/// template: an instance made in two modules would not be one.
///
/// Before library start and after library end there is no lock and nothing is made: `getInstance`
/// then throws. Requires: `T` lets this class construct and destroy it.
///
/// Thread safety: internally locked; an existing instance is found without the lock.
template <class T, sync::LockObject** lockPointer>
class Singleton : public T {
public:
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    /// Borrows: the instance, until `freeInstance`.
    /// @throws IllegalStateException where the lock does not exist.
    static T* getInstance();

    /// Destroys the instance, if there is one.
    static void freeInstance();

private:
    Singleton() = default;
    ~Singleton() = default;

    static std::atomic<Singleton*> m_instance;
};

} // namespace qv::util
