// The library's own start and end, in a program that consists of the library's objects and so
// reaches what a module hides.

#include "face/Library.h"
#include "qv/ClassManager.h"
#include "qv/GlobalLock.h"
#include "qv/Results.h"
#include "qv/text/charset/CodecManager.h"
#include "qvcore/Module.h"
#include "tests/lifecycle/LoadNotification.h"
#include "tests/lifecycle/UseLibrary.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

using namespace qv::face;

namespace {

/// How many allocations by `new` there is memory for.
constexpr int unlimited = -1;
int allocationsLeft = unlimited;

/// What the platform layer was told of this module.
bool isAnnounced() { return QVModuleIsInitialized(identity()) == 1; }

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
        CHECK(notify(reason) == 1);
        CHECK(g_pGlobalLock == lock);
    }
    CHECK(endLibrary() == 0); // none of them has counted
    checkDown();
    for (const std::uint32_t reason : reasons) {
        CHECK(notify(reason) == 1);
        checkDown();
    }
}

void entryStartsAndEnds() {
    CHECK(isAnnounced());              // by the load notification
    CHECK(notify(ProcessDetach) == 1); // there is nothing to end
    checkDown();
    CHECK(!isAnnounced());
    CHECK(notify(ProcessAttach) == 1);
    CHECK(isUp());
    CHECK(isAnnounced());
    useLibrary("attached");
    CHECK(notify(ProcessDetach) == 1);
    checkDown();
    CHECK(!isAnnounced());
    CHECK(notify(ProcessAttach) == 1); // for the one at the end
    CHECK(isUp());
}

void await(const std::atomic<bool>& event) {
    while (!event) {
        std::this_thread::yield();
    }
}

void theProcessEndsThoughSomebodyWhoIsGoneHeldTheLock() {
    std::atomic<bool> isHeld = false;
    std::atomic<bool> isReleased = false;
    std::thread holder([&] {
        g_pGlobalLock->wait();
        isHeld = true;
        await(isReleased);
        g_pGlobalLock->signal();
    });
    await(isHeld);
    int processEnd = 0;
    CHECK(notify(ProcessDetach, &processEnd) == 1); // comes back, and has ended nothing
    CHECK(isUp());
    isReleased = true;
    holder.join();
    CHECK(notify(ProcessDetach, &processEnd) == 1);
    checkDown();
    CHECK(notify(ProcessDetach, &processEnd) == 1);
    checkDown();
    CHECK(notify(ProcessAttach) == 1);
}

/// Starts without memory for the allocation of that number. @return false if it was not needed.
bool startFailsAt(int allocation) {
    allocationsLeft = allocation;
    const std::int32_t result = startLibrary();
    allocationsLeft = unlimited;
    if (result == 0) {
        return false;
    }
    CHECK(result == qv::QV_E_OUTOFMEMORY);
    return true;
}

void failedStartKeepsItsCountAndWhatItReached() {
    CHECK(endLibrary() == 0);
    int allocation = 0;
    bool reachedTheLock = false;
    for (; startFailsAt(allocation); ++allocation) {
        CHECK(isUp() || !reachedTheLock); // what came up once comes up with more memory too
        reachedTheLock = isUp();
        CHECK(startLibrary() == 0); // counts, and tries nothing again
        CHECK(isUp() == reachedTheLock);
        CHECK(endLibrary() == 0);
        CHECK(isUp() == reachedTheLock);
        CHECK(endLibrary() == 0);
        checkDown();
        CHECK(endLibrary() == qv::QV_E_FAIL);
    }
    CHECK(reachedTheLock);
    CHECK(allocation > 100); // a record and its places in the maps for each class
    useLibrary("after-failures");
}

void entryTakesAFailedStart() {
    CHECK(notify(ProcessDetach) == 1);
    allocationsLeft = 50;
    CHECK(notify(ProcessAttach) == 1);
    allocationsLeft = unlimited;
    CHECK(isUp());
    CHECK(isAnnounced()); // whatever the start gave
    CHECK(notify(ProcessDetach) == 1);
    checkDown();
    CHECK(!isAnnounced());
    CHECK(notify(ProcessAttach) == 1);
    useLibrary("after-a-failed-start");
}

} // namespace

void* operator new(std::size_t size) {
    if (allocationsLeft == 0) {
        allocationsLeft = unlimited; // one fails
        throw std::bad_alloc();
    }
    allocationsLeft -= allocationsLeft > 0 ? 1 : 0;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

int main() {
    const Attachment attachment;
    CHECK(isUp());
    nestedStartsOnlyCount();
    lastEndTakesItDown();
    endOfWhatIsNotUpFails();
    failedEndsDoNotCount();
    otherReasonsDoNothing();
    entryStartsAndEnds();
    theProcessEndsThoughSomebodyWhoIsGoneHeldTheLock();
    failedStartKeepsItsCountAndWhatItReached();
    entryTakesAFailedStart();
    std::puts("passed");
    return 0;
}
