#pragma once

#include "qv/IQVUnknown.h"

inline constexpr GUID IID_IQVComparable{
    0x72038029, 0xFA65, 0x4255, {0xA9, 0x16, 0x1C, 0x56, 0x80, 0xAC, 0xFE, 0xBF}};

/// Ordering and hashing across a component boundary.
class IQVComparable : public IQVUnknown {
public:
    /// Stores a negative number, 0 or a positive number in `*result`, as this object stands before,
    /// with or behind `other`. @return 0, or a failure with 0 stored.
    virtual std::int32_t CompareTo(const IQVUnknown* other, std::int32_t* result) const = 0;
    /// Stores the hash of this object in `*result`. @return 0, or a failure with 0 stored.
    virtual std::int32_t HashCode(std::uint32_t* result) const = 0;

protected:
    ~IQVComparable() = default;
};
