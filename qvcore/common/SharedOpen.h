#pragma once

#include "qv/Results.h"
#include "qvcore/common/ProcessTable.h"

#include <optional>
#include <string>
#include <thread>

namespace qv::core {

/// The lock that came with a block's opening. Where it ends, the name is taken from the block,
/// unless the block is to stay.
class OpeningLock {
public:
    explicit OpeningLock(NamedBlock& block) noexcept : block_(block) {}
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;
    ~OpeningLock() {
        if (!stays_) {
            block_.discard();
        }
        block_.unlock();
    }

    void keepBlock() noexcept { stays_ = true; }

private:
    NamedBlock& block_;
    bool stays_ = false;
};

/// Runs `use` on a block that has just been opened and locked, and unlocks it.
/// @return the result of `use`; none if processes left the block behind when they ended.
template <typename Use>
std::optional<std::int32_t> useOpenedBlock(NamedBlock& block, Use use) {
    OpeningLock lock(block);
    if (block.isNew()) {
        NamedBlock::discardUnused(SharedHead::isInUse);
    } else if (SharedHead::isInUse(block.address(), block.size())) {
        lock.keepBlock(); // others have it
    } else {
        return std::nullopt;
    }
    const std::int32_t result = use();
    if (result >= 0) {
        lock.keepBlock();
    }
    return result;
}

/// Opens a shared block, or makes it, zeroed, and runs `use` on it under its lock. A block that
/// processes left behind when they ended is put aside for a new one; and who makes a block clears
/// away those that nobody asks for any more.
///
/// A new block whose `use` fails or throws goes again.
/// @return the result of `use`, or that of the opening.
/// @throws std::bad_alloc, and what `use` throws.
template <typename Use>
std::int32_t openSharedBlock(NamedBlock& block, const std::string& name, std::size_t size,
                             std::uint32_t permissions, Use use) {
    for (;;) {
        const std::int32_t opened = block.openLocked(name, size, permissions);
        if (opened < 0) {
            return opened;
        }
        if (const std::optional<std::int32_t> result = useOpenedBlock(block, use)) {
            return *result;
        }
        block.close();
        std::this_thread::yield();
    }
}

} // namespace qv::core
