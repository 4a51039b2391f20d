// Loading the library makes the runtime locale of the process that of its user. The test sets LC_ALL.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

#include <clocale>
#include <string>

int main(int, char** argv) {
    CHECK(std::string(std::setlocale(LC_ALL, nullptr)) == "C");
    const support::SharedModule library(argv[1]);
    CHECK(library.isOpen());
    const char* const wanted = std::getenv("LC_ALL");
    CHECK(wanted != nullptr && std::string(wanted) != "C");
    CHECK(std::string(std::setlocale(LC_ALL, nullptr)) == wanted);
    std::puts("passed");
    return 0;
}
