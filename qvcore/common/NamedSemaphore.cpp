#include "qvcore/Ipc.h"

#include "qvcore/common/NameDigest.h"
#include "qvcore/common/SemaphoreObject.h"
#include "qvcore/common/SharedOpen.h"

#include <algorithm>
#include <memory>

namespace qv::core {

namespace {

/// The state of a semaphore, in memory that processes share.
///
/// A process may be killed at any instruction. What changes a count and what its holder owes is
/// told to the journal first: who takes the guard next finds it open and carries the change out.
/// All other changes are single stores.
struct SemaphoreBlock {
    /// A change of the count together with an entry's debt, by the values that they shall have.
    struct Journal {
        std::atomic<std::uint32_t> isOpen;
        std::atomic<std::uint32_t> count;
        std::atomic<std::uint32_t> held;
        std::atomic<std::uint32_t> entry;
    };

    SharedHead head;
    /// 1 if it was made with the count 1: then it is a lock, and what a process holds is written
    /// down.
    std::uint32_t isLock;
    std::atomic<std::uint32_t> count;
    Journal journal;
    SharedGuard::Storage guard;

    /// Carries out what the journal says, if it is open.
    void replay() noexcept {
        if (journal.isOpen.load() != 0) {
            count.store(journal.count.load());
            (head.processes.begin() + journal.entry.load())->held.store(journal.held.load());
            journal.isOpen.store(0);
        }
    }

    void change(ProcessEntry& entry, std::uint32_t newCount, std::uint32_t newHeld) noexcept {
        journal.count.store(newCount);
        journal.held.store(newHeld);
        journal.entry.store(static_cast<std::uint32_t>(&entry - head.processes.begin()));
        journal.isOpen.store(1);
        replay();
    }

    /// The entry's debt goes back to the count.
    void giveBack(ProcessEntry& entry) noexcept {
        const std::uint32_t held = entry.held.load();
        if (held != 0) {
            change(entry, std::min(count.load() + held, greatestCount), 0);
        }
    }

    /// Takes back what processes that ended still held.
    void reclaim() noexcept {
        for (ProcessEntry& entry : head.processes) {
            if (!entry.isFree() && !entry.isRunning()) {
                giveBack(entry);
                entry.free();
            }
        }
    }
};

/// A handle of a semaphore that processes share.
///
/// Its waiters sleep in short slices, and look between them for holders that have ended: nobody
/// else would wake them.
class NamedSemaphore final : public SemaphoreObject {
public:
    NamedSemaphore() : SemaphoreObject(nullptr) {}

    ~NamedSemaphore() override {
        if (owner_ == currentProcess()) {
            leave();
        }
    }

    std::int32_t open(const std::string& name, std::uint32_t value) {
        return openSharedBlock(memory_, name, sizeof(SemaphoreBlock), 0600,
                               [&] { return enter(name, value); });
    }

    std::int32_t wait() override {
        for (;;) {
            std::uint32_t mark = 0;
            const std::int32_t result = tryWait(mark);
            if (result != QV_E_TIMEOUT) {
                return result;
            }
            guard_.wait(mark, slice);
        }
    }

    std::int32_t tryWait() override {
        std::uint32_t mark = 0;
        return tryWait(mark);
    }

    std::int32_t post() override {
        return underGuard([this](SemaphoreBlock& block, ProcessEntry& own) {
            const std::uint32_t count = block.count.load();
            if (count == greatestCount) {
                return QV_E_TOOMANYPOSTS;
            }
            const std::uint32_t held = own.held.load();
            block.change(own, count + 1, held == 0 ? 0 : held - 1);
            guard_.announce();
            return QV_S_OK;
        });
    }

    std::int32_t getValue(std::int32_t& value) override {
        return underGuard([&value](SemaphoreBlock& block, ProcessEntry&) {
            if (block.isLock != 0) {
                block.reclaim();
            }
            value = static_cast<std::int32_t>(block.count.load());
            return QV_S_OK;
        });
    }

    bool isShared() const noexcept override { return true; }

private:
    /// Milliseconds between two looks for holders that have ended.
    static constexpr std::uint32_t slice = 50;

    /// Makes the process one of those that use the block, which is set up if it is new.
    std::int32_t enter(const std::string& name, std::uint32_t value) {
        block_ = static_cast<SemaphoreBlock*>(memory_.address());
        const std::int32_t result = guard_.open(block_->guard, name, memory_.isNew());
        if (result < 0) {
            return result;
        }
        if (memory_.isNew()) {
            block_->isLock = value == 1;
            block_->count.store(value);
            block_->head.magic.store(SharedHead::expectedMagic);
        }
        return underGuard([](SemaphoreBlock&, ProcessEntry&) { return QV_S_OK; });
    }

    /// Takes one from the count. If there is none, `mark` is where to wait from.
    std::int32_t tryWait(std::uint32_t& mark) {
        return underGuard([&](SemaphoreBlock& block, ProcessEntry& own) {
            if (block.count.load() == 0) {
                block.reclaim();
            }
            const std::uint32_t count = block.count.load();
            if (count == 0) {
                mark = guard_.mark();
                return QV_E_TIMEOUT;
            }
            block.change(own, count - 1, own.held.load() + block.isLock);
            if (count > 1) {
                // One announcement may have stood for several posts.
                guard_.announce();
            }
            return QV_S_OK;
        });
    }

    /// Runs `body` under the guard with the calling process's entry.
    template <typename Body>
    std::int32_t underGuard(Body body) {
        const std::int32_t result = guard_.lock();
        if (result < 0) {
            return result;
        }
        block_->replay();
        ProcessEntry* own = ownEntry();
        const std::int32_t done = own == nullptr ? QV_E_TOOMANYFILES : body(*block_, *own);
        guard_.unlock();
        return done;
    }

    /// A process gets its entry when the handle is opened, or after a fork when the child first
    /// uses the handle that it inherited. Null if there is no room for another process.
    ProcessEntry* ownEntry() noexcept {
        const ProcessIdentity self = currentProcess();
        if (owner_ == self) {
            return entry_;
        }
        ProcessEntry* entry = block_->head.processes.findOrTake(self);
        if (entry == nullptr) {
            block_->reclaim();
            entry = block_->head.processes.findOrTake(self);
        }
        if (entry != nullptr) {
            ++entry->handles;
            entry_ = entry;
            owner_ = self;
        }
        return entry;
    }

    /// Ends the process's part with its last handle, and the semaphore with the last process.
    void leave() noexcept {
        if (!lockAll()) {
            return;
        }
        block_->replay();
        if (--entry_->handles == 0) {
            block_->giveBack(*entry_);
            entry_->free();
            guard_.announce();
        }
        if (!block_->head.processes.isUsed()) {
            memory_.discard();
        }
        memory_.unlock();
        guard_.unlock();
    }

    /// Takes the block's lock, which keeps off those who open the name, and the guard. The two
    /// sides of a fork share the block's lock: the guard keeps them apart, and each gives the lock
    /// back under the guard only. So it is asked for once more there.
    bool lockAll() noexcept {
        while (memory_.lock() >= 0) {
            if (guard_.lock() < 0) {
                memory_.unlock();
                return false;
            }
            if (memory_.isLockKept()) {
                return true;
            }
            guard_.unlock();
        }
        return false;
    }

    NamedBlock memory_;
    SharedGuard guard_;
    SemaphoreBlock* block_ = nullptr;
    /// The entry of a process, valid in that process only.
    ProcessEntry* entry_ = nullptr;
    ProcessIdentity owner_ = {};
};

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVNamedSemOpen(const char* name, std::uint32_t value, std::uint64_t* handle) noexcept {
    if (handle == nullptr) {
        return QV_E_POINTER;
    }
    if (name == nullptr || *name == 0 || value > greatestCount) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] {
        auto semaphore = std::make_unique<NamedSemaphore>();
        const std::int32_t result = semaphore->open("sem-" + nameDigest(name), value);
        if (result >= 0) {
            *handle = toHandle<SemaphoreObject>(semaphore.release());
        }
        return result;
    });
}

std::int32_t QVNamedSemClose(std::uint64_t handle) noexcept {
    const auto* semaphore = fromHandle<SemaphoreObject>(handle);
    if (semaphore == nullptr || !semaphore->isShared()) {
        return QV_E_INVALIDHANDLE;
    }
    return destroyHandle<SemaphoreObject>(handle);
}
