#include <algorithm>
#include <array>
#include <cstring>

#include "core/base/image_view.h"
#include "moktc/block/block_order.h"
#include "reference/colour_interpolation.h"
#include "reference/modulation_grid.h"
#include "reference/moktc_decoders.h"

namespace moktexture::moktc {
namespace {

struct BlockStream {
    const std::uint8_t* blocks;
    StreamRules rules;
    std::uint32_t blocksX, blocksY;

    Rate rate() const { return rules.variant.rate; }
    /// Twiddled indices beyond the data read as zero.
    Block blockAt(std::uint64_t index) const {
        const bool isInside = index < std::uint64_t{blocksX} * blocksY;
        return isInside ? readBlock(blocks + index * bytesPerBlock) : Block{0, 0};
    }
};

/// The blocks around a pixel, unpacked.
struct Neighbourhood {
    Corners<std::uint64_t> blockIndices;
    Corners<bool> isFlat;
    Corners<ColourPair> pairs;
    Corners<Colour> a, b;
    ModulationGrid grid;
    CornerPalette palette;  ///< only if the upper left block is flat
};

/// A pixel's column and row in its cell and in the modulation grid.
struct CellPosition {
    std::uint32_t dx, dy;
    std::uint32_t gridX, gridY;
};

/// Number of blocks of `length` pixels that cover a side.
std::uint32_t blocksIn(std::uint32_t size, std::uint32_t length) {
    return static_cast<std::uint32_t>((std::uint64_t{size} + length - 1) / length);
}

/// The two columns (rows) of blocks nearest to a coordinate, among `count` columns that are `length` pixels wide.
std::array<std::uint32_t, 2> nearestBlocks(std::uint32_t coordinate, std::uint32_t length, std::uint32_t count, bool wrap) {
    const std::uint32_t block = coordinate / length;
    const bool isInFirstHalf = coordinate % length < length / 2;
    const std::uint32_t previous = block != 0 ? block - 1 : wrap ? count - 1 : 0;
    const std::uint32_t next = block + 1 < count ? block + 1 : wrap ? 0 : count - 1;
    return isInFirstHalf ? std::array{previous, block} : std::array{block, next};
}

Corners<std::uint64_t> indicesAround(const BlockStream& stream, std::uint32_t x, std::uint32_t y) {
    const auto columns = nearestBlocks(x, blockWidth(stream.rate()), stream.blocksX, stream.rules.wrap);
    const auto rows = nearestBlocks(y, blockHeight, stream.blocksY, stream.rules.wrap);
    Corners<std::uint64_t> indices;
    for (std::size_t corner = 0; corner < indices.size(); ++corner)
        indices[corner] =
            BlockIndex(stream.blocksX, stream.blocksY, columns[corner % 2], rows[corner / 2], stream.rules.linearOrder);
    return indices;
}

void unpackBlocks(const BlockStream& stream, Neighbourhood& around) {
    for (std::uint32_t corner = 0; corner < 4; ++corner) {
        const Block block = stream.blockAt(around.blockIndices[corner]);
        around.isFlat[corner] = UnpackColours(block.colours, stream.rules.variant.isSecondGeneration(), around.pairs[corner]);
        around.a[corner] = around.pairs[corner].a;
        around.b[corner] = around.pairs[corner].b;
        UnpackMods(block, bitsPerPixel(stream.rate()), around.grid, corner % 2 * blockWidth(stream.rate()),
                   corner / 2 * blockHeight);
    }
    if (around.isFlat[0]) around.palette = BuildCornerPalette(around.pairs);
}

CellPosition positionInCell(std::uint32_t x, std::uint32_t y, Rate rate) {
    const std::uint32_t width = blockWidth(rate);
    const std::uint32_t dx = (x + width / 2) % width, dy = (y + blockHeight / 2) % blockHeight;
    return {dx, dy, width / 2 + dx, blockHeight / 2 + dy};
}

std::uint32_t upscaledPixel(const BlockStream& stream, const Neighbourhood& around, const CellPosition& position) {
    const bool is2bpp = stream.rules.variant.is2bpp();
    const std::uint32_t value = GetModulationValue(around.grid, bitsPerPixel(stream.rate()), position.gridX, position.gridY);
    const bool isPunchThrough = value >= lowestPunchThrough;
    if (isPunchThrough && stream.rules.variant.isSecondGeneration()) return 0;
    const std::uint32_t blended = blendColours(InterpolateColours(around.a, is2bpp, position.dx, position.dy),
                                               InterpolateColours(around.b, is2bpp, position.dx, position.dy),
                                               isPunchThrough ? value - punchThroughOffset : value);
    return isPunchThrough ? blended & colourMask : blended;
}

/// The corner whose block a pixel of the cell lies in.
std::uint32_t ownCorner(const CellPosition& position, Rate rate) {
    return (position.dy >= blockHeight / 2 ? 2u : 0u) + (position.dx >= blockWidth(rate) / 2 ? 1u : 0u);
}

std::uint32_t flatPixel(const BlockStream& stream, const Neighbourhood& around, const CellPosition& position) {
    const std::uint32_t index = around.grid.indices[position.gridY][position.gridX];
    std::uint32_t weight = 0;
    if (stream.rules.variant.is2bpp()) {
        weight = GetModulationValue(around.grid, bitsPerPixel(stream.rate()), position.gridX, position.gridY);
    } else {
        const bool hasModeBit = around.grid.modes[position.gridY][position.gridX] != 0;
        if (hasModeBit && (position.dx != 0 || position.dy != 0))
            return CornerPaletteColour(around.palette, position.dx, position.dy, index);
        weight = indexWeights[0][index];
    }
    const ColourPair& own = around.pairs[ownCorner(position, stream.rate())];
    return blendColours(ExpandColour(own.a), ExpandColour(own.b), weight);
}

}  // namespace

void DecodeImage(const std::uint8_t* blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height,
                 PixelImage& image) {
    if (image.width != width || image.height != height) return;
    const std::uint32_t fewest = rules.minimumTwoBlocks ? 2 : 1;
    const BlockStream stream = {blocks, rules, std::max(blocksIn(width, blockWidth(rules.variant.rate)), fewest),
                                std::max(blocksIn(height, blockHeight), fewest)};
    Neighbourhood around{};
    around.blockIndices.fill(~std::uint64_t{0});
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const Corners<std::uint64_t> indices = indicesAround(stream, x, y);
            if (indices != around.blockIndices) {
                around.blockIndices = indices;
                unpackBlocks(stream, around);
            }
            const CellPosition position = positionInCell(x, y, stream.rate());
            image.pixels[std::size_t{y} * width + x] =
                around.isFlat[0] ? flatPixel(stream, around, position) : upscaledPixel(stream, around, position);
        }
    }
}

void DecodeLinear(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height, std::uint8_t* pixels) {
    const Rate rate = rateOf(is2bpp);
    const std::uint32_t paddedWidth = blocksIn(width, blockWidth(rate)) * blockWidth(rate),
                        paddedHeight = blocksIn(height, blockHeight) * blockHeight;
    PixelImage image = {paddedWidth, paddedHeight, std::vector<std::uint32_t>(std::size_t{paddedWidth} * paddedHeight)};
    DecodeImage(blocks, {false, {rate, Generation::second}, true, true}, paddedWidth, paddedHeight, image);
    for (std::size_t y = 0; width != 0 && y < height; ++y)
        std::memcpy(pixels + y * width * bytesPerRGBA8Pixel, &image.pixels[y * paddedWidth], width * bytesPerRGBA8Pixel);
}

}  // namespace moktexture::moktc
