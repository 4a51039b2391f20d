#pragma once

#include <cstdint>
#include <span>

namespace qv::face {

/// One name of an encoding that the library serves itself.
struct CodecRow {
    const char16_t* name;
    std::uint32_t codePage;       ///< 0 for none
    const char16_t* aliasOf;      ///< the main row's name; null in a main row
    const char16_t* encoderClass; ///< registered name of the run-time class
    const char16_t* decoderClass;
};

/// The encodings that library start registers: each main row with its aliases behind it, 45 in all,
/// ended by a row whose name is null.
extern const CodecRow codecTable[];

/// An encoding that has a code page and no converter inside the library: a component may serve it.
struct FurtherEncoding {
    const char16_t* name;
    std::uint32_t codePage;
};

/// A further name of such an encoding.
struct FurtherAlias {
    const char16_t* alias;
    const char16_t* target;
};

std::span<const FurtherEncoding> furtherEncodings() noexcept;
std::span<const FurtherAlias> furtherAliases() noexcept;

/// Builds the encoding information behind QVGetEncInfoByName and its companions.
/// @throws std::bad_alloc.
void buildEncodingNames();
/// Frees the encoding information. It may be built again.
void freeEncodingNames() noexcept;

} // namespace qv::face
