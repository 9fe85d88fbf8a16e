#pragma once

#include <cstdint>

/// @file
/// Where the block of a column and a row of the grid stands in a level's data.

namespace moktexture::moktc {

/// The first generation's order: Morton order with y in the even bits; in a grid that is not square, one Morton square after the
/// other along the longer side. (x, y) lies in the grid. If a side is no power of two, some places lie beyond the grid's area.
std::uint64_t TwiddleIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y);

/// The place in linear order, which is the second generation's, or in twiddled order.
std::uint64_t BlockIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y, bool linear);

/// Blocks in the data of a level of `width * height` pixels, fewer than 2 to the 40: sides count as rounded up to the smallest
/// level's, two blocks in the first generation and one in the second.
std::uint64_t levelBlockCount(std::uint32_t width, std::uint32_t height, bool is2bpp, bool secondGeneration);

}  // namespace moktexture::moktc
