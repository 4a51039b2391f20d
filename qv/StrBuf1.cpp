#include "qv/StrBuf1.h"

#include "qv/detail/Exactly.h"

namespace qv {

namespace {

std::size_t heapSize(unsigned int capacity) {
    return sizeof(StrBuf1Heap) + std::size_t{capacity} * sizeof(char16_t);
}

void* checkedMemory(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

StrBuf1::StrBuf1(char16_t* data, unsigned int capacity) noexcept
    : data_(data), capacityAndFlags_(capacity & capacityMask) {}

const unsigned int StrBuf1::greatestCapacity;

void StrBuf1::AddRef() noexcept { ++count_; }

void StrBuf1::Release() noexcept {
    if (--count_ == 0) {
        delete this;
    }
}

unsigned int StrBuf1::isPrivatelyHeld(short embedded) const noexcept {
    // A static instance has a reference of its own, and one of the string that it is current in.
    std::uint32_t greatestCount = 1;
    if ((capacityAndFlags_ & neverSharedBit) != 0) {
        greatestCount = 0x7FFFFFFF;
    } else if (isStaticInstance()) {
        greatestCount = embedded != 0 ? 1 : 2;
    }
    return count_ <= greatestCount ? capacityAndFlags_ & capacityMask : 0;
}

void StrBuf1::initStaticInstance(short neverShared) noexcept {
    AddRef();
    capacityAndFlags_ |= staticBit;
    if (neverShared != 0) {
        capacityAndFlags_ |= neverSharedBit;
    }
}

void StrBuf1::setCapacityValue(unsigned int capacity) noexcept {
    capacityAndFlags_ = (capacityAndFlags_ & ~capacityMask) | (capacity & capacityMask);
}

void StrBuf1::setHeapBits(unsigned int bits) noexcept {
    capacityAndFlags_ = (capacityAndFlags_ & ~heapMask) | (bits & heapMask);
}

StrBuf1* StrBuf1::newStrBuf1Cap(unsigned int capacity) {
    if (capacity > greatestCapacity) {
        throw std::bad_alloc();
    }
    const unsigned int rounded = normalizeCapacity(capacity);
    return StrBuf1Heap::make(checkedMemory(std::malloc(heapSize(rounded))), rounded);
}

StrBuf1* StrBuf1::growInPlace(StrBuf1* store, unsigned int capacity) {
    if (detail::exactly<StrBuf1Heap>(store) == nullptr || store->count_ != 1) {
        return nullptr;
    }
    if (capacity > greatestCapacity) {
        throw std::bad_alloc();
    }
    const unsigned int rounded = normalizeCapacity(capacity);
    // The header holds nothing but its count and a pointer behind itself: it is made anew.
    void* const memory = std::realloc(static_cast<void*>(store), heapSize(rounded));
    StrBuf1* const grown = StrBuf1Heap::make(checkedMemory(memory), rounded);
    grown->AddRef();
    return grown;
}

StrBuf1Wrap::StrBuf1Wrap(const char16_t* data, unsigned int capacity) noexcept
    : StrBuf1(const_cast<char16_t*>(data), capacity) {}

StrBuf1Static::StrBuf1Static(const char16_t* data, unsigned int capacity) noexcept
    : StrBuf1(const_cast<char16_t*>(data), capacity) {}

unsigned int StrBuf1Static::isPrivatelyHeld(short) const noexcept { return 0; }

} // namespace qv
