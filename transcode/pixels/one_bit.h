#pragma once

#include <cstdint>

/// @file
/// eFmtBW1bpp: eight pixels in a byte, in memory order with nothing between rows, the first pixel in bit 0.

namespace moktexture {

/// Encodes one RGBA8 slice: a pixel whose mean of R, G and B, rounded down, is 128 or more sets its bit. Pixels of an incomplete
/// last byte are dropped. Returns `width * height >> 3`, without working if a pointer is null.
int encode1bpp(const void* rgba, void* bits, const std::uint32_t* width, const std::uint32_t* height);

/// Decodes one slice to RGBA8, black or white with alpha 255. Returns `width * height * 4`, without working if a pointer is null.
int decode1bpp(const void* bits, void* rgba, const std::uint32_t* width, const std::uint32_t* height);

}  // namespace moktexture
