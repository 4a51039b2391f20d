#pragma once

#include <cstdint>

/// The results that the tests expect, written out by hand.
namespace support {

constexpr std::int32_t bits(std::uint32_t value) { return static_cast<std::int32_t>(value); }

constexpr std::int32_t nullOutput = bits(0x80004003u);
constexpr std::int32_t fileNotFound = bits(0x80070002u);
constexpr std::int32_t accessDenied = bits(0x80070005u);
constexpr std::int32_t invalidHandle = bits(0x80070006u);
constexpr std::int32_t invalidArgument = bits(0x80070057u);
constexpr std::int32_t brokenPipe = bits(0x8007006Du);
constexpr std::int32_t doesNotFit = bits(0x8007007Au);
constexpr std::int32_t invalidName = bits(0x8007007Bu);
constexpr std::int32_t busy = bits(0x800700AAu);
constexpr std::int32_t alreadyExists = bits(0x800700B7u);
constexpr std::int32_t notOwner = bits(0x80070120u);
constexpr std::int32_t tooManyPosts = bits(0x8007012Au);
constexpr std::int32_t wouldDeadlock = bits(0x8007046Bu);
constexpr std::int32_t timedOut = bits(0x800705B4u);
constexpr std::int32_t classNotRegistered = bits(0x80040154u);
constexpr std::int32_t unknownProgId = bits(0x800401F3u);

} // namespace support
