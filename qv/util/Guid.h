#pragma once

#include "qv/Export.h"
#include "qvcore/Guid.h"

#include <compare>

namespace qv {
class String;
}

namespace qv::util {

/// A globally unique identifier as a value. It converts to the system's record and compares with
/// it.
///
/// Thread safety: const-safe.
class QV_API Guid {
public:
    /// All zero.
    Guid() noexcept : guid_{} {}
    Guid(const GUID& guid) noexcept : guid_(guid) {}
    /// Reads the text form: 38 units in braces, digits of either case.
    /// @throws Exception "invalid GUID string", also for null.
    explicit Guid(const char16_t* text);

    operator const GUID&() const noexcept { return guid_; }

    /// The text form, in upper case.
    /// @throws std::bad_alloc.
    String toString() const;

    /// Owns: the caller, a fresh identifier from the system's secure random source; null where
    /// memory ran out.
    /// @throws ResultException with the result of that source.
    static Guid* Generate();

    /// Negative, 0 or positive by the order of the fields, which is that of the text forms.
    static int compare(const GUID& left, const GUID& right) noexcept {
        return QVComCompareGUID(&left, &right);
    }
    static int compare(const Guid& left, const Guid& right) noexcept {
        return compare(left.guid_, right.guid_);
    }

    bool operator==(const GUID& other) const noexcept { return compare(guid_, other) == 0; }
    bool operator==(const Guid& other) const noexcept { return *this == other.guid_; }
    std::strong_ordering operator<=>(const GUID& other) const noexcept {
        return compare(guid_, other) <=> 0;
    }
    std::strong_ordering operator<=>(const Guid& other) const noexcept {
        return *this <=> other.guid_;
    }

private:
    GUID guid_;
};

} // namespace qv::util
