#include "moktc/decode/decode_image.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "moktc/block/block_order.h"
#include "moktc/block/colour_interpolation.h"
#include "moktc/block/corner_palette.h"
#include "moktc/block/modulation_grid.h"
#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {
namespace {

struct Surface {
    const std::uint8_t* blocks;
    StreamRules rules;
    std::uint32_t blocksX, blocksY;

    bool is2bpp() const { return rules.bitsPerPixel == 2; }
    /// Twiddled places outside the grid's data read as zero.
    Block blockAt(std::uint64_t place) const {
        const bool isInside = place < std::uint64_t{blocksX} * blocksY;
        return isInside ? readBlock(blocks + place * bytesPerBlock) : Block{0, 0};
    }
};

/// The blocks around a pixel, unpacked.
struct Neighbourhood {
    Corners<std::uint64_t> places;
    Corners<bool> isFlat;
    Corners<ColourPair> pairs;
    Corners<Colour> a, b;
    ModulationGrid grid;
    CornerPalette palette;  ///< only if the upper left block is flat
};

/// A pixel's place in the cell between four blocks' centres.
struct CellPlace {
    std::uint32_t dx, dy;
    std::uint32_t gridX, gridY;
};

/// Blocks of `length` pixels that cover a side.
std::uint32_t blocksIn(std::uint32_t size, std::uint32_t length) {
    return static_cast<std::uint32_t>((std::uint64_t{size} + length - 1) / length);
}

/// The two columns or rows of blocks nearest to a coordinate, of `count` that are `length` pixels long.
std::array<std::uint32_t, 2> nearestBlocks(std::uint32_t coordinate, std::uint32_t length, std::uint32_t count, bool wrap) {
    const std::uint32_t block = coordinate / length;
    const bool isInFirstHalf = coordinate % length < length / 2;
    const std::uint32_t previous = block != 0 ? block - 1 : wrap ? count - 1 : 0;
    const std::uint32_t next = block + 1 < count ? block + 1 : wrap ? 0 : count - 1;
    return isInFirstHalf ? std::array{previous, block} : std::array{block, next};
}

Corners<std::uint64_t> placesAround(const Surface& surface, std::uint32_t x, std::uint32_t y) {
    const auto columns = nearestBlocks(x, blockWidth(surface.is2bpp()), surface.blocksX, surface.rules.wrap);
    const auto rows = nearestBlocks(y, blockHeight, surface.blocksY, surface.rules.wrap);
    Corners<std::uint64_t> places;
    for (std::size_t corner = 0; corner < places.size(); ++corner)
        places[corner] =
            BlockIndex(surface.blocksX, surface.blocksY, columns[corner % 2], rows[corner / 2], surface.rules.linearOrder);
    return places;
}

void unpackBlocks(const Surface& surface, Neighbourhood& around) {
    for (std::uint32_t corner = 0; corner < 4; ++corner) {
        const Block block = surface.blockAt(around.places[corner]);
        around.isFlat[corner] = UnpackColours(block.colours, surface.rules.secondGeneration, around.pairs[corner]);
        around.a[corner] = around.pairs[corner].a;
        around.b[corner] = around.pairs[corner].b;
        UnpackMods(block, surface.rules.bitsPerPixel, around.grid, corner % 2 * blockWidth(surface.is2bpp()),
                   corner / 2 * blockHeight);
    }
    if (around.isFlat[0]) around.palette = BuildCornerPalette(around.pairs);
}

CellPlace placeInCell(std::uint32_t x, std::uint32_t y, bool is2bpp) {
    const std::uint32_t width = blockWidth(is2bpp);
    const std::uint32_t dx = (x + width / 2) % width, dy = (y + blockHeight / 2) % blockHeight;
    return {dx, dy, width / 2 + dx, blockHeight / 2 + dy};
}

std::uint32_t upscaledPixel(const Surface& surface, const Neighbourhood& around, const CellPlace& place) {
    const bool is2bpp = surface.is2bpp();
    const std::uint32_t value = GetModulationValue(around.grid, surface.rules.bitsPerPixel, place.gridX, place.gridY);
    const bool isPunchThrough = value >= lowestPunchThrough;
    // Kept: a punch-through pixel of the second generation is black, not the colour of its surroundings as in the first.
    if (isPunchThrough && surface.rules.secondGeneration) return 0;
    const std::uint32_t blended = blendColours(InterpolateColours(around.a, is2bpp, place.dx, place.dy),
                                               InterpolateColours(around.b, is2bpp, place.dx, place.dy),
                                               isPunchThrough ? value - punchThroughOffset : value);
    return isPunchThrough ? blended & colourMask : blended;
}

/// The corner whose block a pixel of the cell lies in.
std::uint32_t ownCorner(const CellPlace& place, bool is2bpp) {
    return (place.dy >= blockHeight / 2 ? 2u : 0u) + (place.dx >= blockWidth(is2bpp) / 2 ? 1u : 0u);
}

std::uint32_t flatPixel(const Surface& surface, const Neighbourhood& around, const CellPlace& place) {
    const std::uint32_t index = around.grid.indices[place.gridY][place.gridX];
    std::uint32_t weight = 0;
    if (surface.is2bpp()) {
        weight = GetModulationValue(around.grid, surface.rules.bitsPerPixel, place.gridX, place.gridY);
    } else {
        const bool hasModeBit = around.grid.modes[place.gridY][place.gridX] != 0;
        if (hasModeBit && (place.dx != 0 || place.dy != 0)) return CornerPaletteColour(around.palette, place.dx, place.dy, index);
        // Kept: the mode bit changes no weight of a flat cell, and nothing is punched through; encoders count on all four steps.
        weight = indexWeights[0][index];
    }
    const ColourPair& own = around.pairs[ownCorner(place, surface.is2bpp())];
    return blendColours(ExpandColour(own.a), ExpandColour(own.b), weight);
}

}  // namespace

void DecodeImage(const std::uint8_t* blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height,
                 PixelImage& image) {
    if (image.width != width || image.height != height) return;
    const std::uint32_t fewest = rules.minimumTwoBlocks ? 2 : 1;
    const Surface surface = {blocks, rules, std::max(blocksIn(width, blockWidth(rules.bitsPerPixel == 2)), fewest),
                             std::max(blocksIn(height, blockHeight), fewest)};
    Neighbourhood around{};
    around.places.fill(~std::uint64_t{0});
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const Corners<std::uint64_t> places = placesAround(surface, x, y);
            if (places != around.places) {
                around.places = places;
                unpackBlocks(surface, around);
            }
            const CellPlace place = placeInCell(x, y, surface.is2bpp());
            // Kept: of the four blocks only the upper left one's flat flag counts, also in the quarters of the other three.
            image.pixels[std::size_t{y} * width + x] =
                around.isFlat[0] ? flatPixel(surface, around, place) : upscaledPixel(surface, around, place);
        }
    }
}

void DecodeLinear(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height, std::uint8_t* pixels) {
    const std::uint32_t paddedWidth = blocksIn(width, blockWidth(is2bpp)) * blockWidth(is2bpp),
                        paddedHeight = blocksIn(height, blockHeight) * blockHeight;
    PixelImage image = {paddedWidth, paddedHeight, std::vector<std::uint32_t>(std::size_t{paddedWidth} * paddedHeight)};
    // Kept: a surface of one block wraps onto itself, and neighbours wrap at the padded size, not at the picture's edge.
    DecodeImage(blocks, {false, true, bitsPerPixel(is2bpp), true, true}, paddedWidth, paddedHeight, image);
    for (std::size_t y = 0; width != 0 && y < height; ++y)
        std::memcpy(pixels + y * width * bytesPerPixel, &image.pixels[y * paddedWidth], width * bytesPerPixel);
}

}  // namespace moktexture::moktc
