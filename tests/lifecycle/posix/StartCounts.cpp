// The library's own start and end, in a program that consists of the library's objects and so
// reaches what a module hides. Its load notification has run when main begins, and runs again at
// the exit.

#include "face/Library.h"
#include "qv/ClassManager.h"
#include "qv/GlobalLock.h"
#include "qv/Results.h"
#include "qv/text/charset/CodecManager.h"
#include "tests/lifecycle/UseLibrary.h"

using namespace qv::face;

namespace {

bool isUp() { return g_pGlobalLock != nullptr; }

/// Nothing of the library's managers is left, and nothing makes them again.
void checkDown() {
    CHECK(!isUp());
    try {
        qv::ClassManager::getInstance();
        CHECK(false);
    } catch (const qv::IllegalStateException&) {
    }
    try {
        qv::text::charset::CodecManager::getInstance();
        CHECK(false);
    } catch (const qv::IllegalStateException&) {
    }
}

void nestedStartsOnlyCount() {
    const auto* const lock = g_pGlobalLock;
    const auto* const manager = qv::ClassManager::getInstance();
    CHECK(startLibrary() == 0);
    CHECK(startLibrary() == 0);
    CHECK(g_pGlobalLock == lock);
    CHECK(qv::ClassManager::getInstance() == manager);
    CHECK(endLibrary() == 0);
    CHECK(endLibrary() == 0);
    CHECK(g_pGlobalLock == lock);
    CHECK(qv::ClassManager::getInstance() == manager);
    useLibrary("nested");
}

void lastEndTakesItDown() {
    CHECK(endLibrary() == 0);
    checkDown();
}

void endOfWhatIsNotUpFails() {
    CHECK(endLibrary() == qv::QV_E_FAIL);
    CHECK(endLibrary() == qv::QV_E_FAIL);
    checkDown();
}

void failedEndsDoNotCount() {
    CHECK(startLibrary() == 0);
    CHECK(isUp());
    useLibrary("again");
}

void otherReasonsDoNothing() {
    constexpr std::uint32_t reasons[] = {2, 3, 4, 0xFFFFFFFF}; // threads that come and go, and none
    for (const std::uint32_t reason : reasons) {
        const auto* const lock = g_pGlobalLock;
        CHECK(entry(nullptr, reason, nullptr) == 1);
        CHECK(g_pGlobalLock == lock);
    }
    CHECK(endLibrary() == 0); // none of them has counted
    checkDown();
    for (const std::uint32_t reason : reasons) {
        CHECK(entry(nullptr, reason, nullptr) == 1);
        checkDown();
    }
}

void entryStartsAndEnds() {
    CHECK(entry(nullptr, ProcessDetach, nullptr) == 1); // there is nothing to end
    checkDown();
    CHECK(entry(nullptr, ProcessAttach, nullptr) == 1);
    CHECK(isUp());
    useLibrary("attached");
    CHECK(entry(nullptr, ProcessDetach, nullptr) == 1);
    checkDown();
    CHECK(entry(nullptr, ProcessAttach, nullptr) == 1); // for the notification at the exit
    CHECK(isUp());
}

} // namespace

int main() {
    CHECK(isUp());
    nestedStartsOnlyCount();
    lastEndTakesItDown();
    endOfWhatIsNotUpFails();
    failedEndsDoNotCount();
    otherReasonsDoNothing();
    entryStartsAndEnds();
    std::puts("passed");
    return 0;
}
