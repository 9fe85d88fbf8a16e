#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace moktexture::moktc {

/// RGBA8 pixels, red in the lowest byte, in rows of `width`.
struct PixelImage {
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint32_t> pixels;
};

/// What a stream of blocks is to DecodeImage().
struct StreamRules {
    bool minimumTwoBlocks;  ///< the grid has at least two columns and two rows
    bool secondGeneration;
    std::uint32_t bitsPerPixel;  ///< 2 or 4
    bool wrap;                   ///< neighbours beyond an edge are those at the opposite one; else the edge's own blocks
    bool linearOrder;
};

/// Decodes a surface of `width * height` pixels, pixel by pixel: the plain form. `blocks` holds as many blocks as the grid. Does
/// nothing if the image has another size.
void DecodeImage(const std::uint8_t* blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height,
                 PixelImage& image);

/// The second generation's surfaces through DecodeImage(): padded to whole blocks, and cropped to `width * height` RGBA8 pixels.
/// Raises `std::bad_alloc`.
void DecodeLinear(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height, std::uint8_t* pixels);

}  // namespace moktexture::moktc
