#include <algorithm>
#include <cstring>
#include <vector>

#include "core/base/image_view.h"
#include "moktc/block/block_order.h"
#include "reference/colour_interpolation.h"
#include "reference/modulation_grid.h"
#include "reference/moktc_decoders.h"

namespace moktexture::moktc {
namespace {

/// The grid of a level's whole blocks.
struct TwiddledLevel {
    const std::uint8_t* blocks;
    std::uint64_t blockCount;
    std::uint32_t blocksX, blocksY;

    /// Coordinates wrap once. An index beyond the data, as some have if a side is not a power of two, reads as zero.
    Block blockAt(std::uint32_t x, std::uint32_t y) const {
        const std::uint64_t index = TwiddleIndex(blocksX, blocksY, x % blocksX, y % blocksY);
        return index < blockCount ? readBlock(blocks + index * bytesPerBlock) : Block{0, 0};
    }
};

struct TargetImage {
    std::uint8_t* pixels;
    std::size_t width;

    void set(std::size_t x, std::size_t y, std::uint32_t rgba) {
        std::memcpy(pixels + (y * width + x) * bytesPerRGBA8Pixel, &rgba, bytesPerRGBA8Pixel);
    }
};

ModulationGrid modulationAround(const Corners<Block>& corners, bool is2bpp) {
    ModulationGrid grid;
    for (std::uint32_t corner = 0; corner < 4; ++corner)
        UnpackMods(corners[corner], bitsPerPixel(rateOf(is2bpp)), grid, corner % 2 * blockWidth(rateOf(is2bpp)),
                   corner / 2 * blockHeight);
    return grid;
}

std::uint32_t cellPixel(const Corners<Colour>& a, const Corners<Colour>& b, bool is2bpp, const ModulationGrid& grid,
                        std::uint32_t dx, std::uint32_t dy) {
    const std::uint32_t value =
        GetModulationValue(grid, bitsPerPixel(rateOf(is2bpp)), blockWidth(rateOf(is2bpp)) / 2 + dx, blockHeight / 2 + dy);
    const bool isPunchThrough = value >= lowestPunchThrough;
    const std::uint32_t blended = blendColours(InterpolateColours(a, is2bpp, dx, dy), InterpolateColours(b, is2bpp, dx, dy),
                                               isPunchThrough ? value - punchThroughOffset : value);
    return isPunchThrough ? blended & colourMask : blended;
}

/// Decodes the cell between the centres of block (x - 1, y - 1) and block (x, y). Its quarters are stored in their own blocks.
void decodeCell(const TwiddledLevel& level, bool is2bpp, std::uint32_t x, std::uint32_t y, TargetImage& target) {
    const std::uint32_t left = (x + level.blocksX - 1) % level.blocksX, above = (y + level.blocksY - 1) % level.blocksY;
    const Corners<Block> corners = {level.blockAt(left, above), level.blockAt(x, above), level.blockAt(left, y),
                                    level.blockAt(x, y)};
    Corners<Colour> a, b;
    for (std::size_t corner = 0; corner < corners.size(); ++corner) {
        ColourPair pair;
        UnpackColours(corners[corner].colours, false, pair);
        a[corner] = pair.a;
        b[corner] = pair.b;
    }
    const ModulationGrid grid = modulationAround(corners, is2bpp);
    const std::uint32_t width = blockWidth(rateOf(is2bpp));
    for (std::uint32_t dy = 0; dy < blockHeight; ++dy) {
        const std::size_t row = dy < blockHeight / 2 ? std::size_t{above} * blockHeight + blockHeight / 2 + dy
                                                     : std::size_t{y} * blockHeight + dy - blockHeight / 2;
        for (std::uint32_t dx = 0; dx < width; ++dx) {
            const std::size_t column =
                dx < width / 2 ? std::size_t{left} * width + width / 2 + dx : std::size_t{x} * width + dx - width / 2;
            target.set(column, row, cellPixel(a, b, is2bpp, grid, dx, dy));
        }
    }
}

}  // namespace

std::uint32_t DecodeTwiddled(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height,
                             std::uint8_t* pixels) {
    const std::uint32_t workingWidth = std::max(width, 2 * blockWidth(rateOf(is2bpp))),
                        workingHeight = std::max(height, 2 * blockHeight);
    const TwiddledLevel level = {blocks, levelBlockCount(width, height, {rateOf(is2bpp), Generation::first}),
                                 workingWidth / blockWidth(rateOf(is2bpp)), workingHeight / blockHeight};
    std::vector<std::uint8_t> working(std::size_t{workingWidth} * workingHeight * bytesPerRGBA8Pixel);
    TargetImage target = {working.data(), workingWidth};
    for (std::uint32_t y = 0; y < level.blocksY; ++y) {
        for (std::uint32_t x = 0; x < level.blocksX; ++x)
            decodeCell(level, is2bpp, x, y, target);
    }
    const std::size_t rowBytes = width * bytesPerRGBA8Pixel;
    for (std::size_t y = 0; rowBytes != 0 && y < height; ++y)
        std::memcpy(pixels + y * rowBytes, working.data() + y * workingWidth * bytesPerRGBA8Pixel, rowBytes);
    return workingWidth * workingHeight / (8 / bitsPerPixel(rateOf(is2bpp)));
}

}  // namespace moktexture::moktc
