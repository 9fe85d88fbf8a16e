#pragma once

#include <cstdint>

namespace moktexture {

/// Which of the five formats: 1 for DXT1 to 5 for DXT5.
using DXTMode = std::uint32_t;

/// Decodes `width * height` pixels from blocks in raster order to RGBA8 (red in the lowest byte, rows of `width` pixels). With a
/// null `blocks` or `pixels` it decodes nothing and returns the size of the pixels in bytes, `width * height * 4`. Otherwise it
/// returns 0, after a full decode too. A size that is no multiple of 4 is refused.
std::uint32_t DecompressDXTn(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                             const DXTMode* mode);

/// Encodes `width * height` RGBA8 pixels to blocks in raster order and returns their size in bytes: `width * height`, half of it
/// in mode 1. With a null `pixels` or `out` it returns that size and encodes nothing. A size that is no multiple of 4 is refused
/// with 0.
std::uint32_t CompressDXTn(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           const DXTMode* mode);

}  // namespace moktexture
