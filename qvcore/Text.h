#pragma once

#include "qvcore/Core.h"

/// Text primitives on UTF-16 units. Order is code-unit order; case mapping is the simple mapping of
/// the Unicode basic multilingual plane, the same in every locale. Units outside it (surrogates)
/// map to themselves.
///
/// Thread safety: immutable, all of them.

/// Units in front of the terminator, at most 0x7FFFFFFF.
QVCORE_API int32_t QVStrLenW_32(const char16_t* text) QVCORE_NOEXCEPT;
/// Bytes in front of the terminator, at most 0x7FFFFFFF.
QVCORE_API int32_t QVStrLenA_32(const char* text) QVCORE_NOEXCEPT;

/// -1, 0 or 1 by code-unit order.
QVCORE_API int32_t QVStrCmpW(const char16_t* left, const char16_t* right) QVCORE_NOEXCEPT;
/// -1, 0 or 1 by the order of the lower-case forms.
QVCORE_API int32_t QVStrICmpW(const char16_t* left, const char16_t* right) QVCORE_NOEXCEPT;
/// -1, 0 or 1 by the order of the lower-case forms of exactly `count` units: a 0 unit is a unit
/// like any other, so that texts which carry their length compare whole.
QVCORE_API int32_t QVStrNICmpW(const char16_t* left, const char16_t* right,
                               int32_t count) QVCORE_NOEXCEPT;

/// The first index in `text` at which the `needleLength` units of `needle` stand, ignoring case,
/// or -1. An empty needle is found at 0.
QVCORE_API int32_t QVStrNIFindW(const char16_t* text, int32_t length, const char16_t* needle,
                                int32_t needleLength) QVCORE_NOEXCEPT;

/// The first `unit` in `text`, which may be the terminator itself, or null.
QVCORE_API const char16_t* QVStrChrW(const char16_t* text, char16_t unit) QVCORE_NOEXCEPT;

/// Takes one token in place. Skips units of `delimiters` at `*cursor`, returns null if nothing is
/// left; otherwise ends the token with a terminator and returns its start. `*cursor` is left behind
/// that terminator, or, when the token reaches the end of the text, on the text's own terminator.
QVCORE_API char16_t* QVStrTokW(char16_t** cursor, const char16_t* delimiters) QVCORE_NOEXCEPT;

QVCORE_API char16_t QVToLowerW(char16_t unit) QVCORE_NOEXCEPT;
QVCORE_API char16_t QVToUpperW(char16_t unit) QVCORE_NOEXCEPT;
/// Maps `length` units in place; a length of -1 means up to the terminator.
QVCORE_API void QVStrToLowerW(char16_t* text, int32_t length) QVCORE_NOEXCEPT;
QVCORE_API void QVStrToUpperW(char16_t* text, int32_t length) QVCORE_NOEXCEPT;
