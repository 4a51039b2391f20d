#include "qvcore/Module.h"

#include "qvcore/Locks.h"
#include "qvcore/Thread.h"
#include "tests/qvcore/Results.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"
#include "tests/support/posix/Forks.h"

#include <gtest/gtest.h>
#include <string>

using namespace support;

namespace {

/// What the functions around a fork did, in order.
std::string calls;

void beforeFirst() { calls += "b1 "; }
void afterFirst() { calls += "a1 "; }
void beforeSecond() { calls += "b2 "; }
void afterSecond() { calls += "a2 "; }

/// Runs in a process of its own: what is registered stays.
int checkForkHandlers(const std::vector<std::string>&) {
    if (QVModuleOnFork(beforeFirst, afterFirst) != 0 ||
        QVModuleOnFork(beforeSecond, afterSecond) != 0) {
        return 1;
    }
    const std::string expected = "b2 b1 a1 a2 ";
    if (inFork([&] { return calls == expected ? 0 : 1; }) != 0) {
        return 2;
    }
    if (calls != expected) {
        return 3;
    }
    calls.clear();
    // The same pair again is one registration, which is the latest now.
    QVModuleOnFork(beforeFirst, afterFirst);
    if (inFork([] { return calls == "b1 b2 a2 a1 " ? 0 : 1; }) != 0) {
        return 4;
    }
    calls.clear();
    QVModuleForgetFork(beforeFirst);
    QVModuleForgetFork(nullptr);
    if (inFork([] { return calls == "b2 a2 " ? 0 : 1; }) != 0) {
        return 5;
    }
    return 0;
}

const support::ChildRole forkRole("fork-handlers", checkForkHandlers);

} // namespace

TEST(PosixModuleTest, CallsTheFunctionsAroundAForkInBothProcesses) {
    EXPECT_EQ(TestProcess("fork-handlers", {}).wait(), 0);
}

TEST(PosixModuleTest, RefusesNullFunctions) {
    EXPECT_EQ(QVModuleOnFork(nullptr, afterFirst), invalidArgument);
    EXPECT_EQ(QVModuleOnFork(beforeFirst, nullptr), invalidArgument);
}

TEST(PosixModuleTest, HasNoCommandLine) { EXPECT_EQ(QVModuleGetCommandLine(), nullptr); }

TEST(PosixModuleTest, ShowsTheThreadIdOfTheSystem) {
    EXPECT_EQ(QVThreadGetID(), static_cast<std::uint32_t>(getpid()));
    EXPECT_EQ(
        inFork([] { return QVThreadGetID() == static_cast<std::uint32_t>(getpid()) ? 0 : 1; }), 0);
}

TEST(PosixModuleTest, LeavesAHeldMutexWithTheThreadThatForked) {
    std::uint64_t mutex = 0;
    ASSERT_EQ(QVMutexCreate(nullptr, 0, &mutex), 0);
    ASSERT_EQ(QVMutexAcquire(mutex), 0);
    EXPECT_EQ(inFork([mutex] { return QVMutexRelease(mutex) == 0 ? 0 : 1; }), 0);
    EXPECT_EQ(QVMutexRelease(mutex), 0);
    EXPECT_EQ(QVMutexDestroy(mutex), 0);
}
