#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/support/TestProcess.h"
#include "tests/support/UniqueName.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <windows.h>

namespace {

bool isKnownToTheSystem(std::uint32_t process) {
    const HANDLE opened = OpenProcess(SYNCHRONIZE, FALSE, process);
    if (opened != nullptr) {
        CloseHandle(opened);
    }
    return opened != nullptr;
}

/// What the system lets be done with the memory at the address.
DWORD protectionOf(const void* address) {
    MEMORY_BASIC_INFORMATION information = {};
    EXPECT_NE(VirtualQuery(address, &information, sizeof information), 0u);
    return information.Protect;
}

} // namespace

TEST(WindowsIpcTest, MapsABlockForNoMoreThanItsAccessSays) {
    constexpr std::uint32_t readAccess = 0x80000000u;
    constexpr std::uint32_t writeAccess = 0x40000000u;
    std::uint64_t block = 0;
    ASSERT_EQ(QVSharedMemOpen(support::uniqueName().c_str(), 0, 0, 10, &block), 0);
    for (const auto& [access, protection] :
         {std::pair<std::uint32_t, DWORD>{readAccess, PAGE_READONLY},
          {writeAccess, PAGE_READWRITE},
          {readAccess | writeAccess, PAGE_READWRITE}}) {
        void* address = nullptr;
        ASSERT_EQ(QVSharedMemAttach(block, access, &address), 0);
        EXPECT_EQ(protectionOf(address), protection) << access;
        EXPECT_EQ(QVSharedMemDetach(address), 0);
    }
    EXPECT_EQ(QVSharedMemClose(block), 0);
}

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
