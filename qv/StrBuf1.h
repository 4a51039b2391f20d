#pragma once

#include "qv/Export.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace qv {

/// The character store of light strings: units, and a count that is a plain integer, for speed.
///
/// A static instance stands in inline or static storage and holds one reference of its own, which
/// keeps it from ever being deleted. Requires: strings that share one end before its storage does.
///
/// Thread safety: one thread at a time, everything that shares a store included.
class QV_API StrBuf1 {
public:
    /// The most units that a store can have.
    static const unsigned int greatestCapacity = 0xFFFFF0;

    StrBuf1(const StrBuf1&) = delete;
    StrBuf1& operator=(const StrBuf1&) = delete;

    // Slot order is contract from here on.

    virtual ~StrBuf1() = default;
    virtual void AddRef() noexcept;
    /// The last reference deletes the store.
    virtual void Release() noexcept;
    /// The capacity if the caller may write in place, otherwise 0. `embedded` is not 0 where the
    /// caller asks about a store that is not its current one.
    virtual unsigned int isPrivatelyHeld(short embedded) const noexcept;
    virtual unsigned int getBufCapacity() const noexcept {
        return capacityAndFlags_ & capacityMask;
    }

    // Slot order ends here.

    char16_t* getData() const noexcept { return data_; }
    std::uint32_t getRefCount() const noexcept { return count_; }
    /// Marks a store in inline or static storage, with a reference of its own. One that is never
    /// shared counts as privately held whatever its count.
    void initStaticInstance(short neverShared) noexcept;
    bool isStaticInstance() const noexcept { return (capacityAndFlags_ & staticBit) != 0; }

    void setCapacityValue(unsigned int capacity) noexcept;
    /// Two bits for the owner's use.
    void setHeapBits(unsigned int bits) noexcept;
    unsigned int getHeapBits() const noexcept { return capacityAndFlags_ & heapMask; }

    /// A store on the heap, header and units in one allocation, with its count at 0.
    /// @throws std::bad_alloc, also for more than `greatestCapacity` units.
    static StrBuf1* newStrBuf1Cap(unsigned int capacity);
    /// The same store with room for `capacity` units, where it came from `newStrBuf1Cap` and the
    /// caller alone holds it: it may move, and its pointer with it. Null where it is another kind.
    /// @throws std::bad_alloc as above, and leaves the store as it was.
    static StrBuf1* growInPlace(StrBuf1* store, unsigned int capacity);
    /// Rounded up to a multiple of 16.
    static constexpr unsigned int normalizeCapacity(unsigned int capacity) noexcept {
        return (capacity + 15u) & ~15u;
    }

protected:
    /// Borrows: `data`, unless it is part of the same allocation. The capacity is cut to 24 bits.
    StrBuf1(char16_t* data, unsigned int capacity) noexcept;

private:
    static constexpr std::uint32_t capacityMask = 0xFFFFFF;
    static constexpr std::uint32_t heapMask = 0x3000000;
    static constexpr std::uint32_t staticBit = 0x4000000;
    static constexpr std::uint32_t neverSharedBit = 0x8000000;

    char16_t* data_;
    std::uint32_t count_ = 0;
    std::uint32_t capacityAndFlags_;
};

/// A store over memory of the caller's, or of the same allocation.
class QV_API StrBuf1Wrap : public StrBuf1 {
public:
    StrBuf1Wrap(const char16_t* data, unsigned int capacity) noexcept;
    /// The same over memory that is not filled yet.
    StrBuf1Wrap(char16_t* data, unsigned int capacity) noexcept : StrBuf1(data, capacity) {}
};

/// A store in one allocation with its units, which stand behind it. `StrBuf1::newStrBuf1Cap` makes
/// it.
class QV_API StrBuf1Heap final : public StrBuf1Wrap {
public:
    static StrBuf1Heap* make(void* memory, unsigned int capacity) noexcept {
        return ::new (memory) StrBuf1Heap(capacity);
    }
    static void operator delete(void* memory) noexcept { std::free(memory); }

    /// As `isPrivatelyHeld`, for callers that know the class: it is no static instance.
    unsigned int heldCapacity() const noexcept {
        return getRefCount() < 2 ? StrBuf1::getBufCapacity() : 0;
    }

private:
    explicit StrBuf1Heap(unsigned int capacity) noexcept
        : StrBuf1Wrap(reinterpret_cast<char16_t*>(this + 1), capacity) {}
};

/// A store over read-only text: any write copies.
class QV_API StrBuf1Static : public StrBuf1 {
public:
    StrBuf1Static(const char16_t* data, unsigned int capacity) noexcept;
    /// Always 0.
    unsigned int isPrivatelyHeld(short embedded) const noexcept override;
};

/// A store with `N` units of its own.
template <unsigned int N>
class StrBuf1Fixed : public StrBuf1Wrap {
public:
    StrBuf1Fixed() noexcept : StrBuf1Wrap(units_, N) {}

private:
    char16_t units_[N];
};

} // namespace qv
