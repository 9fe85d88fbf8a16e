#pragma once

#include <bit>

/// @file
/// MOKTEX_API marks the symbols that the shared library exports.
///
/// Define MOKTEX_STATIC when you link the static library; the installed CMake package defines it for you.

static_assert(std::endian::native == std::endian::little,
              "MOKTexLib runs on little-endian processors only: pixels and headers have the byte order of files in memory too.");

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
