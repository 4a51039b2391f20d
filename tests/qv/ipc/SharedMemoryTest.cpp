#include "qv/ipc/SharedMemory.h"

#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"
#include "tests/support/Throws.h"
#include "tests/support/UniqueName.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using namespace qv;
using support::uniqueName;

constexpr std::uint32_t blockSize = 10000;

/// Tells what stands in the block and writes something of its own.
const support::ChildRole peer("ipc-shared-memory", [](const std::vector<std::string>& arguments) {
    const ipc::SharedMemory memory(arguments.at(0).c_str(), blockSize);
    char* const text = static_cast<char*>(memory.get());
    support::tell(text);
    std::strcpy(text, "from the child");
    support::tell("written");
    support::hear();
    return 0;
});

TEST(SharedMemoryTest, IsZeroedAndWritable) {
    const ipc::SharedMemory memory(uniqueName().c_str(), blockSize, 0, 0);
    char* const bytes = static_cast<char*>(memory.get());
    ASSERT_NE(bytes, nullptr);
    EXPECT_TRUE(std::all_of(bytes, bytes + blockSize, [](char byte) { return byte == 0; }));
    std::memset(bytes, 'x', blockSize);
    EXPECT_EQ(bytes[blockSize - 1], 'x');
}

TEST(SharedMemoryTest, StandsForItsAddress) {
    const ipc::SharedMemory memory(uniqueName().c_str(), blockSize);
    void* const address = memory;
    EXPECT_EQ(address, memory.get());
}

TEST(SharedMemoryTest, IsOneBlockUnderOneName) {
    const std::string name = uniqueName();
    const ipc::SharedMemory first(name.c_str(), blockSize);
    const ipc::SharedMemory second(name.c_str(), blockSize);
    const ipc::SharedMemory other(uniqueName().c_str(), blockSize);
    std::strcpy(static_cast<char*>(first.get()), "seen");
    EXPECT_STREQ(static_cast<const char*>(second.get()), "seen");
    EXPECT_STREQ(static_cast<const char*>(other.get()), "");
}

TEST(SharedMemoryTest, IsGoneWithItsLastHandle) {
    const std::string name = uniqueName();
    {
        const ipc::SharedMemory first(name.c_str(), blockSize);
        std::strcpy(static_cast<char*>(first.get()), "old");
    }
    const ipc::SharedMemory second(name.c_str(), blockSize);
    EXPECT_STREQ(static_cast<const char*>(second.get()), "");
}

TEST(SharedMemoryTest, RaisesAFailureToOpen) {
    const std::string name = uniqueName();
    const ipc::SharedMemory small(name.c_str(), 100);
    const auto open = [&] { const ipc::SharedMemory large(name.c_str(), 1000000); };
    EXPECT_EQ(support::thrownResult(open), QV_E_INVALIDARG);
    EXPECT_EQ(support::thrownText<ResultException>(open), "Failed to open shared memory.");
    EXPECT_EQ(support::thrownText<ResultException>([] { const ipc::SharedMemory none("", 100); }),
              "Failed to open shared memory.");
}

TEST(SharedMemoryTest, NeedsANameAndForANewBlockASize) {
    for (const auto& open : {+[] { const ipc::SharedMemory none(nullptr, 100); },
                             +[] { const ipc::SharedMemory none("", 100); },
                             +[] { const ipc::SharedMemory none(uniqueName().c_str(), 0); }}) {
        EXPECT_EQ(support::thrownResult(open), QV_E_INVALIDARG);
    }
    const std::string name = uniqueName();
    const ipc::SharedMemory first(name.c_str(), blockSize);
    const ipc::SharedMemory second(name.c_str(), 0);
    std::strcpy(static_cast<char*>(first.get()), "whatever its size");
    EXPECT_STREQ(static_cast<const char*>(second.get()), "whatever its size");
}

TEST(SharedMemoryTest, IsSharedByProcesses) {
    const std::string name = uniqueName();
    const ipc::SharedMemory memory(name.c_str(), blockSize);
    char* const text = static_cast<char*>(memory.get());
    std::strcpy(text, "from the parent");
    support::TestProcess process("ipc-shared-memory", {name});
    ASSERT_TRUE(process.isStarted());
    EXPECT_EQ(process.readLine(), "from the parent");
    EXPECT_EQ(process.readLine(), "written");
    EXPECT_STREQ(text, "from the child");
    process.write("\n");
    EXPECT_EQ(process.wait(), 0);
}

TEST(SharedMemoryTest, OutlivesTheProcessThatMadeIt) {
    const std::string name = uniqueName();
    support::TestProcess process("ipc-shared-memory", {name});
    EXPECT_EQ(process.readLine(), "");
    EXPECT_EQ(process.readLine(), "written");
    const ipc::SharedMemory memory(name.c_str(), blockSize);
    process.write("\n");
    EXPECT_EQ(process.wait(), 0);
    EXPECT_STREQ(static_cast<const char*>(memory.get()), "from the child");
}

} // namespace
