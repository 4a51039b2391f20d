// Loading the library makes the runtime locale of the process that of its user. The test sets
// LC_ALL, which decides that where the system asks the environment.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

#include <clocale>
#include <string>

int main(int, char** argv) {
    CHECK(std::string(std::setlocale(LC_ALL, nullptr)) == "C");
    const support::SharedModule library(argv[1]);
    CHECK(library.isOpen());
    const std::string loaded = std::setlocale(LC_ALL, nullptr);
    CHECK(loaded != "C");
    CHECK(loaded == std::setlocale(LC_ALL, ""));
    std::puts("passed");
    return 0;
}
