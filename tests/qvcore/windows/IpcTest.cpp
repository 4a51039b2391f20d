#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/support/TestProcess.h"
#include "tests/support/UniqueName.h"

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace {

bool isKnownToTheSystem(std::uint32_t process) {
    const HANDLE opened = OpenProcess(SYNCHRONIZE, FALSE, process);
    if (opened != nullptr) {
        CloseHandle(opened);
    }
    return opened != nullptr;
}

} // namespace

TEST(WindowsIpcTest, FreesWhatAProcessHeldThatTheSystemHasForgotten) {
    const std::string name = support::uniqueName();
    std::uint64_t lock = 0;
    ASSERT_EQ(QVNamedSemOpen(name.c_str(), 1, &lock), 0);
    std::uint32_t process = 0;
    {
        support::TestProcess holder("semaphore", {name, "1"});
        EXPECT_EQ(holder.readLine(), "open");
        holder.write("w\n");
        EXPECT_EQ(holder.readLine(), "0");
        process = holder.id();
    }
    while (isKnownToTheSystem(process)) {
        Sleep(1); // others may look at a process for a while after its end
    }
    EXPECT_EQ(QVSemaphoreTryWait(lock), 0);
    EXPECT_EQ(QVNamedSemClose(lock), 0);
}
