#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/colour_interpolation.h"
#include "moktc/block/moktc_block.h"

/// @file
/// Second generation at 4 bpp: in a flat cell the pixels of blocks with the mode bit choose among the colours of all four
/// corners.

namespace moktexture::moktc {

/// RGBA8 colours in the order of cornerEntries.
using CornerPalette = std::array<std::uint32_t, 8>;

// Row: a colour pair of the palette. Value: the corner that it comes from.
inline constexpr std::array<std::uint8_t, 4> paletteCorners = {0, 3, 1, 2};

// Row: a pixel of the cell, 4 * dy + dx. Column: its 2-bit index. Value: the entry of the palette, A of a corner if even and B if
// odd: 0 and 1 of the upper left, 2 and 3 of the lower right, 4 and 5 of the upper right, 6 and 7 of the lower left.
// clang-format off
inline constexpr std::array<std::array<std::uint8_t, 4>, 16> cornerEntries = {{
    {0, 0, 0, 0},  // not used: the pixel at the corner itself blends its own block's colours
    {0, 1, 4, 5},
    {0, 1, 4, 5},
    {0, 1, 4, 5},
    {0, 1, 6, 7},
    {0, 1, 4, 7},
    {0, 1, 4, 5},
    {2, 1, 4, 5},
    {0, 1, 6, 7},
    {0, 1, 6, 7},
    {0, 3, 6, 5},
    {2, 3, 4, 5},
    {0, 1, 6, 7},
    {0, 3, 6, 7},
    {2, 3, 6, 7},
    {2, 3, 6, 5},
}};
// clang-format on

constexpr CornerPalette BuildCornerPalette(const Corners<ColourPair>& corners) {
    CornerPalette palette{};
    for (std::size_t pair = 0; pair < paletteCorners.size(); ++pair) {
        palette[2 * pair] = ExpandColour(corners[paletteCorners[pair]].a);
        palette[2 * pair + 1] = ExpandColour(corners[paletteCorners[pair]].b);
    }
    return palette;
}

/// The colour of pixel (dx, dy) of a cell, which is not (0, 0), by its 2-bit index.
constexpr std::uint32_t CornerPaletteColour(const CornerPalette& palette, std::uint32_t dx, std::uint32_t dy,
                                            std::uint32_t index) {
    return palette[cornerEntries[4 * dy + dx][index]];
}

}  // namespace moktexture::moktc
