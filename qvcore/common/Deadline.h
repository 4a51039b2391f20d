#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace qv::core {

/// The end of a wait on the monotonic clock.
class Deadline {
public:
    static constexpr std::uint32_t forever = 0xFFFFFFFF;

    /// In `timeout` milliseconds from now, or never.
    explicit Deadline(std::uint32_t timeout)
        : isNever_(timeout == forever),
          end_(isNever_ ? Clock::time_point() : Clock::now() + std::chrono::milliseconds(timeout)) {
    }

    /// Waits until `isDone`, which is asked under the lock.
    /// @return false if the time ran out first.
    template <typename Condition>
    bool wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
              Condition isDone) const {
        if (isNever_) {
            changed.wait(lock, isDone);
            return true;
        }
        return changed.wait_until(lock, end_, isDone);
    }

private:
    using Clock = std::chrono::steady_clock;

    bool isNever_;
    Clock::time_point end_;
};

} // namespace qv::core
