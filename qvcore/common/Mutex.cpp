#include "qvcore/Locks.h"

#include "qvcore/common/Handle.h"
#include "qvcore/common/RecursiveMutex.h"

namespace {

using namespace qv;
using namespace qv::core;

class MutexObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::Mutex;

    explicit MutexObject(const char* name) : HandleObject(handleKind, name) {}

    bool isInUse() const noexcept { return mutex.isHeldByAny(); }

    RecursiveMutex mutex;
};

} // namespace

std::int32_t QVMutexCreate(const char* name, std::uint32_t, std::uint64_t* handle) noexcept {
    return createHandle<MutexObject>(handle, name);
}

std::int32_t QVMutexAcquire(std::uint64_t handle) noexcept {
    return withHandle<MutexObject>(handle, [](MutexObject& object) {
        object.mutex.acquire();
        return QV_S_OK;
    });
}

std::int32_t QVMutexTryAcquire(std::uint64_t handle) noexcept {
    return withHandle<MutexObject>(handle, [](MutexObject& object) {
        return object.mutex.tryAcquire() ? QV_S_OK : QV_E_TIMEOUT;
    });
}

std::int32_t QVMutexRelease(std::uint64_t handle) noexcept {
    return withHandle<MutexObject>(handle,
                                   [](MutexObject& object) { return object.mutex.release(); });
}

std::int32_t QVMutexDestroy(std::uint64_t handle) noexcept {
    return destroyHandle<MutexObject>(handle);
}
