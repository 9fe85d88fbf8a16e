#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {

/// The modulation of the four blocks around a cell, as stored: 2-bit indices, and of each pixel's block the mode bit (4 bpp) or
/// the SubMode (2 bpp). At 4 bpp the left half is in use.
struct ModulationGrid {
    static constexpr std::uint32_t width = 2 * widestBlock;
    static constexpr std::uint32_t height = 2 * blockHeight;

    std::array<std::array<std::uint8_t, width>, height> indices;
    std::array<std::array<std::uint8_t, width>, height> modes;
};

/// What GetModulationValue() adds to the weight of a punch-through pixel; a sum stays distinct from every weight.
inline constexpr std::uint32_t punchThroughOffset = 10;
inline constexpr std::uint32_t lowestPunchThrough = 11;

/// Puts a block's indices and modes into the grid with its first pixel at column x, row y. Ends the process at 1 bit per pixel.
void UnpackMods(const Block& block, std::uint32_t bitsPerPixel, ModulationGrid& grid, std::uint32_t x, std::uint32_t y);

/// Eighths of colour B at a place of the grid, from 0 to 8, plus punchThroughOffset for a punch-through pixel. At 2 bpp the place
/// has neighbours on all sides.
std::uint32_t GetModulationValue(const ModulationGrid& grid, std::uint32_t bitsPerPixel, std::uint32_t x, std::uint32_t y);

}  // namespace moktexture::moktc
