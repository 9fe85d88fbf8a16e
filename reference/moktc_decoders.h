#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "moktc/block/block_variant.h"

/// @file
/// Reference forms of the MOKTC decoder: one walks over the pixels, the other over the cells, and both unpack blocks again
/// wherever they need them. decodeCells() gives the same pixels.

namespace moktexture::moktc {

/// RGBA8 pixels, red in the lowest byte, in rows of `width`.
struct PixelImage {
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint32_t> pixels;
};

/// How DecodeImage() reads a stream of blocks.
struct StreamRules {
    bool minimumTwoBlocks;  ///< the grid has at least two columns and two rows
    BlockVariant variant;
    bool wrap;  ///< neighbours beyond an edge are the blocks at the opposite edge; otherwise the edge's own blocks
    bool linearOrder;
};

/// Decodes a level of `width * height` pixels, pixel by pixel. `blocks` holds as many blocks as the grid. Does nothing if the
/// image has another size.
void DecodeImage(const std::uint8_t* blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height,
                 PixelImage& image);

/// Decodes a second-generation level through DecodeImage(): padded to whole blocks, then cropped to `width * height` RGBA8
/// pixels.
void DecodeLinear(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height, std::uint8_t* pixels);

/// Decodes a first-generation level, cell by cell. `blocks` holds levelBlockCount() blocks; `pixels` receives `width * height`
/// RGBA8 pixels, zeroes where no whole block lies. Returns the bytes of block data that the pixels cover, with sides of at least
/// two blocks, modulo 2 to the 32.
std::uint32_t DecodeTwiddled(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height,
                             std::uint8_t* pixels);

}  // namespace moktexture::moktc
