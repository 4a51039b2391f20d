#include "tests/support/GuardedBuffer.h"

#include <new>
#include <windows.h>

namespace support {

namespace {

std::size_t pageSize() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

} // namespace

GuardedBuffer::GuardedBuffer() : size_(pageSize()) {
    void* const pages = VirtualAlloc(nullptr, 3 * size_, MEM_RESERVE, PAGE_NOACCESS);
    if (pages == nullptr) {
        throw std::bad_alloc();
    }
    page_ = static_cast<char*>(pages) + size_;
    if (VirtualAlloc(page_, size_, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        VirtualFree(pages, 0, MEM_RELEASE);
        throw std::bad_alloc();
    }
}

GuardedBuffer::~GuardedBuffer() { VirtualFree(page_ - size_, 0, MEM_RELEASE); }

} // namespace support
