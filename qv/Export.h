#pragma once

/// QV_API marks what the library exports; everything else is hidden.
#ifdef _WIN32
#    ifdef QVCL_BUILD
#        define QV_API __declspec(dllexport)
#    else
#        define QV_API __declspec(dllimport)
#    endif
#else
#    define QV_API __attribute__((visibility("default")))
#endif

/// QV_FLAT_API marks a flat function: exported under its plain name.
#define QV_FLAT_API extern "C" QV_API

/// QV_API_DATA marks exported data whose address is a template argument: an import declaration
/// would make that address no constant on Windows, where the linker finds it without one.
#if defined(_WIN32) && !defined(QVCL_BUILD)
#    define QV_API_DATA
#else
#    define QV_API_DATA QV_API
#endif

/// QV_API_TEMPLATE marks a class template of which the library exports instances, and
/// QV_EXTERN_INSTANCE(class) declares such an instance, so that users do not make it again. A
/// user's module on Windows makes the instance's inline members itself: the library exports only
/// the others.
#if defined(_WIN32) && !defined(QVCL_BUILD)
#    define QV_API_TEMPLATE
#    define QV_EXTERN_INSTANCE(...) static_assert(true)
#else
#    define QV_API_TEMPLATE QV_API
#    define QV_EXTERN_INSTANCE(...) extern template class QV_API __VA_ARGS__
#endif
