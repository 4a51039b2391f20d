#pragma once

#include <cstdint>

/// The library's result values: signed 32-bit numbers, 0 for success, negative on failure. Where
/// the system has a value for a failure, it is that value, on every system.
namespace qv {

namespace detail {
constexpr std::int32_t result(std::uint32_t bits) noexcept {
    return static_cast<std::int32_t>(bits);
}
} // namespace detail

inline constexpr std::int32_t QV_S_OK = 0;

/// A component operation that is declared and not provided.
inline constexpr std::int32_t QV_E_NOTIMPL = detail::result(0x80004001u);
/// The object does not answer that interface.
inline constexpr std::int32_t QV_E_NOINTERFACE = detail::result(0x80004002u);
/// A null output pointer.
inline constexpr std::int32_t QV_E_POINTER = detail::result(0x80004003u);
/// Unspecified failure: the default of every exception.
inline constexpr std::int32_t QV_E_FAIL = detail::result(0x80004005u);
/// The operation does not exist in this system.
inline constexpr std::int32_t QV_E_UNAVAILABLE = detail::result(0x80004007u);
/// The output buffer is too small.
inline constexpr std::int32_t QV_E_BUFFERTOOSMALL = detail::result(0x80004009u);
/// No object of the library can be aggregated.
inline constexpr std::int32_t QV_E_NOAGGREGATION = detail::result(0x80040110u);
/// A module does not serve that class.
inline constexpr std::int32_t QV_E_CLASSNOTAVAILABLE = detail::result(0x80040111u);
/// No registration for that class id.
inline constexpr std::int32_t QV_E_CLASSNOTREGISTERED = detail::result(0x80040154u);
/// No class under that ProgID.
inline constexpr std::int32_t QV_E_UNKNOWNPROGID = detail::result(0x800401F3u);

inline constexpr std::int32_t QV_E_FILENOTFOUND = detail::result(0x80070002u);
inline constexpr std::int32_t QV_E_PATHNOTFOUND = detail::result(0x80070003u);
inline constexpr std::int32_t QV_E_TOOMANYFILES = detail::result(0x80070004u);
inline constexpr std::int32_t QV_E_ACCESSDENIED = detail::result(0x80070005u);
inline constexpr std::int32_t QV_E_INVALIDHANDLE = detail::result(0x80070006u);
inline constexpr std::int32_t QV_E_OUTOFMEMORY = detail::result(0x8007000Eu);
inline constexpr std::int32_t QV_E_ENDOFFILE = detail::result(0x80070026u);
inline constexpr std::int32_t QV_E_INVALIDARG = detail::result(0x80070057u);
/// A pipe whose reader is gone.
inline constexpr std::int32_t QV_E_BROKENPIPE = detail::result(0x8007006Du);
inline constexpr std::int32_t QV_E_DISKFULL = detail::result(0x80070070u);
/// A path that does not fit.
inline constexpr std::int32_t QV_E_PATHTOOLONG = detail::result(0x8007007Au);
/// A path that the system cannot spell.
inline constexpr std::int32_t QV_E_INVALIDNAME = detail::result(0x8007007Bu);
inline constexpr std::int32_t QV_E_BUSY = detail::result(0x800700AAu);
inline constexpr std::int32_t QV_E_ALREADYEXISTS = detail::result(0x800700B7u);
/// A lock released by a thread that does not hold it.
inline constexpr std::int32_t QV_E_NOTOWNER = detail::result(0x80070120u);
/// A semaphore posted beyond its greatest count.
inline constexpr std::int32_t QV_E_TOOMANYPOSTS = detail::result(0x8007012Au);
/// A wait that ran out of time.
inline constexpr std::int32_t QV_E_TIMEOUT = detail::result(0x800705B4u);

/// The data breaks the rules of its encoding.
inline constexpr std::int32_t QV_E_INVALIDCHARACTER = detail::result(0x8BB34101u);
/// A well-formed character that the encoding has no form for.
inline constexpr std::int32_t QV_E_UNMAPPABLECHARACTER = detail::result(0x8BB34102u);
/// No converter under that name.
inline constexpr std::int32_t QV_E_UNKNOWNENCODING = detail::result(0x8BB34103u);

} // namespace qv
