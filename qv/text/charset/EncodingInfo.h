#pragma once

#include "qv/Export.h"

#include <cstdint>

/// What is known about an encoding by its name or its code page, whether something serves it or
/// not.
struct QVEncInfo {
    const char16_t* name;   ///< the canonical name, in static storage
    std::uint32_t codePage; ///< 0 for none
    std::int32_t reserved;  ///< 0
};

/// Copies the rows of all encodings that have a code page. With too few places in `*count` it
/// stores the number of rows there and returns QV_E_BUFFERTOOSMALL, so that a first call with 0 and
/// a null buffer asks for the size. Thread safety: immutable, all three.
/// @return 0; QV_E_INVALIDARG for a null `count`, or a null `buffer` with places in `*count`.
QV_FLAT_API std::int32_t QVEnumerateEncInfo(unsigned int* count, QVEncInfo* buffer) noexcept;
/// @return 0; QV_E_INVALIDARG for a null `out`; QV_E_FAIL for a code page without a row.
QV_FLAT_API std::int32_t QVGetEncInfoByCodePage(unsigned int codePage, QVEncInfo* out) noexcept;
/// Finds an encoding by its name, one of its aliases or its code page in decimal, without regard to
/// case.
/// @return 0; QV_E_INVALIDARG for a null argument; QV_E_FAIL for an unknown name.
QV_FLAT_API std::int32_t QVGetEncInfoByName(const char16_t* name, QVEncInfo* out) noexcept;

namespace qv::text::charset {

/// One name of the library's own tables.
struct EncodingName {
    const char16_t* name;    ///< in static storage
    std::uint32_t codePage;  ///< 0 for none, and in an alias
    const char16_t* aliasOf; ///< the canonical name; null in the row of a canonical name
    bool isBuiltIn;          ///< false where only a component can serve it
};

/// Calls `visit` for every name of the library's tables, canonical names and aliases. A canonical
/// name may be given again as its own alias.
QV_API void forEachEncodingName(void (*visit)(const EncodingName& name, void* context),
                                void* context);

} // namespace qv::text::charset
