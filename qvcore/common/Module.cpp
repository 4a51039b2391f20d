#include "qvcore/Module.h"

#include "qvcore/common/Guarded.h"
#include "qvcore/common/Immortal.h"

#include <mutex>
#include <set>

namespace {

/// The modules that are up. Never destroyed: the last module goes down when the process's static
/// objects do.
class RunningModules {
public:
    static RunningModules& instance() { return qv::core::immortal<RunningModules>(); }

    void set(std::uint64_t identity, bool isRunning) {
        const std::lock_guard lock(mutex_);
        if (isRunning) {
            identities_.insert(identity);
        } else {
            identities_.erase(identity);
        }
    }

    bool contains(std::uint64_t identity) {
        const std::lock_guard lock(mutex_);
        return identities_.contains(identity);
    }

private:
    std::mutex mutex_;
    std::set<std::uint64_t> identities_;
};

} // namespace

void QVModuleSetInitialized(std::uint64_t identity, std::int32_t initialized) noexcept {
    qv::core::guarded([=] {
        RunningModules::instance().set(identity, initialized != 0);
        return qv::QV_S_OK;
    });
}

std::int32_t QVModuleIsInitialized(std::uint64_t identity) noexcept {
    return qv::core::guarded([=] { return RunningModules::instance().contains(identity) ? 1 : 0; });
}
