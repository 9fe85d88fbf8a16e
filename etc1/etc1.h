#pragma once

#include <cstdint>

namespace moktexture {

/// Decodes `width * height` pixels of blocks in raster order to RGBA8 (red first, alpha 255, rows of `width` pixels) and returns
/// their bytes, `width * height * 4`. With a null `blocks` or `pixels` nothing is decoded and the result is the same. Blocks
/// count by rounding both sides up to multiples of 4. At a width that is no multiple of 4, pixels beyond the right edge spill
/// into the next row; nothing is written outside the `width * height` pixels.
std::uint32_t DecompressETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height);

/// Encodes `width * height` RGBA8 pixels to blocks in raster order; alpha is dropped. Returns `width * height / 2`, also with a
/// null `pixels` or `out`, where nothing is encoded; 0 for a quality above 5 or for want of memory. Quality 0 and 1 try two quick
/// candidates, 2 and 3 search base colours around the averages, 4 and 5 further; the even ones measure errors plainly, the odd
/// ones by perceptual weights. `out` takes 8 bytes for every block, counted as by the decoder.
std::uint32_t CompressETC1(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           std::uint32_t quality);

}  // namespace moktexture
