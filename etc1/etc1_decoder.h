#pragma once

#include "etc1/etc1_level.h"

namespace moktexture::etc1 {

/// What the block's bits say; any bits will do. Alpha is 255.
BlockPixels decodeBlock(const BlockWords& words);

/// Writes a decoded block whose first pixel is (x, y), which must lie in the level; pixels outside the level are dropped.
/// `split` is the block's.
void storeBlock(const BlockPixels& block, Split split, std::uint8_t* pixels, const Level& level, std::size_t x, std::size_t y);

}  // namespace moktexture::etc1
