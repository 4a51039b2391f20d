#include "tests/support/Allocations.h"

#include <cerrno>
#include <cstdlib>
#include <new>

namespace support {

namespace {

thread_local bool counting = false;
thread_local std::size_t counted = 0;
thread_local std::size_t asked = 0;
thread_local std::size_t failing = 0;

/// @return true for the allocation that is to fail.
bool isFailing() noexcept { return counting && ++asked == failing; }

void count() noexcept {
    if (counting) {
        ++counted;
    }
}

} // namespace

Allocations::Allocations(std::size_t which) noexcept {
    counted = 0;
    asked = 0;
    failing = which;
    counting = true;
}

Allocations::~Allocations() { counting = false; }

std::size_t Allocations::count() const noexcept { return counted; }

} // namespace support

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// The sanitizers have allocators of their own, which tell what they hand out. Only `new` can be
// made to fail there.

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*,
                                                                           std::size_t),
                                                         void (*freed)(const volatile void*));

namespace {

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { support::count(); }, [](const volatile void*) {});

void* allocate(std::size_t size) {
    void* const memory = support::isFailing() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

#else

// The program's functions take the place of the C library's, for its modules too: `new` calls them.

extern "C" {

void* __libc_malloc(std::size_t size) noexcept;
void* __libc_realloc(void* memory, std::size_t size) noexcept;

void* malloc(std::size_t size) noexcept {
    if (support::isFailing()) {
        errno = ENOMEM;
        return nullptr;
    }
    support::count();
    return __libc_malloc(size);
}

void* realloc(void* memory, std::size_t size) noexcept {
    if (support::isFailing()) {
        errno = ENOMEM;
        return nullptr;
    }
    support::count();
    return __libc_realloc(memory, size);
}

} // extern "C"

#endif
