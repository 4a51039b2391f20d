// A process may be given the number of one that has ended, and even of one that it descends from:
// then it finds handles of its own number that are not its own.

#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"
#include "tests/support/posix/Forks.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using support::inFork;
using support::StayingFork;
using support::timedOut;

namespace {

/// Makes the system look for the next process's number from there on. @return false if it is the
/// system's alone to say.
bool setNextNumber(pid_t number) {
    std::ofstream file("/proc/sys/kernel/ns_last_pid");
    file << number - 1 << std::flush;
    return file.good();
}

/// Runs `work` in a forked child of that number. Other processes may snatch the number away, so it
/// is tried for a while. @return the exit code, -1 if the number could not be had.
int inForkOfNumber(pid_t number, const std::function<int()>& work) {
    constexpr int otherNumber = 99;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        setNextNumber(number);
        const int result = inFork([&] { return getpid() == number ? work() : otherNumber; });
        if (result != otherNumber) {
            return result;
        }
    }
    return -1;
}

/// A lock that a child opened, which has ended, and whose own child still has the handle.
class AncestorsLock {
public:
    explicit AncestorsLock(const std::string& name) {
        EXPECT_EQ(pipe(orders_), 0);
        EXPECT_EQ(pipe(answers_), 0);
        EXPECT_EQ(inFork([&] {
                      std::uint64_t lock = 0;
                      const bool isOpen = QVNamedSemOpen(name.c_str(), 1, &lock) == 0;
                      const pid_t ancestor = getpid();
                      if (fork() == 0) {
                          closeInNamesake(lock, ancestor);
                      }
                      return isOpen ? 0 : 1;
                  }),
                  0);
    }
    ~AncestorsLock() {
        for (const int end : {orders_[0], orders_[1], answers_[0], answers_[1]}) {
            close(end);
        }
    }
    AncestorsLock(const AncestorsLock&) = delete;
    AncestorsLock& operator=(const AncestorsLock&) = delete;

    /// Has the handle closed by a grandchild that has the number of the one that opened it.
    /// @return the result of the close, negative if there was no such grandchild.
    int closeByNamesake() {
        std::int8_t answer = -1;
        EXPECT_EQ(write(orders_[1], "", 1), 1);
        EXPECT_EQ(read(answers_[0], &answer, 1), 1);
        return answer;
    }

private:
    [[noreturn]] void closeInNamesake(std::uint64_t lock, pid_t ancestor) {
        char order = 0;
        const bool isOrdered = read(orders_[0], &order, 1) == 1;
        usleep(20'000); // starts are told by the hundredth of a second
        const auto answer = static_cast<std::int8_t>(
            inForkOfNumber(ancestor, [lock] { return QVNamedSemClose(lock) == 0 ? 0 : 1; }));
        _exit(isOrdered && write(answers_[1], &answer, 1) == 1 ? 0 : 1);
    }

    int orders_[2] = {};
    int answers_[2] = {};
};

} // namespace

TEST(ReusedProcessNumberTest, DescendantTouchesNothingOfItsNamesakes) {
    if (!setNextNumber(getpid())) {
        GTEST_SKIP() << "the system does not let this user choose process numbers";
    }
    const std::string name = "qvcore-namesake-test-" + std::to_string(getpid());
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    AncestorsLock inherited(name);
    // The look for a holder that has ended finds the ancestor and frees its place in the table.
    ASSERT_EQ(QVSemaphoreWait(lock), 0);
    ASSERT_EQ(QVSemaphoreTryWait(lock), timedOut);
    ASSERT_EQ(QVSemaphorePost(lock), 0);
    const StayingFork holder([&name] { // it gets that place
        std::uint64_t own = 0;
        return QVNamedSemOpen(name.c_str(), 1, &own) == 0 ? QVSemaphoreWait(own) : -1;
    });
    ASSERT_EQ(holder.result(), 0);
    ASSERT_EQ(inherited.closeByNamesake(), 0);
    EXPECT_EQ(QVSemaphoreTryWait(lock), timedOut) << "the holder still runs";
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}
