#include "tests/support/GuardedBuffer.h"

#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace support {

GuardedBuffer::GuardedBuffer() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    void* const pages = mmap(nullptr, 3 * size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        throw std::bad_alloc();
    }
    page_ = static_cast<char*>(pages) + size_;
    if (mprotect(page_, size_, PROT_READ | PROT_WRITE) != 0) {
        munmap(pages, 3 * size_);
        throw std::bad_alloc();
    }
}

GuardedBuffer::~GuardedBuffer() { munmap(page_ - size_, 3 * size_); }

} // namespace support
