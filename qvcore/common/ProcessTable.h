#pragma once

#include "qvcore/common/SharedSystem.h"

#include <array>
#include <atomic>

namespace qv::core {

/// One process's part in a shared block. Lives in shared memory: an entry with process number 0 is
/// free, and the number is written last when an entry is taken, so that a process that dies
/// meanwhile leaves no half of one.
struct ProcessEntry {
    std::atomic<std::uint32_t> process;
    /// The handles that the process has open.
    std::atomic<std::uint32_t> handles;
    /// Counts that the process took and owes.
    std::atomic<std::uint32_t> held;
    std::atomic<std::uint32_t> start;

    bool isFree() const noexcept { return process.load() == 0; }
    ProcessIdentity identity() const noexcept { return {process.load(), start.load()}; }
    bool isRunning() const noexcept { return core::isRunning(identity()); }

    void free() noexcept { process.store(0); }
    void take(const ProcessIdentity& owner) noexcept {
        handles.store(0);
        held.store(0);
        start.store(owner.start);
        process.store(owner.id);
    }
};

/// The processes that use a shared block. Lives in shared memory, zeroed at first; every use of it
/// is under the block's lock.
class ProcessTable {
public:
    static constexpr std::size_t capacity = 500;

    auto begin() noexcept { return entries_.begin(); }
    auto end() noexcept { return entries_.end(); }

    /// The entry of a process, or null. An entry of the same number and another start was left by
    /// an earlier process.
    ProcessEntry* find(const ProcessIdentity& process) noexcept {
        for (ProcessEntry& entry : entries_) {
            if (!entry.isFree() && entry.identity() == process) {
                return &entry;
            }
        }
        return nullptr;
    }

    /// The entry of a process, taken now if it has none. Null if the table is full.
    ProcessEntry* findOrTake(const ProcessIdentity& process) noexcept {
        if (ProcessEntry* entry = find(process)) {
            return entry;
        }
        for (ProcessEntry& entry : entries_) {
            if (entry.isFree()) {
                entry.take(process);
                return &entry;
            }
        }
        return nullptr;
    }

    /// True if a process that still runs has a handle.
    bool isUsed() const noexcept {
        for (const ProcessEntry& entry : entries_) {
            if (!entry.isFree() && entry.handles.load() != 0 && entry.isRunning()) {
                return true;
            }
        }
        return false;
    }

    /// Frees the entries of processes that ended.
    void freeEnded() noexcept {
        for (ProcessEntry& entry : entries_) {
            if (!entry.isFree() && !entry.isRunning()) {
                entry.free();
            }
        }
    }

private:
    std::array<ProcessEntry, capacity> entries_;
};

/// What every shared block begins with. Zeroed at first; the magic number is set when all of the
/// block is in order.
struct SharedHead {
    static constexpr std::uint32_t expectedMagic = 0x51565331;

    std::atomic<std::uint32_t> magic;
    ProcessTable processes;

    /// True if the memory begins with a head, and a process uses the block.
    static bool isInUse(const void* memory, std::size_t size) noexcept {
        const auto* head = static_cast<const SharedHead*>(memory);
        return size >= sizeof(SharedHead) && head->magic.load() == expectedMagic &&
               head->processes.isUsed();
    }
};

} // namespace qv::core
