#pragma once

#include <cstddef>

/// A string constant: a record of a text in static storage and its length. A qv::String made from
/// one neither copies nor measures the text.
struct STRUCT_QV_STR_LIT_INFO {
    const char16_t* text; ///< 0-terminated, in static storage
    int length;           ///< units in front of the terminator
};

namespace qv::literals {

/// `u"text"_lit`: the literal record of a text, measured by the compiler.
constexpr STRUCT_QV_STR_LIT_INFO operator""_lit(const char16_t* text, std::size_t length) noexcept {
    return {text, static_cast<int>(length)};
}

} // namespace qv::literals
