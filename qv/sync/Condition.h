#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::sync {

/// A condition variable together with its mutex.
///
/// `acquire` and `release` take and give back the mutex, which is recursive. A thread that holds it
/// may wait: the wait gives the mutex up, whole, until a signal, and has it back when it returns or
/// throws. `signal` wakes one thread that waits at that moment, `broadcast` all of them; with
/// nobody waiting they leave nothing behind.
///
/// Thread safety: internally locked.
class QV_API Condition : public qv::Object {
public:
    class Holder;

    /// `name` labels the condition for diagnostics only and may be null.
    /// @throws ResultException with the platform's result.
    explicit Condition(const char* name = nullptr, std::uint32_t flags = 0);
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;
    /// Ignores a refusal of the platform, unlike the locks.
    ~Condition() noexcept override;

    // All of these throw ResultException with the platform's result.

    void acquire();
    /// @throws ResultException, QV_E_NOTOWNER from a thread that does not hold the mutex.
    void release();
    void signal();
    void broadcast();
    /// Requires: the calling thread holds the mutex.
    void wait();
    /// Waits at most `timeout` milliseconds; 0xFFFFFFFF waits for ever.
    /// Kept: a timeout is thrown, not returned as by Event and Gate.
    /// @throws ResultException, QV_E_TIMEOUT when the time ran out.
    void wait(std::uint32_t timeout);

private:
    std::uint64_t handle_ = 0;
};

/// Holds the mutex of a condition for the length of a scope.
///
/// Borrows: the condition. A release that fails in the destructor ends the process.
class Condition::Holder {
public:
    /// @throws ResultException with the platform's result.
    explicit Holder(Condition& condition) : condition_(condition) { condition_.acquire(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() { condition_.release(); }

private:
    Condition& condition_;
};

} // namespace qv::sync
