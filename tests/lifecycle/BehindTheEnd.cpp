// A static object that is older than the library is destroyed behind the library's end. Strings
// still work there; what needs the class manager either still works, as where modules end last, or
// says that the library is down.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

namespace {

using Probe = int();
Probe* probe = nullptr;

struct Elder {
    ~Elder() {
        const int answer = probe();
        CHECK(answer == 0 || answer == 1);
        std::puts("passed");
    }
};

const Elder elder;

} // namespace

int main(int, char** argv) {
    support::SharedModule module(argv[1]);
    CHECK(module.isOpen());
    probe = module.find<Probe>("probeLibrary");
    CHECK(probe != nullptr);
    CHECK(probe() == 0);
    module.leaveOpen();
    return 0;
}
