#pragma once

#include "etc1/etc1_block.h"

/// @file
/// Blocks and the pixels of an image. The blocks at the right and bottom edges overhang an image whose sides are no multiples of
/// 4. Pixel (x, y) is taken for number `y * width + x` of the image's pixels, also where x is not below the width; the rows of
/// the image must follow each other without a gap.
///
///   an image 6 pixels wide          its second block covers
///   0  1  2  3  4  5                   4  5  6  7
///   6  7  8  9 10 11                  10 11 12 13        6 and 7 begin the next row
///  12 13 14 15 16 17                  16 17 18 19
///  18 19 20 21 22 23                  22 23 24 25        24 and 25 are outside the image
///
/// Kept (etc1-overhang-spills): pixels beyond the right edge are the first ones of the next row, not dropped or repeated, so that
/// .mok and KTX files whose width is no multiple of 4 decode and encode to the pixels that hosts have always got.

namespace moktexture::etc1 {

/// Reads the block whose first pixel is (x, y), which must lie in the image. Pixels below the image repeat its last row.
PixelBlock readBlock(const ConstImageView& image, std::size_t x, std::size_t y);

/// Decodes a block; any bits are valid. Alpha is 255.
PixelBlock decodeBlock(const BlockWords& words);

/// Writes a decoded block whose first pixel is (x, y), which must lie in the image; pixels below the image are dropped. `split`
/// is the block's.
void writeBlock(const PixelBlock& block, Split split, const ImageView& image, std::size_t x, std::size_t y);

}  // namespace moktexture::etc1
