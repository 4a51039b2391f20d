#pragma once

#include <cstdint>
#include <string>

namespace qv::core {

/// Spells a path for the system's calls: a short one as it stands, a long one absolute and with the
/// prefix that lifts the system's limit.
/// @throws std::bad_alloc.
std::int32_t toSystemPath(const char16_t* text, std::wstring& path);

/// The text made absolute by the system, of any length. An empty text is an error of the system.
/// @throws std::bad_alloc.
std::int32_t expandPath(const char16_t* text, std::wstring& path);

} // namespace qv::core
