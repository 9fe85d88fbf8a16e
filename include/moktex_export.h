#pragma once

/// @file
/// Marks what the shared library shows to its users.
///
/// Define MOKTEX_STATIC when you link the static form of the library; the installed CMake package does so by itself.

#if defined(MOKTEX_STATIC)
#define MOKTEX_API
#elif defined(_WIN32)
#if defined(MOKTEX_BUILDING_LIBRARY)
#define MOKTEX_API __declspec(dllexport)
#else
#define MOKTEX_API __declspec(dllimport)
#endif
#else
#define MOKTEX_API __attribute__((visibility("default")))
#endif
