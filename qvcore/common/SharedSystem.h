#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// What the systems give to share memory between processes. Implemented by the system.
namespace qv::core {

/// A process, told from an earlier one of the same number by its start. One that goes on with
/// another program is another process.
struct ProcessIdentity {
    std::uint32_t id;
    /// A word of its start, which two processes do not share; 0 where the system did not tell it.
    std::uint32_t start;

    bool operator==(const ProcessIdentity&) const = default;
    /// True unless it is known that these are two processes.
    bool mayBe(const ProcessIdentity& other) const noexcept {
        return id == other.id && (start == other.start || start == 0 || other.start == 0);
    }
};

/// The calling process. The answer is the same from the process's beginning to its end; a forked
/// child is another process.
ProcessIdentity currentProcess() noexcept;
/// False once the process has ended, however it ended.
bool isRunning(const ProcessIdentity& process) noexcept;

/// A block of memory under a name that the processes of one user share, and a lock for those who
/// open and close it. The lock of a process that dies is free.
class NamedBlock {
public:
    /// What the system needs to know the block again.
    struct Parts {
        std::uintptr_t file = 0;
        std::uintptr_t lock = 0;
        void* address = nullptr;
        std::size_t size = 0;
    };

    NamedBlock() = default;
    /// Gives up this object's part in the block, not the block.
    ~NamedBlock();
    NamedBlock(const NamedBlock&) = delete;
    NamedBlock& operator=(const NamedBlock&) = delete;

    /// Opens the block of that name or makes it, zeroed and of `size` bytes, and locks it.
    /// `permissions` are those of a new block on systems that have them.
    /// @throws std::bad_alloc.
    std::int32_t openLocked(const std::string& name, std::size_t size, std::uint32_t permissions);
    /// Gives it up again, so that it may be opened anew. It must not be locked.
    void close() noexcept;

    std::int32_t lock() noexcept;
    void unlock() noexcept;
    /// False if the other side of a fork, which shares this object's lock, has given it back since
    /// it was taken, and somebody else has it.
    bool isLockKept() noexcept;

    /// True if openLocked made the block.
    bool isNew() const noexcept { return isNew_; }
    void* address() const noexcept { return parts_.address; }
    std::size_t size() const noexcept { return parts_.size; }

    /// Maps the whole block once more. Requires: it is open.
    std::int32_t map(bool isWritable, void** address) const noexcept;
    static void unmap(void* address, std::size_t size) noexcept;

    /// Takes the name from the block: who opens it next makes a new one. Nothing happens where the
    /// system itself ends a block with its last user. Requires: it is locked.
    void discard() noexcept;
    /// Does so for all blocks of the user that are not locked and that `isInUse` finds to have no
    /// user.
    static void discardUnused(bool (*isInUse)(const void* memory, std::size_t size));

private:
    Parts parts_;
    std::string name_;
    bool isNew_ = false;
};

/// A lock between processes and a way to wait for a change made under it. It works on a storage in
/// shared memory and on objects of the system under a name.
class SharedGuard {
public:
    struct alignas(16) Storage {
        unsigned char bytes[128];
    };

    SharedGuard() = default;
    ~SharedGuard();
    SharedGuard(const SharedGuard&) = delete;
    SharedGuard& operator=(const SharedGuard&) = delete;

    /// Takes the zeroed storage of a new block into use, or that of an existing one.
    /// @throws std::bad_alloc.
    std::int32_t open(Storage& storage, const std::string& name, bool isNew);

    /// The lock of a process that died under it is free again.
    std::int32_t lock() noexcept;
    void unlock() noexcept;

    /// A mark of the present, for wait. Requires: the lock.
    std::uint32_t mark() const noexcept;
    /// Waits without the lock until something is announced after the mark, at most `timeout`
    /// milliseconds. May return early.
    void wait(std::uint32_t mark, std::uint32_t timeout) noexcept;
    /// Lets one waiter go. Requires: the lock.
    void announce() noexcept;

private:
    Storage* storage_ = nullptr;
    std::uintptr_t mutex_ = 0;
    std::uintptr_t event_ = 0;
};

} // namespace qv::core
