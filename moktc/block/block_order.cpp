#include "moktc/block/block_order.h"

#include <algorithm>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {
namespace {

/// Steps of a length that cover a size.
std::uint64_t stepsOver(std::uint32_t size, std::uint32_t step) {
    return (std::uint64_t{size} + step - 1) / step;
}

}  // namespace

std::uint64_t TwiddleIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y) {
    // Kept: sides that are no powers of two get places by the same rule, some of them beyond the data, where blocks are lost;
    // textures are stored so.
    const std::uint32_t shorter = std::min(blocksX, blocksY);
    const std::uint64_t alongLonger = blocksY < blocksX ? x : y;
    std::uint64_t index = 0;
    unsigned position = 0;
    for (; std::uint64_t{1} << position < shorter; ++position) {
        index |= std::uint64_t{y >> position & 1} << 2 * position;
        index |= std::uint64_t{x >> position & 1} << (2 * position + 1);
    }
    return index + (alongLonger >> position << 2 * position);
}

std::uint64_t BlockIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y, bool linear) {
    return linear ? std::uint64_t{y} * blocksX + x : TwiddleIndex(blocksX, blocksY, x, y);
}

std::uint64_t levelBlockCount(std::uint32_t width, std::uint32_t height, bool is2bpp, bool secondGeneration) {
    const std::uint32_t smallestSide = secondGeneration ? 1 : 2;
    return stepsOver(width, smallestSide * blockWidth(is2bpp)) * stepsOver(height, smallestSide * blockHeight) * smallestSide *
           smallestSide;
}

}  // namespace moktexture::moktc
