#include "tests/support/ChildRole.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <map>

namespace support {

namespace {

std::map<std::string, ChildRole::Work>& roles() {
    static std::map<std::string, ChildRole::Work> map;
    return map;
}

std::string program;

} // namespace

ChildRole::ChildRole(const char* name, Work work) { roles()[name] = std::move(work); }

bool ChildRole::run(int argc, char** argv, int& exitCode) {
    program = argv[0];
    if (argc < 3 || std::string(argv[1]) != "--child") {
        return false;
    }
    const auto role = roles().find(argv[2]);
    if (role == roles().end()) {
        std::fprintf(stderr, "no role %s\n", argv[2]);
        exitCode = 127;
    } else {
        exitCode = role->second(std::vector<std::string>(argv + 3, argv + argc));
    }
    return true;
}

const std::string& programPath() { return program; }

} // namespace support

int main(int argc, char** argv) {
    int exitCode = 0;
    if (support::ChildRole::run(argc, argv, exitCode)) {
        return exitCode;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
