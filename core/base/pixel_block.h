#pragma once

#include <array>
#include <cstring>

#include "core/base/image_view.h"

/// @file
/// Blocks of 4 by 4 RGBA8 pixels, the unit of the ETC1 and DXTn codecs.

namespace moktexture {

inline constexpr std::size_t blockEdge = 4;
inline constexpr std::size_t blockArea = 16;

/// A block's pixels in raster order, red in the lowest byte.
using PixelBlock = std::array<std::uint32_t, blockArea>;

/// Copies the block whose first pixel is (x, y). All of it must lie in the image.
inline PixelBlock loadBlock(const ConstImageView& image, std::size_t x, std::size_t y) {
    PixelBlock block;
    const std::uint8_t* source = image.pixels + y * image.rowBytes + x * bytesPerRGBA8Pixel;
    for (std::size_t row = 0; row < blockEdge; ++row)
        std::memcpy(&block[row * blockEdge], source + row * image.rowBytes, blockEdge * bytesPerRGBA8Pixel);
    return block;
}

/// Writes a block whose first pixel is (x, y). All of it must lie in the image.
inline void storeBlock(const PixelBlock& block, const ImageView& image, std::size_t x, std::size_t y) {
    std::uint8_t* target = image.pixels + y * image.rowBytes + x * bytesPerRGBA8Pixel;
    for (std::size_t row = 0; row < blockEdge; ++row)
        std::memcpy(target + row * image.rowBytes, &block[row * blockEdge], blockEdge * bytesPerRGBA8Pixel);
}

}  // namespace moktexture
