#pragma once

#include "qv/IQVComparator.h"
#include "qv/Object.h"

namespace qv::util {

/// The comparator that asks the objects themselves: their own order and hash, through
/// IQVComparable. What does not answer that interface, null for one, is ordered by address.
///
/// The two faces stand side by side: the component face asks the objects by their interface and
/// does not go through `compare` and `hash`. A class with an order of its own overrides both.
///
/// Thread safety: immutable.
class QV_API Comparator : public Object, public IQVComparator {
public:
    Comparator() noexcept = default;

    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() const noexcept override { return Object::AddRef(); }
    std::uint32_t Release() const noexcept override { return Object::Release(); }

    /// 0 for a comparator of the same class.
    /// @throws CastFailedException for anything else.
    int compareTo(const Object& other) const override;
    /// True for every comparator of the same class.
    bool equals(const Object& other) const override;

    // Slot order is contract from here on.

    /// The order of `left`, by its own `compareTo`.
    virtual int compare(const Object& left, const Object& right);
    /// The object's own hash.
    virtual std::uint32_t hash(const Object& object);

    // Slot order ends here.

    /// The order of `left` by its IQVComparable; without one, -1, 0 or 1 by address.
    /// @return 0, or what the object's own comparison returns.
    std::int32_t Compare(const IQVUnknown* left, const IQVUnknown* right,
                         std::int32_t* result) noexcept override;
    /// The hash of an object by its IQVComparable; without one, the low 32 bits of the address.
    /// @return as Compare.
    std::int32_t Hash(const IQVUnknown* object, std::uint32_t* result) noexcept override;

    static const qvcom::InterfaceData* GetComIntfMap() noexcept;
};

} // namespace qv::util
