#pragma once

#include <cstdint>

namespace moktexture {

/// Decodes `width * height` pixels from blocks in raster order to RGBA8 (red first, alpha 255, rows of `width` pixels without a
/// gap) and returns the size of the pixels in bytes, `width * height * 4`. With a null `blocks` or `pixels` it returns that size
/// and decodes nothing. The number of blocks is computed with both sides rounded up to multiples of 4. If the width is no
/// multiple of 4, pixels beyond the right edge spill into the next row; nothing is written outside the `width * height` pixels.
std::uint32_t DecompressETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height);

/// Encodes `width * height` RGBA8 pixels to blocks in raster order and drops alpha. Returns `width * height / 2`; with a null
/// `pixels` or `out` it returns that and encodes nothing. Returns 0 for a quality above 5 or if memory is short. Qualities 0 and
/// 1 try two quick candidates, 2 and 3 search base colours around the averages, 4 and 5 search further; the odd ones weight
/// errors perceptually. `out` takes 8 bytes per block, with the number of blocks computed as by the decoder.
std::uint32_t CompressETC1(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           std::uint32_t quality);

}  // namespace moktexture
