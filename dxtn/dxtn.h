#pragma once

#include <cstdint>

namespace moktexture {

/// Which of the five formats: 1 for DXT1 up to 5 for DXT5.
using DXTMode = std::uint32_t;

/// Decodes `width * height` pixels of blocks in raster order to RGBA8 (red in the lowest byte, rows of `width` pixels).
/// With a null `blocks` or `pixels` nothing is decoded and the result is the bytes needed, `width * height * 4`; a size that is
/// no multiple of 4 is refused with 0. Also 0 after a full decode.
std::uint32_t DecompressDXTn(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                             const DXTMode* mode);

/// Encodes `width * height` RGBA8 pixels to blocks in raster order and returns their bytes: `width * height`, half of it in
/// mode 1. With a null `pixels` or `out` nothing is encoded and the result is that size; a size that is no multiple of 4 is
/// refused with 0.
std::uint32_t CompressDXTn(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           const DXTMode* mode);

}  // namespace moktexture
