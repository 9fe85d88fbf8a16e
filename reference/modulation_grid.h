#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {

/// The modulation of the four blocks around a MOKTC cell as stored: the 2-bit index of each pixel, and the mode bit (4 bpp) or
/// SubMode (2 bpp) of the pixel's block. At 4 bpp only the left half is used.
struct ModulationGrid {
    static constexpr std::uint32_t width = 2 * blockWidth(Rate::twoBpp);
    static constexpr std::uint32_t height = 2 * blockHeight;

    std::array<std::array<std::uint8_t, width>, height> indices;
    std::array<std::array<std::uint8_t, width>, height> modes;
};

/// Added by GetModulationValue() to the weight of a punch-through pixel, so that the sum differs from every weight.
inline constexpr std::uint32_t punchThroughOffset = 10;
inline constexpr std::uint32_t lowestPunchThrough = 11;

/// Writes a block's indices and modes to the grid, its first pixel at column x and row y. Aborts the process at 1 bit per pixel.
void UnpackMods(const Block& block, std::uint32_t bitsPerPixel, ModulationGrid& grid, std::uint32_t x, std::uint32_t y);

/// The interpolation weight of a pixel of the grid, 0 to 8, plus punchThroughOffset for a punch-through pixel. At 2 bpp the pixel
/// has neighbours on all sides.
std::uint32_t GetModulationValue(const ModulationGrid& grid, std::uint32_t bitsPerPixel, std::uint32_t x, std::uint32_t y);

}  // namespace moktexture::moktc
