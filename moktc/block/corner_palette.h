#pragma once

#include <array>
#include <cstdint>

/// @file
/// Second generation at 4 bpp: in a flat cell the pixels of blocks with the mode bit are not blended. Each takes one of the eight
/// colours of the cell's four corners, by its 2-bit index and its position in the cell.

namespace moktexture::moktc {

/// One value for each of the four blocks around a cell: upper left, upper right, lower left, lower right.
template <typename Sample>
using Corners = std::array<Sample, 4>;

/// RGBA8 colours, red in the lowest byte. The pairs A, B of the corners in `paletteCorners` order.
using CornerPalette = std::array<std::uint32_t, 8>;

/// Corners in palette order: entries 0 and 1 are A and B of the upper left corner, 2 and 3 of the lower right, 4 and 5 of the
/// upper right, 6 and 7 of the lower left.
inline constexpr std::array<std::uint8_t, 4> paletteCorners = {0, 3, 1, 2};

/// Palette entry by pixel of the cell and 2-bit index.
// clang-format off
inline constexpr std::array<std::array<std::uint8_t, 4>, 16> cornerEntries = {{
//   0  1  2  3     index     dy, dx
    {0, 0, 0, 0},  // unused  0, 0: the pixel at the corner blends the colours of its own block
    {0, 1, 4, 5},  //         0, 1
    {0, 1, 4, 5},  //         0, 2
    {0, 1, 4, 5},  //         0, 3
    {0, 1, 6, 7},  //         1, 0
    {0, 1, 4, 7},  //         1, 1
    {0, 1, 4, 5},  //         1, 2
    {2, 1, 4, 5},  //         1, 3
    {0, 1, 6, 7},  //         2, 0
    {0, 1, 6, 7},  //         2, 1
    {0, 3, 6, 5},  //         2, 2
    {2, 3, 4, 5},  //         2, 3
    {0, 1, 6, 7},  //         3, 0
    {0, 3, 6, 7},  //         3, 1
    {2, 3, 6, 7},  //         3, 2
    {2, 3, 6, 5},  //         3, 3
}};
// clang-format on

/// The colour of pixel (dx, dy) of a cell, not (0, 0), by its 2-bit index.
constexpr std::uint32_t CornerPaletteColour(const CornerPalette& palette, std::uint32_t dx, std::uint32_t dy,
                                            std::uint32_t index) {
    return palette[cornerEntries[4 * dy + dx][index]];
}

}  // namespace moktexture::moktc
