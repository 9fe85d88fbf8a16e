#pragma once

#include <cstdint>
#include <vector>

#include "core/base/image_view.h"

/// @file
/// Entry points of the MOKTC codec: one level of one image per call. Pixels are RGBA8, red in the lowest byte, rows packed.

namespace moktexture {

/// Decodes a level of `*width * *height` pixels. `is2bpp` selects 2 bits per pixel, otherwise 4; `*secondGeneration` is 0 for the
/// first generation (twiddled order), any other value for the second (linear order). `blocks` holds the level's data as
/// `getDataSize` counts it, with sides rounded up to the format's smallest level.
///
/// Returns the size of the pixels in bytes, `width * height * 4`, modulo 2 to the 32. With a null `blocks` or `pixels` nothing is
/// decoded (a size query). Returns 0 and writes nothing if the number of bytes of pixels or bits of blocks exceeds 32 bits, or if
/// one of the other pointers is null.
std::uint32_t DecompressMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              std::uint8_t is2bpp, const std::uint32_t* secondGeneration);

/// Encodes a level of `*width * *height` pixels. `secondGeneration` is 0 or 1.
///
/// First generation: sides must be multiples of the block; quality 0 is the fast compressor, 1 to 5 are the efforts 0 to 4 of the
/// slow one. Second generation: any sides, padded to whole blocks; quality 0 to 4 is the effort of the slow compressor. A higher
/// quality is clamped. `hasAlpha` has no effect: translucency comes from the pixels.
///
/// `destination` holds 8 bytes for every block of the size rounded up to whole blocks. The result is the size without that
/// rounding, `width * height * bits per pixel / 8`. With a null `pixels` or `destination` nothing is encoded (a size query).
/// Returns 0 if a side exceeds 4096, if a first-generation side is not a multiple of the block, for any other generation, if
/// `width` or `height` is null, and if the slow encoder fails to allocate its working memory; other failed allocations throw
/// std::bad_alloc.
std::uint32_t CompressMOKTC(const void* pixels, void* destination, const std::uint32_t* width, const std::uint32_t* height,
                            bool hasAlpha, bool is2bpp, std::uint32_t secondGeneration, std::uint32_t quality);

}  // namespace moktexture

namespace moktexture::moktc {

/// Copies an image, neither side 0, into the upper left corner of one of `paddedWidth * paddedHeight` packed RGBA8 pixels, and
/// fills the rest by repeating first the last columns, then the last rows, in their order. An image smaller than the padding is
/// repeated cyclically.
std::vector<std::uint8_t> padByRepeating(const ConstImageView& image, std::uint32_t paddedWidth, std::uint32_t paddedHeight);

}  // namespace moktexture::moktc
