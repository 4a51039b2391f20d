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

/// QV_API_DATA marks exported data whose address is a template argument: an import declaration would make
/// that address no constant on Windows, where the linker finds it without one.
#if defined(_WIN32) && !defined(QVCL_BUILD)
#    define QV_API_DATA
#else
#    define QV_API_DATA QV_API
#endif

/// Marks an explicit instantiation of a template that the library exports.
#ifdef _WIN32
#    define QV_API_TEMPLATE QV_API
#else
#    define QV_API_TEMPLATE __attribute__((visibility("default")))
#endif
