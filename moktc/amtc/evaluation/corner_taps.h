#pragma once

#include <array>
#include <cstdint>

/// @file
/// Corner palette cells as the encoder sees them: what colours a pixel's four levels stand for, and their indices in the word.

namespace moktexture::amtc {

/// By level, a colour of the 2 by 2 blocks around the pixel: 2 * position, row first, + 0 for A or 1 for B.
using CornerTaps = std::array<std::uint8_t, 4>;

// Row and column: pixel row and column of the footprint modulo 4. The pixel at 0, 0 is no tap.
// clang-format off
inline constexpr std::array<std::array<CornerTaps, 4>, 4> CornerPaletteTable = {{
    {{{0, 0, 0, 0}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}}},
    {{{0, 1, 4, 5}, {0, 1, 2, 5}, {0, 1, 2, 3}, {2, 3, 6, 1}}},
    {{{0, 1, 4, 5}, {0, 1, 4, 5}, {0, 3, 4, 7}, {2, 3, 6, 7}}},
    {{{0, 1, 4, 5}, {4, 5, 0, 7}, {4, 5, 6, 7}, {6, 7, 4, 3}}},
}};
// clang-format on
/// In the footprint's last row and column, whose cells begin beyond it.
inline constexpr CornerTaps lastRowTaps = {4, 5, 6, 7};
inline constexpr CornerTaps lastColumnTaps = {2, 3, 6, 7};

/// Taps of a pixel of a 9 by 9 footprint that is not at a multiple of 4 both ways.
constexpr const CornerTaps& cornerTapsAt(std::size_t row, std::size_t column) {
    if (row == 8) return lastRowTaps;
    return column == 8 ? lastColumnTaps : CornerPaletteTable[row % 4][column % 4];
}

// Row: a pixel of the block in raster order. Column: a level of a tap. Value: the index that says so in the modulation word.
// clang-format off
inline constexpr std::array<std::array<std::uint8_t, 4>, 16> CornerPaletteBits = {{
    {0, 3, 2, 1},
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
}};
// clang-format on

}  // namespace moktexture::amtc
