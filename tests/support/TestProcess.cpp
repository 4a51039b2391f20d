#include "tests/support/TestProcess.h"

#include <cstdio>
#include <iostream>

namespace support {

void tell(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string hear() {
    std::string line;
    std::getline(std::cin, line);
    while (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

} // namespace support
