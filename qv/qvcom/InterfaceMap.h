#pragma once

#include "qv/IQVUnknown.h"

namespace qv {
class ComObject;
}

namespace qv::qvcom {

/// Answers an interface request for a row of an interface map. `data` is the row's own.
using InterfaceFunction = std::int32_t (*)(ComObject* self, const GUID& iid, void** out,
                                           std::uint32_t data);

/// One row of a class's interface map: a constant table in static storage, ended by a row whose
/// entry is null.
struct InterfaceData {
    /// What the row does: the number 1 marks an offset row, anything else is a function to call.
    union Entry {
        std::uintptr_t word;
        InterfaceFunction function;
    };

    const GUID* iid; ///< the interface of this row; null in a chain row
    Entry entry;     ///< see Entry
    std::uint32_t
        data; ///< offset row: bytes from the object's start to the interface's table pointer
};

/// A row for an interface that stands `offset` bytes behind the object's start.
constexpr InterfaceData offsetRow(const GUID& iid, std::size_t offset) noexcept {
    return {&iid, {.word = 1}, static_cast<std::uint32_t>(offset)};
}

/// A row that hands requests which no row above took to `function`.
constexpr InterfaceData chainRow(InterfaceFunction function) noexcept {
    return {nullptr, {.function = function}, 0};
}

/// The row that ends a table.
constexpr InterfaceData endRow() noexcept { return {nullptr, {.word = 0}, 0}; }

/// The one lookup of interfaces. A request for IQVUnknown gives `self`, so that the pointer for it
/// is always the same whichever interface the caller came through; then the rows are tried in
/// order. A row with an iid that fails ends the search with its result; a chain row that fails does
/// not. Thread safety: immutable.
/// @return 0, QV_E_POINTER for a null `out`, QV_E_NOINTERFACE with null stored, or a row's failure.
QV_API std::int32_t QueryInterfaceMap(const InterfaceData* map, ComObject* self, const GUID& iid,
                                      void** out);

/// The chain row's function for qv::Object's map.
QV_API std::int32_t chainToObject(ComObject* self, const GUID& iid, void** out, std::uint32_t data);

} // namespace qv::qvcom
