#include "tests/support/Allocations.h"

#include <cstdlib>
#include <new>

namespace support {

namespace {

thread_local bool counting = false;
thread_local std::size_t counted = 0;
thread_local std::size_t failing = 0;

void* allocate(std::size_t size) {
    if (counting && ++counted == failing) {
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

Allocations::Allocations(std::size_t which) noexcept {
    counted = 0;
    failing = which;
    counting = true;
}

Allocations::~Allocations() { counting = false; }

std::size_t Allocations::count() const noexcept { return counted; }

} // namespace support

void* operator new(std::size_t size) { return support::allocate(size); }
void* operator new[](std::size_t size) { return support::allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
