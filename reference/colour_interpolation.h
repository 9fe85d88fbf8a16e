#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"

/// @file
/// MOKTC colours of single pixels, for the reference decoders. Colours are RGBA8, red in the lowest byte.

namespace moktexture::moktc {

constexpr std::uint32_t packRGBA(std::uint32_t r, std::uint32_t g, std::uint32_t b, std::uint32_t a) {
    return r | g << 8 | b << 16 | a << 24;
}

/// The colour interpolated between four corners at column dx and row dy of a cell, both from 0. Channels of 31 and an alpha of 15
/// at all corners give 255.
constexpr std::uint32_t InterpolateColours(const Corners<Colour>& corners, bool is2bpp, std::uint32_t dx, std::uint32_t dy) {
    const std::uint32_t width = blockWidth(rateOf(is2bpp));
    const auto weighted = [&](std::uint8_t Colour::*channel) {
        return (blockHeight - dy) * ((width - dx) * corners[0].*channel + dx * corners[1].*channel) +
               dy * ((width - dx) * corners[2].*channel + dx * corners[3].*channel);
    };
    // At 2 bpp the weights add up to 32 instead of 16: one more shift to the right.
    const std::uint32_t half = is2bpp ? 1 : 0;
    const auto to8Bits = [&](std::uint32_t sum) { return (sum >> (6 + half)) + (sum >> (1 + half)); };
    const std::uint32_t alpha = weighted(&Colour::a);
    return packRGBA(to8Bits(weighted(&Colour::r)), to8Bits(weighted(&Colour::g)), to8Bits(weighted(&Colour::b)),
                    (alpha >> (4 + half)) + (alpha >> half));
}

/// A block's own colour, without interpolation.
constexpr std::uint32_t ExpandColour(const Colour& colour) {
    const auto expand5 = [](std::uint32_t value) { return value >> 2 | value << 3; };
    return packRGBA(expand5(colour.r), expand5(colour.g), expand5(colour.b), std::uint32_t{colour.a} << 4 | colour.a);
}

/// (a * (8 - weight) + b * weight) / 8 in each channel, truncated; the weight is 0 to 8.
constexpr std::uint32_t blendColours(std::uint32_t a, std::uint32_t b, std::uint32_t weight) {
    std::uint32_t blended = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        blended |= ((a >> shift & 255) * (8 - weight) + (b >> shift & 255) * weight) / 8 << shift;
    return blended;
}

inline constexpr std::uint32_t colourMask = 0x00FFFFFF;  ///< all channels but alpha

constexpr CornerPalette BuildCornerPalette(const Corners<ColourPair>& corners) {
    CornerPalette palette{};
    for (std::size_t pair = 0; pair < paletteCorners.size(); ++pair) {
        palette[2 * pair] = ExpandColour(corners[paletteCorners[pair]].a);
        palette[2 * pair + 1] = ExpandColour(corners[paletteCorners[pair]].b);
    }
    return palette;
}

}  // namespace moktexture::moktc
