#pragma once

#include "qv/Results.h"
#include "qvcore/common/ProcessTable.h"

#include <string>
#include <thread>

namespace qv::core {

/// Opens and locks a shared block, or makes it, zeroed. A block that processes left behind when
/// they ended is put aside for a new one; and who makes a block clears away those that nobody asks
/// for any more.
///
/// `isUsable` says whether an existing block may be used; its result is given back if not.
/// @return on success the block is locked, and is new exactly if it says so.
/// @throws std::bad_alloc.
template <typename IsUsable>
std::int32_t openSharedBlock(NamedBlock& block, const std::string& name, std::size_t size,
                             std::uint32_t permissions, IsUsable isUsable) {
    for (;;) {
        const std::int32_t result = block.openLocked(name, size, permissions);
        if (result < 0) {
            return result;
        }
        if (block.isNew()) {
            NamedBlock::discardUnused(SharedHead::isInUse);
            return QV_S_OK;
        }
        if (SharedHead::isInUse(block.address(), block.size())) {
            const std::int32_t usable = isUsable(block.address());
            if (usable < 0) {
                block.unlock();
                block.close();
            }
            return usable;
        }
        block.discard();
        block.unlock();
        block.close();
        std::this_thread::yield();
    }
}

} // namespace qv::core
