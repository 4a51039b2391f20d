#pragma once

#include <cerrno>
#include <poll.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace qv::core {

/// Repeats a system call that a signal interrupts.
template <typename Call>
auto restarted(Call call) noexcept {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Runs a read or a write, and waits for `event` where the descriptor does not block by itself.
template <typename Call>
ssize_t transfer(int descriptor, short event, Call call) noexcept {
    for (;;) {
        const ssize_t count = restarted(call);
        if (count != -1 || errno != EAGAIN) {
            return count;
        }
        pollfd ready = {descriptor, event, 0};
        restarted([&] { return poll(&ready, 1, -1); });
    }
}

/// Owns a file descriptor.
class Descriptor {
public:
    static constexpr int none = -1;

    explicit Descriptor(int value = none) noexcept : value_(value) {}
    ~Descriptor() {
        if (isOpen()) {
            close(value_);
        }
    }
    Descriptor(Descriptor&& other) noexcept : value_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }

    bool isOpen() const noexcept { return value_ != none; }
    int get() const noexcept { return value_; }
    int release() noexcept { return std::exchange(value_, none); }

private:
    int value_;
};

} // namespace qv::core
