#include "qv/StrBuf1.h"

#include <new>

namespace qv {

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

unsigned int StrBuf1::getBufCapacity() const noexcept { return capacityAndFlags_ & capacityMask; }

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
    void* const memory =
        ::operator new (sizeof(StrBuf1Wrap) + std::size_t{rounded} * sizeof(char16_t));
    auto* const units =
        reinterpret_cast<char16_t*>(static_cast<std::byte*>(memory) + sizeof(StrBuf1Wrap));
    return new (memory) StrBuf1Wrap(units, rounded);
}

StrBuf1Wrap::StrBuf1Wrap(const char16_t* data, unsigned int capacity) noexcept
    : StrBuf1(const_cast<char16_t*>(data), capacity) {}

StrBuf1Static::StrBuf1Static(const char16_t* data, unsigned int capacity) noexcept
    : StrBuf1(const_cast<char16_t*>(data), capacity) {}

unsigned int StrBuf1Static::isPrivatelyHeld(short) const noexcept { return 0; }

} // namespace qv
