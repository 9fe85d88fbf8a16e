#include "reference/modulation_grid.h"

#include <cstdio>
#include <cstdlib>

namespace moktexture::moktc {
namespace {

/// The index of a pixel at 2 bpp; 0 for the pixels of an interpolated block that store none.
std::uint32_t index2bpp(const Block& block, SubMode subMode, std::uint32_t x, std::uint32_t y) {
    const std::uint32_t pixel = y * blockWidth(Rate::twoBpp) + x;
    if (subMode == SubMode::direct) return (block.modulation >> pixel & 1) != 0 ? directSetIndex : 0;
    return (x + y) % 2 == 0 ? indexAt(samplesOf(block.modulation), pixel / 2) : 0;
}

std::uint32_t weight2bpp(const ModulationGrid& grid, std::uint32_t x, std::uint32_t y) {
    return indexWeights[0][grid.indices[y][x]];
}

/// The weight of a pixel with odd x + y, from those of its neighbours.
std::uint32_t meanWeight(SubMode subMode, std::uint32_t left, std::uint32_t right, std::uint32_t above, std::uint32_t below) {
    if (subMode == SubMode::horizontal) return (left + right + 1) / 2;
    if (subMode == SubMode::vertical) return (above + below + 1) / 2;
    return (left + right + above + below + 2) / 4;
}

}  // namespace

void UnpackMods(const Block& block, std::uint32_t bitsPerPixel, ModulationGrid& grid, std::uint32_t x, std::uint32_t y) {
    if (bitsPerPixel == 1) {
        // Kept (abort-at-1-bpp): this rate was never finished. No format number leads here; a host that calls UnpackMods() with
        // it gets this message and an abort, as from the slow encoder.
        std::fputs("EXITING! 1BPP UnpackMods not yet implemented!\n", stderr);
        std::abort();
    }
    const bool is2bpp = bitsPerPixel == 2;
    const SubMode subMode = subModeOf(block);
    const auto mode = static_cast<std::uint8_t>(is2bpp ? static_cast<std::uint32_t>(subMode) : block.colours & modeBit);
    for (std::uint32_t row = 0; row < blockHeight; ++row) {
        for (std::uint32_t column = 0; column < blockWidth(rateOf(is2bpp)); ++column) {
            const std::uint32_t index = is2bpp ? index2bpp(block, subMode, column, row)
                                               : indexAt(block.modulation, row * blockWidth(Rate::fourBpp) + column);
            grid.indices[y + row][x + column] = static_cast<std::uint8_t>(index);
            grid.modes[y + row][x + column] = mode;
        }
    }
}

std::uint32_t GetModulationValue(const ModulationGrid& grid, std::uint32_t bitsPerPixel, std::uint32_t x, std::uint32_t y) {
    const std::uint32_t index = grid.indices[y][x], mode = grid.modes[y][x];
    if (bitsPerPixel != 2) return indexWeights[mode][index] + (mode != 0 && index == punchThroughIndex ? punchThroughOffset : 0);
    const auto subMode = static_cast<SubMode>(mode);
    if (subMode == SubMode::direct || (x + y) % 2 == 0) return weight2bpp(grid, x, y);
    return meanWeight(subMode, weight2bpp(grid, x - 1, y), weight2bpp(grid, x + 1, y), weight2bpp(grid, x, y - 1),
                      weight2bpp(grid, x, y + 1));
}

}  // namespace moktexture::moktc
