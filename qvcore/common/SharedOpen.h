#pragma once

#include "qv/Results.h"
#include "qvcore/common/ProcessTable.h"

#include <string>
#include <thread>

namespace qv::core {

/// Opens and locks a shared block whose memory begins with a `Header` that has a `magic` number and
/// a ProcessTable named `processes`. A block that processes left behind when they died is put aside
/// for a new one.
///
/// `isUsable` says whether an existing block may be used; its result is given back if not.
/// @return on success the block is locked, and is new exactly if it says so.
/// @throws std::bad_alloc.
template <typename Header, typename IsUsable>
std::int32_t openSharedBlock(NamedBlock& block, const std::string& name, std::size_t size,
                             std::uint32_t permissions, IsUsable isUsable) {
    for (;;) {
        const std::int32_t result = block.openLocked(name, size, permissions);
        if (result < 0 || block.isNew()) {
            return result;
        }
        auto* header = static_cast<Header*>(block.address());
        const bool isWhole =
            block.size() >= sizeof(Header) && header->magic == Header::expectedMagic;
        if (isWhole && header->processes.isUsed()) {
            const std::int32_t usable = isUsable(*header);
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
