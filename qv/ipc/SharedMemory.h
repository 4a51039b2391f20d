#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::ipc {

/// A block of memory that processes share by its name, mapped for reading and writing as long as
/// this object lives.
///
/// The first process that opens a name makes the block, zeroed; it is gone with the last handle of
/// any process.
class QV_API SharedMemory : public qv::Object {
public:
    /// Opens the block of that name, or makes it with `size` bytes. `mode` is the access permission
    /// of a new block on systems that have one, 0 the usual one; `flags` is 0.
    /// @throws ResultException with the platform's result and "Failed to open shared memory." or
    /// "Failed to attach shared memory".
    SharedMemory(const char* name, std::uint32_t size, std::uint32_t flags = 0,
                 std::uint32_t mode = 0);
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    /// @throws ResultException, if the platform refuses.
    ~SharedMemory() noexcept(false) override;

    /// The block's first byte, as long as this object lives.
    void* get() const noexcept { return address_; }
    operator void*() const noexcept { return address_; }

private:
    static constexpr auto noHandle = ~std::uint64_t{0};

    std::uint64_t handle_ = noHandle;
    void* address_ = nullptr;
};

} // namespace qv::ipc
