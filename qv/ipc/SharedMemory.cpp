#include "qv/ipc/SharedMemory.h"

#include "qv/ErrorRule.h"
#include "qv/String.h"
#include "qvcore/Ipc.h"

#include <utility>

namespace qv::ipc {

namespace {

constexpr std::uint32_t readAndWrite = 0xC0000000;

} // namespace

SharedMemory::SharedMemory(const char* name, std::uint32_t size, std::uint32_t flags,
                           std::uint32_t mode) {
    const std::int32_t opened = QVSharedMemOpen(name, flags, mode, size, &handle_);
    if (opened < 0) {
        throwResult(opened, u"Failed to open shared memory.");
    }
    const std::int32_t attached = QVSharedMemAttach(handle_, readAndWrite, &address_);
    if (attached < 0) {
        static_cast<void>(QVSharedMemClose(std::exchange(handle_, noHandle)));
        throwResult(attached, u"Failed to attach shared memory");
    }
}

SharedMemory::~SharedMemory() noexcept(false) {
    const std::int32_t detached = address_ != nullptr ? QVSharedMemDetach(address_) : QV_S_OK;
    const std::int32_t closed = handle_ != noHandle ? QVSharedMemClose(handle_) : QV_S_OK;
    throwIfFailed(detached);
    throwIfFailed(closed);
}

} // namespace qv::ipc
