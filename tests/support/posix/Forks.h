#pragma once

#include <csignal>
#include <cstdint>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

/// Runs `work` in a forked child. @return its result, which is the exit code, -1 if the child ended
/// otherwise.
template <typename Work>
int inFork(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// A forked child that works, tells the result and stays until it is killed.
class StayingFork {
public:
    template <typename Work>
    explicit StayingFork(Work work) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        child_ = fork();
        if (child_ == 0) {
            const std::int32_t result = work();
            const ssize_t written = write(ends[1], &result, sizeof result);
            while (written > 0) {
                pause();
            }
            _exit(1);
        }
        close(ends[1]);
        EXPECT_EQ(read(ends[0], &result_, sizeof result_), static_cast<ssize_t>(sizeof result_));
        close(ends[0]);
    }
    ~StayingFork() { kill(); }
    StayingFork(const StayingFork&) = delete;
    StayingFork& operator=(const StayingFork&) = delete;

    std::int32_t result() const { return result_; }
    void kill() {
        if (child_ != 0) {
            EXPECT_EQ(::kill(child_, SIGKILL), 0);
            waitpid(child_, nullptr, 0);
            child_ = 0;
        }
    }

private:
    pid_t child_ = 0;
    std::int32_t result_ = -1;
};

} // namespace support
