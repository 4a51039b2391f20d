// A program that does not link the library loads it, finds it started, unloads it, and does so
// again.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

#include <cstdint>

namespace {

struct EncodingInfo {
    const char16_t* name;
    std::uint32_t codePage;
    std::int32_t reserved;
};
using GetInfo = std::int32_t(const char16_t* name, EncodingInfo* out);

} // namespace

int main(int, char** argv) {
    for (int load = 0; load < 3; ++load) {
        CHECK(!support::SharedModule::isLoaded(argv[1]));
        const support::SharedModule library(argv[1]);
        CHECK(library.isOpen());
        auto* const getInfo = library.find<GetInfo>("QVGetEncInfoByName");
        CHECK(getInfo != nullptr);
        EncodingInfo info{};
        CHECK(getInfo(u"latin1", &info) == 0); // the last thing that library start builds
        CHECK(info.codePage == 28591);
        void* const* const lock = library.find<void*>("g_pGlobalLock");
        CHECK(lock != nullptr && *lock != nullptr);
    }
    CHECK(!support::SharedModule::isLoaded(argv[1])); // nothing kept it
    std::puts("passed");
    return 0;
}
