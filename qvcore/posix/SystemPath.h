#pragma once

#include <cstdint>
#include <string>

/// Paths between the library's text form, which has `\`, and the system's, which has `/`.
namespace qv::core {

/// @return QV_E_INVALIDNAME if the default encoding has no form for the text.
/// @throws std::bad_alloc.
std::int32_t toSystemPath(const char16_t* text, std::string& path);

/// @return QV_E_INVALIDNAME if the path is no text in the default encoding, or holds a `\`, which
/// the
///     text form has no spelling for.
/// @throws std::bad_alloc.
std::int32_t fromSystemPath(const std::string& path, std::u16string& text);

} // namespace qv::core
