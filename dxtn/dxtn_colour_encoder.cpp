#include "dxtn/dxtn_colour_encoder.h"

#include <algorithm>

#include "dxtn/dxtn_axis_encoder.h"

namespace moktexture::dxtn {
namespace {

/// Bit i is set where pixel i has alpha 0.
std::uint32_t transparentPixels(const BlockPixels& pixels) {
    std::uint32_t mask = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        mask |= std::uint32_t{pixels[pixel] >> 24 == 0} << pixel;
    return mask;
}

/// Index 3 for transparent pixels, 1 for the others of colour `c1`, otherwise 0.
std::uint32_t indicesByColour(const std::array<std::uint16_t, blockArea>& colours, std::uint16_t c1, std::uint32_t transparent) {
    std::uint32_t indices = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
        const std::uint32_t index = transparent >> pixel & 1 ? 3 : colours[pixel] == c1 ? 1 : 0;
        indices |= index << 2 * pixel;
    }
    return indices;
}

ColourHalf encodeTwoColours(const std::array<std::uint16_t, blockArea>& colours, const DistinctColours& distinct,
                            std::uint32_t transparent) {
    const auto [smaller, larger] = std::minmax(distinct.first, distinct.second);
    const std::uint16_t c0 = transparent != 0 ? smaller : larger;
    const std::uint16_t c1 = transparent != 0 ? larger : smaller;
    return {c0, c1, indicesByColour(colours, c1, transparent)};
}

}  // namespace

DistinctColours CountDistinctColours(const std::array<std::uint16_t, blockArea>& colours) {
    DistinctColours distinct = {1, colours[0], colours[0]};
    for (const std::uint16_t colour : colours) {
        if (colour == distinct.first || colour == distinct.second) continue;
        if (distinct.count == 2) return {3, distinct.first, distinct.second};
        distinct = {2, distinct.first, colour};
    }
    return distinct;
}

ColourHalf encodeColours(const BlockPixels& pixels, DXTMode mode) {
    std::array<std::uint16_t, blockArea> colours;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        colours[pixel] = packRGB565(pixels[pixel]);
    const std::uint32_t transparent = mode == 1 ? transparentPixels(pixels) : 0;
    const DistinctColours distinct = CountDistinctColours(colours);
    if (distinct.count > 2) return encodeAlongAxis(pixels, transparent);
    if (distinct.count == 2) return encodeTwoColours(colours, distinct, transparent);
    if (transparent == 0) return {distinct.first, 0, 0};
    return {0, distinct.first, indicesByColour(colours, distinct.first, transparent)};
}

}  // namespace moktexture::dxtn
