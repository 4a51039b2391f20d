// A module brings the library into a program that does not know it, and takes it out again.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

int main(int, char** argv) {
    for (int load = 0; load < 3; ++load) {
        CHECK(!support::SharedModule::isLoaded(argv[1]));
        const support::SharedModule module(argv[1]);
        CHECK(module.isOpen());
        auto* const use = module.find<void()>("useFromModule");
        CHECK(use != nullptr);
        use();
    }
    CHECK(!support::SharedModule::isLoaded(argv[1])); // nothing kept it
    std::puts("passed");
    return 0;
}
