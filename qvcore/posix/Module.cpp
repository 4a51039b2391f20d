#include "qvcore/Module.h"

#include "qvcore/common/Guarded.h"
#include "qvcore/common/Immortal.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <pthread.h>
#include <vector>

namespace {

using namespace qv;

/// The functions around a fork. The system's own list would end an entry with this module, whoever
/// made it; so this list has one entry there. Never destroyed.
///
/// The list is locked from before the fork until after it, in both processes. A module that goes
/// waits here under the loader's lock, so nothing is called under the list's that takes that one.
///
/// Thread safety: internally locked.
class ForkHandlers {
public:
    static ForkHandlers& instance() { return core::immortal<ForkHandlers>(); }

    void add(void (*before)(), void (*after)()) {
        install();
        const std::lock_guard lock(mutex_);
        entries_.reserve(entries_.size() + 1);
        erase(before);
        entries_.push_back({before, after});
    }

    void remove(void (*before)()) {
        const std::lock_guard lock(mutex_);
        erase(before);
        entries_.shrink_to_fit();
    }

private:
    struct Entry {
        void (*before)();
        void (*after)();
    };

    /// Once, and not under the list's lock: a fork takes that one behind the system's own.
    static void install() {
        static const bool isInstalled = [] {
            const int error =
                pthread_atfork([] { instance().runBefore(); }, [] { instance().runAfter(); },
                               [] { instance().runAfter(); });
            if (error != 0) {
                throw std::bad_alloc(); // the one failure there is
            }
            return true;
        }();
        static_cast<void>(isInstalled);
    }

    void erase(void (*before)()) {
        std::erase_if(entries_, [=](const Entry& entry) { return entry.before == before; });
    }

    void runBefore() {
        mutex_.lock();
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
    std::vector<Entry> entries_;
};

} // namespace

std::int32_t QVModuleOnFork(void (*before)(void), void (*after)(void)) noexcept {
    if (before == nullptr || after == nullptr) {
        return QV_E_INVALIDARG;
    }
    return core::guarded([=] {
        ForkHandlers::instance().add(before, after);
        return QV_S_OK;
    });
}

void QVModuleForgetFork(void (*before)(void)) noexcept {
    core::guarded([=] {
        ForkHandlers::instance().remove(before);
        return QV_S_OK;
    });
}

const char16_t* QVModuleGetCommandLine() noexcept { return nullptr; }
