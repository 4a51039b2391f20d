// When the library tells the platform layer that it is up, in a program that consists of the
// library's objects and stands in for the platform layer's own operation.

#include "face/Library.h"
#include "qv/GlobalLock.h"
#include "qvcore/Module.h"
#include "tests/lifecycle/Check.h"

#include <cstdio>

using namespace qv::face;

namespace {

constinit int announcements = 0;
constinit int withdrawals = 0;

} // namespace

void QVModuleSetInitialized(std::uint64_t module, std::int32_t initialized) noexcept {
    CHECK(module == identity());
    CHECK(g_pGlobalLock != nullptr); // behind the start, in front of the end
    ++(initialized == 1 ? announcements : withdrawals);
}

int main() {
    CHECK(announcements == 1 && withdrawals == 0); // by the load notification
    CHECK(entry(nullptr, ProcessDetach, nullptr) == 1);
    CHECK(announcements == 1 && withdrawals == 1);
    CHECK(entry(nullptr, ProcessAttach, nullptr) == 1);
    CHECK(announcements == 2 && withdrawals == 1);
    std::puts("passed");
    return 0;
}
