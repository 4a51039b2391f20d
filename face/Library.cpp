#include "face/Library.h"

#include "face/ClassTable.h"
#include "face/EncodingTable.h"
#include "qv/ClassManager.h"
#include "qv/ErrorRule.h"
#include "qv/sync/Mutex.h"
#include "qv/text/charset/CodecManager.h"
#include "qvcore/Module.h"

#include <clocale>
#include <utility>

constinit qv::sync::LockObject* g_pGlobalLock = nullptr;

namespace qv::face {

namespace {

constinit int useCount = 0;
[[maybe_unused]] constinit void* moduleInstance = nullptr;

/// A fork waits for whoever holds the lock, so that the child never inherits it from a thread that
/// it does not have. Behind library end there is no lock, and nothing to wait for.
void lockForFork() {
    if (g_pGlobalLock != nullptr) {
        g_pGlobalLock->wait();
    }
}
void unlockAfterFork() {
    if (g_pGlobalLock != nullptr) {
        g_pGlobalLock->signal();
    }
}

void registerClasses() {
    ClassManagerBase* const manager = ClassManager::getInstance();
    for (const ClassRow* row = classTable; row->type != nullptr; ++row) {
        manager->registerClass(row->name, row->type, row->factory);
    }
}

void registerCodecs() {
    auto* const manager = text::charset::CodecManager::getInstance();
    for (const CodecRow* row = codecTable; row->name != nullptr; ++row) {
        manager->registerCodec(row->name, row->encoderClass, row->decoderClass);
    }
}

} // namespace

std::int32_t startLibrary() noexcept {
    if (++useCount != 1) {
        return QV_S_OK;
    }
    std::setlocale(LC_ALL, "");
    return toResult([] {
        g_pGlobalLock = new sync::Mutex("QVCL::g_pGlobalLock");
        throwIfFailed(QVModuleOnFork(&lockForFork, &unlockAfterFork));
        registerClasses();
        registerCodecs();
        buildEncodingNames();
    });
}

std::int32_t endLibrary() noexcept {
    if (useCount < 1) {
        return QV_E_FAIL;
    }
    if (--useCount != 0) {
        return QV_S_OK;
    }
    return toResult([] {
        freeEncodingNames();
        text::charset::CodecManager::freeInstance();
        ClassManager::freeInstance();
        QVModuleForgetFork(&lockForFork);
        delete std::exchange(g_pGlobalLock, nullptr);
    });
}

namespace {

/// False where the end would wait for ever: when a process ends, the system has ended all other
/// threads by then, and one may have held the lock. What is left then goes with the process.
bool mayEnd(bool isProcessEnding) noexcept {
    if (!isProcessEnding || g_pGlobalLock == nullptr) {
        return true;
    }
    bool isFree = false;
    static_cast<void>(toResult([&isFree] {
        isFree = static_cast<sync::Mutex*>(g_pGlobalLock)->tryWait();
        if (isFree) {
            g_pGlobalLock->signal();
        }
    }));
    return isFree;
}

} // namespace

std::uint64_t identity() noexcept { return reinterpret_cast<std::uintptr_t>(&entry); }

int entry(void* instance, std::uint32_t reason, void* reserved) noexcept {
    if (reason == ProcessAttach) {
        moduleInstance = instance;
        static_cast<void>(startLibrary());
        QVModuleSetInitialized(identity(), 1);
    } else if (reason == ProcessDetach) {
        QVModuleSetInitialized(identity(), 0);
        if (mayEnd(reserved != nullptr)) {
            static_cast<void>(endLibrary());
        }
    }
    return 1;
}

} // namespace qv::face
