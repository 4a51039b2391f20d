// A module that uses the library comes and goes, while the program itself uses the library.

#include "tests/lifecycle/UseLibrary.h"
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
    useLibrary("program");
    CHECK(!support::SharedModule::isLoaded(argv[1])); // nothing kept it
    std::puts("passed");
    return 0;
}
