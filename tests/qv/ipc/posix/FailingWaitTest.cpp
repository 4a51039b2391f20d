// A wait that the platform refuses: a child process finds no place among those that use the
// semaphore. How to bring that about without hundreds of processes is known of this system only.

#include "qv/ipc/SemaphoreR.h"

#include "qv/Exceptions.h"
#include "qvcore/common/ProcessTable.h"
#include "tests/support/UniqueName.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace qv;
using core::ProcessEntry;
using core::SharedHead;

/// The only shared block that this process has mapped, or null.
SharedHead* theSharedBlock() {
    SharedHead* found = nullptr;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("/dev/shm/qv-") != std::string::npos) {
            std::uintptr_t address = 0;
            std::istringstream(line) >> std::hex >> address;
            found = found == nullptr ? reinterpret_cast<SharedHead*>(address) : nullptr;
        }
    }
    return found;
}

/// Takes every free place in the name of a process that runs, and frees them at the end.
class FullTable {
public:
    explicit FullTable(SharedHead& block) {
        const core::ProcessIdentity owner = block.processes.begin()->identity();
        for (ProcessEntry& entry : block.processes) {
            if (entry.isFree()) {
                entry.take(owner);
                taken_.push_back(&entry);
            }
        }
    }
    ~FullTable() {
        for (ProcessEntry* entry : taken_) {
            entry->free();
        }
    }
    FullTable(const FullTable&) = delete;
    FullTable& operator=(const FullTable&) = delete;

private:
    std::vector<ProcessEntry*> taken_;
};

template <class Work>
std::int32_t resultOf(Work work) {
    try {
        work();
        return QV_S_OK;
    } catch (const ResultException& exception) {
        return exception.getResult();
    }
}

TEST(SemaphoreRTest, AFailedWaitGivesTheGuardBackAndMakesNoOwner) {
    const Reference<sync::Mutex> guard = make<sync::Mutex>();
    ipc::SemaphoreR semaphore(support::uniqueName().c_str(), 2, guard);
    SharedHead* const block = theSharedBlock();
    ASSERT_NE(block, nullptr);
    pid_t child = 0;
    {
        const FullTable table(*block);
        child = fork();
        if (child == 0) {
            bool isRight = resultOf([&] { semaphore.wait(); }) == QV_E_TOOMANYFILES;
            isRight = isRight && resultOf([&] { guard->signal(); }) == QV_E_NOTOWNER;
            isRight = isRight && !semaphore.tryWait();
            isRight = isRight && resultOf([&] { semaphore.signal(); }) == QV_S_OK;
            _exit(isRight ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(semaphore.getValue(), 2) << "the child was no owner: its signal did nothing";
    semaphore.wait();
    semaphore.signal();
}

} // namespace
