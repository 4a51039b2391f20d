// What becomes of a shared block as a file and as a mapping, which can be seen on this system.

#include "qv/ipc/SharedMemory.h"

#include "tests/support/UniqueName.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>

namespace {

using namespace qv;

/// The line of this process's map that tells where an address lies; empty if nothing is mapped
/// there.
std::string mappingAt(const void* address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::istringstream(line) >> std::hex >> begin >> dash >> end;
        const auto place = reinterpret_cast<std::uintptr_t>(address);
        if (begin <= place && place < end) {
            return line;
        }
    }
    return "";
}

/// The file that the mapping at an address shows.
std::string fileAt(const void* address) {
    const std::string mapping = mappingAt(address);
    const std::size_t path = mapping.find('/');
    return path == std::string::npos ? "" : mapping.substr(path);
}

unsigned int permissionsOf(const std::string& file) {
    struct stat status = {};
    EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
    return status.st_mode & 0777u;
}

TEST(SharedMemoryTest, GivesSizeFlagsAndModeInThisOrder) {
    const mode_t mask = umask(0);
    const ipc::SharedMemory open(support::uniqueName().c_str(), 20000, 0, 0640);
    const ipc::SharedMemory usual(support::uniqueName().c_str(), 20000);
    umask(mask);
    EXPECT_EQ(permissionsOf(fileAt(open.get())), 0640u);
    EXPECT_EQ(permissionsOf(fileAt(usual.get())), 0600u);
    EXPECT_NE(mappingAt(static_cast<const char*>(open.get()) + 19999), "");
}

TEST(SharedMemoryTest, IsMappedForReadingAndWritingAsLongAsItLives) {
    const void* address = nullptr;
    std::string file;
    {
        const ipc::SharedMemory memory(support::uniqueName().c_str(), 10000);
        address = memory.get();
        file = fileAt(address);
        EXPECT_NE(mappingAt(address).find(" rw-s "), std::string::npos);
        EXPECT_NE(file, "");
    }
    EXPECT_NE(fileAt(address), file);
    struct stat status = {};
    EXPECT_NE(stat(file.c_str(), &status), 0) << "the block is gone";
}

} // namespace
