#include "qvcore/Ipc.h"

#include "qvcore/common/Immortal.h"

#include "qvcore/common/Handle.h"
#include "qvcore/common/NameDigest.h"
#include "qvcore/common/SharedOpen.h"

#include <map>
#include <memory>
#include <mutex>

namespace qv::core {

namespace {

constexpr std::uint32_t readAccess = 0x80000000;
constexpr std::uint32_t writeAccess = 0x40000000;

/// What stands in front of the bytes that the callers see.
struct MemoryHeader {
    SharedHead head;
    std::uint32_t size;
};

/// Where those bytes begin: at a whole page.
constexpr std::size_t headerSpace = 0x4000;
static_assert(sizeof(MemoryHeader) <= headerSpace);

/// The mapped blocks of this process, by the address that the caller knows. Never destroyed.
///
/// Thread safety: internally locked.
class AttachedBlocks {
public:
    static AttachedBlocks& instance() { return core::immortal<AttachedBlocks>(); }

    void add(void* address, std::size_t mappedSize) {
        const std::lock_guard lock(mutex_);
        sizes_[address] = mappedSize;
    }

    /// The mapped size of a block, which is forgotten; 0 if there is none at the address.
    std::size_t take(void* address) {
        const std::lock_guard lock(mutex_);
        const auto found = sizes_.find(address);
        if (found == sizes_.end()) {
            return 0;
        }
        const std::size_t size = found->second;
        sizes_.erase(found);
        return size;
    }

private:
    std::mutex mutex_;
    std::map<void*, std::size_t> sizes_;
};

class SharedMemoryObject : public HandleObject {
public:
    static constexpr HandleKind handleKind = HandleKind::SharedMemory;

    SharedMemoryObject() : HandleObject(handleKind, nullptr) {}

    /// Ends the process's part with its last handle, and the block with the last process. A forked
    /// child has no part in its parent's handles.
    ~SharedMemoryObject() {
        if (owner_ != currentProcess() || memory_.lock() < 0) {
            return;
        }
        if (--entry_->handles == 0) {
            entry_->free();
        }
        if (!header()->head.processes.isUsed()) {
            memory_.discard();
        }
        memory_.unlock();
    }

    std::int32_t open(const std::string& name, std::uint32_t size, std::uint32_t permissions) {
        return openSharedBlock(memory_, name, headerSpace + size, permissions,
                               [=, this] { return memory_.isNew() ? begin(size) : join(size); });
    }

    std::int32_t attach(std::uint32_t access, void** address) {
        void* mapped = nullptr;
        const std::int32_t result = memory_.map((access & writeAccess) != 0, &mapped);
        if (result < 0) {
            return result;
        }
        void* visible = static_cast<char*>(mapped) + headerSpace;
        try {
            AttachedBlocks::instance().add(visible, memory_.size());
        } catch (...) {
            NamedBlock::unmap(mapped, memory_.size());
            throw;
        }
        *address = visible;
        return QV_S_OK;
    }

    bool isInUse() const noexcept { return false; }

private:
    MemoryHeader* header() const noexcept { return static_cast<MemoryHeader*>(memory_.address()); }

    std::int32_t begin(std::uint32_t size) noexcept {
        if (size == 0) {
            return QV_E_INVALIDARG;
        }
        header()->size = size;
        const std::int32_t result = join(size);
        header()->head.magic.store(SharedHead::expectedMagic);
        return result;
    }

    std::int32_t join(std::uint32_t size) noexcept {
        if (size > header()->size) {
            return QV_E_INVALIDARG;
        }
        const ProcessIdentity self = currentProcess();
        header()->head.processes.freeEnded();
        entry_ = header()->head.processes.findOrTake(self);
        if (entry_ == nullptr) {
            return QV_E_TOOMANYFILES;
        }
        ++entry_->handles;
        owner_ = self;
        return QV_S_OK;
    }

    NamedBlock memory_;
    /// The entry of a process, valid in that process only.
    ProcessEntry* entry_ = nullptr;
    ProcessIdentity owner_ = {};
};

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVSharedMemOpen(const char* name, std::uint32_t, std::uint32_t mode,
                             std::uint32_t size, std::uint64_t* handle) noexcept {
    if (handle == nullptr) {
        return QV_E_POINTER;
    }
    if (name == nullptr || *name == 0) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] {
        // The user itself must be able to open the block again, whatever the others may.
        auto memory = std::make_unique<SharedMemoryObject>();
        const std::int32_t result = memory->open("mem-" + nameDigest(name), size, mode | 0600);
        if (result >= 0) {
            *handle = toHandle(memory.release());
        }
        return result;
    });
}

std::int32_t QVSharedMemAttach(std::uint64_t handle, std::uint32_t access,
                               void** address) noexcept {
    if (address == nullptr) {
        return QV_E_POINTER;
    }
    if ((access & (readAccess | writeAccess)) == 0 || (access & ~(readAccess | writeAccess)) != 0) {
        return QV_E_INVALIDARG;
    }
    return withHandle<SharedMemoryObject>(
        handle, [=](SharedMemoryObject& memory) { return memory.attach(access, address); });
}

std::int32_t QVSharedMemDetach(void* address) noexcept {
    return guarded([=] {
        const std::size_t size = AttachedBlocks::instance().take(address);
        if (size == 0) {
            return QV_E_INVALIDARG;
        }
        NamedBlock::unmap(static_cast<char*>(address) - headerSpace, size);
        return QV_S_OK;
    });
}

std::int32_t QVSharedMemClose(std::uint64_t handle) noexcept {
    return destroyHandle<SharedMemoryObject>(handle);
}
