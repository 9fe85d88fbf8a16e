#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <vector>

#include "moktc/block/block_order.h"
#include "moktc/block/moktc_block.h"
#include "moktc/moktc.h"

namespace moktexture::moktc {

inline constexpr std::array<BlockVariant, 4> allVariants = {{{Rate::fourBpp, Generation::first},
                                                             {Rate::twoBpp, Generation::first},
                                                             {Rate::fourBpp, Generation::second},
                                                             {Rate::twoBpp, Generation::second}}};

inline std::ostream& operator<<(std::ostream& stream, const BlockVariant& variant) {
    return stream << bitsPerPixel(variant.rate) << " bpp, generation " << (variant.isSecondGeneration() ? 2 : 1);
}

}  // namespace moktexture::moktc

/// Levels of blocks for the tests, decoded through the codec's entry point.
namespace moktclevels {

struct Level {
    std::uint32_t width, height;
    moktexture::moktc::BlockVariant variant;

    std::size_t blockCount() const { return moktexture::moktc::levelBlockCount(width, height, variant); }
};

/// The level's pixels. `blocks` may be fewer than the level's; missing ones are zero.
inline std::vector<std::uint32_t> decode(const Level& level, std::vector<moktexture::moktc::Block> blocks) {
    blocks.resize(level.blockCount(), {0, 0});
    std::vector<std::uint32_t> pixels(std::size_t{level.width} * level.height, 0xDEADBEEF);
    const std::uint32_t generation = level.variant.isSecondGeneration() ? 1 : 0;
    moktexture::DecompressMOKTC(blocks.data(), pixels.data(), &level.width, &level.height, level.variant.is2bpp(), &generation);
    return pixels;
}

/// A block's pixels where all of its neighbours are equal to it.
inline std::vector<std::uint32_t> decodeAmongEquals(const moktexture::moktc::Block& block,
                                                    moktexture::moktc::BlockVariant variant) {
    const Level level = {blockWidth(variant.rate), moktexture::moktc::blockHeight, variant};
    return decode(level, std::vector(level.blockCount(), block));
}

}  // namespace moktclevels
