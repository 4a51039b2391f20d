#include "qv/ipc/SharedMemory.h"

#include "qv/Exceptions.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"
#include "tests/support/UniqueName.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace qv;

constexpr std::uint32_t blockSize = 16 << 20;

/// Lets the process grow by one and a half blocks: it may open one, which is one mapping, but not
/// attach it as well.
void limitAddressSpace() {
    unsigned long pages = 0;
    std::FILE* const status = std::fopen("/proc/self/statm", "r");
    if (status == nullptr || std::fscanf(status, "%lu", &pages) != 1) {
        return;
    }
    std::fclose(status);
    const rlim_t limit =
        pages * static_cast<unsigned long>(sysconf(_SC_PAGESIZE)) + blockSize / 2 * 3;
    const rlimit limits = {limit, limit};
    setrlimit(RLIMIT_AS, &limits);
}

/// Tells what became of an attempt to make a block for which there is no place.
const support::ChildRole crowded("ipc-no-place", [](const std::vector<std::string>& arguments) {
    limitAddressSpace();
    try {
        const ipc::SharedMemory memory(arguments.at(0).c_str(), blockSize);
        support::tell("attached");
    } catch (const ResultException& exception) {
        support::tell(exception.getDescription().getBytes(u"UTF-8"));
        support::tell(exception.getResult() == QV_E_OUTOFMEMORY ? "out of memory" : "other result");
    }
    support::hear();
    return 0;
});

/// How a mapping can be made to fail is known of this system only.
TEST(SharedMemoryTest, ClosesItsHandleWhereItCannotAttach) {
    const std::string name = support::uniqueName();
    support::TestProcess process("ipc-no-place", {name});
    EXPECT_EQ(process.readLine(), "Failed to attach shared memory");
    EXPECT_EQ(process.readLine(), "out of memory");

    const ipc::SharedMemory memory(name.c_str(), 100);
    EXPECT_THROW({ const ipc::SharedMemory large(name.c_str(), 1000000); }, ResultException)
        << "the large block is still there";
    process.write("\n");
    EXPECT_EQ(process.wait(), 0);
}

} // namespace
