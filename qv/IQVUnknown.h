#pragma once

#include "qv/Export.h"
#include "qvcore/Guid.h"

#include <cstdint>
#include <cstring>

namespace qv {

/// True when both identifiers are the same 16 bytes.
inline bool equalGuids(const GUID& left, const GUID& right) noexcept {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}

} // namespace qv

/// The id of the root interface: the system's own unknown interface.
inline constexpr GUID IID_IQVUnknown{
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Root of every component interface. Its table is that of the system's component model, so that an
/// object crosses a component boundary as it stands.
///
/// Implementations let no exception out of any component operation.
class IQVUnknown {
public:
    /// Stores the interface `iid` of this object in `*out`, counted for the caller.
    /// @return 0; QV_E_POINTER for a null `out`; QV_E_NOINTERFACE, with null stored, for an
    /// interface
    ///     that the object does not answer.
    virtual std::int32_t QueryInterface(const GUID& iid, void** out) = 0;
    /// Takes a reference. @return the new count.
    virtual std::uint32_t AddRef() const = 0;
    /// Gives a reference back; the last one ends the object. @return the new count.
    virtual std::uint32_t Release() const = 0;

protected:
    ~IQVUnknown() = default;
};
