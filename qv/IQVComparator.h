#pragma once

#include "qv/IQVUnknown.h"

inline constexpr GUID IID_IQVComparator{
    0x176573E2, 0xC217, 0x4F04, {0xAD, 0x8E, 0xE6, 0x77, 0xCA, 0x68, 0x32, 0x45}};

/// Order and hash of objects, kept apart from the objects: what a collection judges its elements
/// by. Objects that compare equal have equal hashes.
class IQVComparator : public IQVUnknown {
public:
    /// Stores a negative number, 0 or a positive number in `*result`, as `left` stands before, with
    /// or behind `right`. Either may be null. @return 0, or a failure.
    virtual std::int32_t Compare(const IQVUnknown* left, const IQVUnknown* right,
                                 std::int32_t* result) = 0;
    /// Stores the hash of an object, which may be null, in `*result`. @return 0, or a failure.
    virtual std::int32_t Hash(const IQVUnknown* object, std::uint32_t* result) = 0;

protected:
    ~IQVComparator() = default;
};
