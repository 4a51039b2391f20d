#pragma once

#include <string>
#include <string_view>

namespace qv::core {

/// Spells any name in 64 characters that every system takes: the hexadecimal digits of its SHA-256.
/// Source: FIPS 180-4.
std::string nameDigest(std::string_view name);

} // namespace qv::core
