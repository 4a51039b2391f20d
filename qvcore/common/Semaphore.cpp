#include "qvcore/Locks.h"

#include "qvcore/common/SemaphoreObject.h"

#include <condition_variable>
#include <mutex>

namespace {

using namespace qv;
using namespace qv::core;

class LocalSemaphore final : public SemaphoreObject {
public:
    LocalSemaphore(const char* name, std::uint32_t initial)
        : SemaphoreObject(name), count_(initial) {}

    std::int32_t wait() override {
        std::unique_lock lock(guard_);
        posted_.wait(lock, [this] { return count_ != 0; });
        --count_;
        return QV_S_OK;
    }

    std::int32_t tryWait() override {
        const std::lock_guard lock(guard_);
        if (count_ == 0) {
            return QV_E_TIMEOUT;
        }
        --count_;
        return QV_S_OK;
    }

    std::int32_t post() override {
        const std::lock_guard lock(guard_);
        if (count_ == greatestCount) {
            return QV_E_TOOMANYPOSTS;
        }
        ++count_;
        posted_.notify_one();
        return QV_S_OK;
    }

    std::int32_t getValue(std::int32_t& value) override {
        const std::lock_guard lock(guard_);
        value = static_cast<std::int32_t>(count_);
        return QV_S_OK;
    }

    bool isShared() const noexcept override { return false; }

private:
    std::mutex guard_;
    std::condition_variable posted_;
    std::uint32_t count_;
};

} // namespace

std::int32_t QVSemaphoreCreate(std::uint32_t initial, const char* name, std::uint32_t,
                               std::uint64_t* handle) noexcept {
    if (initial > greatestCount) {
        return QV_E_INVALIDARG;
    }
    return createHandle<LocalSemaphore>(handle, name, initial);
}

std::int32_t QVSemaphoreWait(std::uint64_t handle) noexcept {
    return withHandle<SemaphoreObject>(handle,
                                       [](SemaphoreObject& semaphore) { return semaphore.wait(); });
}

std::int32_t QVSemaphoreTryWait(std::uint64_t handle) noexcept {
    return withHandle<SemaphoreObject>(
        handle, [](SemaphoreObject& semaphore) { return semaphore.tryWait(); });
}

std::int32_t QVSemaphorePost(std::uint64_t handle) noexcept {
    return withHandle<SemaphoreObject>(handle,
                                       [](SemaphoreObject& semaphore) { return semaphore.post(); });
}

std::int32_t QVSemaphoreGetValue(std::uint64_t handle, std::int32_t* value) noexcept {
    return withHandle<SemaphoreObject>(handle, [value](SemaphoreObject& semaphore) {
        return value == nullptr ? QV_E_POINTER : semaphore.getValue(*value);
    });
}

std::int32_t QVSemaphoreDestroy(std::uint64_t handle) noexcept {
    const auto* semaphore = fromHandle<SemaphoreObject>(handle);
    if (semaphore == nullptr || semaphore->isShared()) {
        return QV_E_INVALIDHANDLE;
    }
    return destroyHandle<SemaphoreObject>(handle);
}
