#include "qvcore/Module.h"

#include "qvcore/NativeResult.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/Immortal.h"

#include <algorithm>
#include <dlfcn.h>
#include <mutex>
#include <pthread.h>
#include <string>
#include <vector>

namespace {

using namespace qv;

/// Where a module lies and what it is called; empty when the address lies in none.
struct ModuleIdentity {
    const void* base = nullptr;
    std::string path;

    static ModuleIdentity of(void (*function)()) {
        Dl_info info = {};
        if (dladdr(reinterpret_cast<void*>(function), &info) == 0) {
            return {};
        }
        return {info.dli_fbase, info.dli_fname};
    }
    bool operator==(const ModuleIdentity&) const = default;
};

/// The functions around a fork. The system's own list ends an entry with the module that made it,
/// which would always be this one; so this list has one entry there, and knows from each function's
/// address whether its module is still loaded. Never destroyed.
///
/// The list is locked from before the fork until after it, in both processes.
///
/// Thread safety: internally locked.
class ForkHandlers {
public:
    static ForkHandlers& instance() { return core::immortal<ForkHandlers>(); }

    std::int32_t add(void (*before)(), void (*after)()) {
        const std::lock_guard lock(mutex_);
        if (!isInstalled_) {
            const int error =
                pthread_atfork([] { instance().runBefore(); }, [] { instance().runAfter(); },
                               [] { instance().runAfter(); });
            if (error != 0) {
                return QVResultFromNative(static_cast<std::uint32_t>(error));
            }
            isInstalled_ = true;
        }
        std::erase_if(entries_, [=](const Entry& entry) {
            // A module that came back to its old place may stand in the list from its earlier life.
            return !entry.isLoaded() || (entry.before == before && entry.after == after);
        });
        entries_.push_back({before, after, ModuleIdentity::of(before)});
        return QV_S_OK;
    }

    void remove(void (*before)()) {
        const std::lock_guard lock(mutex_);
        std::erase_if(entries_, [=](const Entry& entry) { return entry.before == before; });
        entries_.shrink_to_fit();
    }

private:
    struct Entry {
        void (*before)();
        void (*after)();
        ModuleIdentity module;

        bool isLoaded() const { return ModuleIdentity::of(before) == module; }
    };

    void runBefore() {
        mutex_.lock();
        std::erase_if(entries_, [](const Entry& entry) { return !entry.isLoaded(); });
        std::for_each(entries_.rbegin(), entries_.rend(),
                      [](const Entry& entry) { entry.before(); });
    }

    void runAfter() {
        for (const Entry& entry : entries_) {
            entry.after();
        }
        mutex_.unlock();
    }

    std::mutex mutex_;
    bool isInstalled_ = false;
    std::vector<Entry> entries_;
};

} // namespace

std::int32_t QVModuleOnFork(void (*before)(void), void (*after)(void)) noexcept {
    if (before == nullptr || after == nullptr) {
        return QV_E_INVALIDARG;
    }
    return core::guarded([=] { return ForkHandlers::instance().add(before, after); });
}

void QVModuleForgetFork(void (*before)(void)) noexcept {
    core::guarded([=] {
        ForkHandlers::instance().remove(before);
        return QV_S_OK;
    });
}

const char16_t* QVModuleGetCommandLine() noexcept { return nullptr; }
