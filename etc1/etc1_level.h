#pragma once

#include <cstring>

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// Where the pixels of a block lie in a level of rows without gaps, also of blocks that overhang it.
/// Kept: columns beyond the right edge are the first ones of the next row, not dropped or repeated; decoded and encoded textures
/// whose width is no multiple of 4 stay as they always were.
struct Level {
    std::size_t width;
    std::size_t height;

    std::size_t pixelCount() const { return width * height; }
    bool holdsBlock(std::size_t x, std::size_t y) const { return width - x >= blockEdge && height - y >= blockEdge; }
    std::size_t indexOf(std::size_t x, std::size_t y) const { return y * width + x; }
    /// As `indexOf`, with what lies below the level taken from the nearest row inside. The level must not be empty.
    std::size_t indexInside(std::size_t x, std::size_t y) const {
        const std::size_t index = indexOf(x, y);
        return index < pixelCount() ? index : (height - 1) * width + index % width;
    }
};

/// Reads the block whose first pixel is (x, y), which must lie in the level.
inline BlockPixels readBlock(const std::uint8_t* pixels, const Level& level, std::size_t x, std::size_t y) {
    BlockPixels block;
    if (level.holdsBlock(x, y)) {
        for (std::size_t row = 0; row < blockEdge; ++row)
            std::memcpy(&block[row * blockEdge], pixels + level.indexOf(x, y + row) * bytesPerPixel, blockEdge * bytesPerPixel);
        return block;
    }
    for (std::size_t place = 0; place < blockArea; ++place) {
        const std::size_t index = level.indexInside(x + place % blockEdge, y + place / blockEdge);
        std::memcpy(&block[place], pixels + index * bytesPerPixel, bytesPerPixel);
    }
    return block;
}

}  // namespace moktexture::etc1
