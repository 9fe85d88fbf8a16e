#pragma once

#include <cstdint>
#include <vector>

#include "moktc/block/block_order.h"
#include "moktc/block/moktc_block.h"
#include "moktc/moktc.h"

/// Levels of blocks for the tests, decoded through the codec's entry.
namespace moktclevels {

/// A size and a format.
struct Level {
    std::uint32_t width, height;
    bool is2bpp, secondGeneration;

    std::size_t blockCount() const { return moktexture::moktc::levelBlockCount(width, height, is2bpp, secondGeneration); }
};

/// The pixels, from buffers of exact size; `blocks` may be fewer than the level's.
inline std::vector<std::uint32_t> decode(const Level& level, std::vector<moktexture::moktc::Block> blocks) {
    blocks.resize(level.blockCount(), {0, 0});
    std::vector<std::uint32_t> pixels(std::size_t{level.width} * level.height, 0xDEADBEEF);
    const std::uint32_t generation = level.secondGeneration ? 1 : 0;
    moktexture::DecompressMOKTC(blocks.data(), pixels.data(), &level.width, &level.height, level.is2bpp, &generation);
    return pixels;
}

/// One block's pixels in a level of equal blocks, where nothing but the block itself is seen.
inline std::vector<std::uint32_t> decodeAmongEquals(const moktexture::moktc::Block& block, bool is2bpp, bool secondGeneration) {
    const Level level = {moktexture::moktc::blockWidth(is2bpp), moktexture::moktc::blockHeight, is2bpp, secondGeneration};
    return decode(level, std::vector(level.blockCount(), block));
}

}  // namespace moktclevels
