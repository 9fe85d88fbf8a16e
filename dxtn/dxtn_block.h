#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dxtn/dxtn.h"

// A block holds 4 by 4 pixels, p0 to p15 in raster order. All words are little-endian.
//
//   DXT1           8 bytes: colour half
//   DXT2 to DXT5  16 bytes: alpha half, colour half
//
//   Colour half              63 62 61 60       35 34 33 32 31          16 15           0
//                           +-----+-----+- - -+-----+-----+--------------+--------------+
//                           | p15 | p14 |     | p1  | p0  |      c1      |      c0      |
//                           +-----+-----+- - -+-----+-----+--------------+--------------+
//                             2 bits of index a pixel       5-6-5 colours: rrrrrggggggbbbbb
//
//   Explicit alpha           63  60            7    4 3    0
//   (DXT2, DXT3)            +------+- - - - -+------+------+
//                           | p15  |         |  p1  |  p0  |     4 bits of alpha a pixel
//                           +------+- - - - -+------+------+
//
//   Interpolated alpha       63 61         21 19 18 16 15          8 7           0
//   (DXT4, DXT5)            +-----+- - - -+-----+-----+-------------+-------------+
//                           | p15 |       | p1  | p0  |     a1      |     a0      |
//                           +-----+- - - -+-----+-----+-------------+-------------+
//                             3 bits of index a pixel

namespace moktexture::dxtn {

inline constexpr std::uint32_t blockEdge = 4;
inline constexpr std::size_t blockArea = 16;
inline constexpr std::size_t bytesPerPixel = 4;
inline constexpr std::size_t bytesPerHalf = 8;
inline constexpr DXTMode lastMode = 5;

/// A block's pixels in raster order: RGBA8, red in the lowest byte.
using BlockPixels = std::array<std::uint32_t, blockArea>;

/// The colour half: two colours in 5-6-5 form and 2 bits of index a pixel.
struct ColourHalf {
    std::uint16_t c0;
    std::uint16_t c1;
    std::uint32_t indices;
};

enum class AlphaHalf { none, explicitBits, interpolated };

/// What stands before the colour half in a mode from 1 to 5.
constexpr AlphaHalf alphaHalfOf(DXTMode mode) {
    return mode == 1 ? AlphaHalf::none : mode <= 3 ? AlphaHalf::explicitBits : AlphaHalf::interpolated;
}

/// Bytes of a block with that alpha half.
constexpr std::size_t bytesPerBlock(AlphaHalf alpha) {
    return alpha == AlphaHalf::none ? bytesPerHalf : 2 * bytesPerHalf;
}

/// Whether an image of these sizes is made of whole blocks and the mode is one of the five.
constexpr bool isWholeBlocks(std::uint32_t width, std::uint32_t height, DXTMode mode) {
    return mode >= 1 && mode <= lastMode && width % blockEdge == 0 && height % blockEdge == 0;
}

/// An RGBA8 colour in 5-6-5 form.
/// Kept: truncated, not rounded, so that encoded textures come out as they always have.
constexpr std::uint16_t packRGB565(std::uint32_t rgba) {
    const std::uint32_t r = rgba & 0xF8, g = rgba >> 8 & 0xFC, b = rgba >> 16 & 0xFF;
    return static_cast<std::uint16_t>(r << 8 | g << 3 | b >> 3);
}

/// A 5-6-5 colour as RGBA8 with alpha 0; the high bits of each channel are repeated below it.
constexpr std::uint32_t expandRGB565(std::uint16_t colour) {
    const std::uint32_t r = colour >> 11, g = colour >> 5 & 63, b = colour & 31;
    return (r << 3 | r >> 2) | (g << 2 | g >> 4) << 8 | (b << 3 | b >> 2) << 16;
}

inline std::uint64_t readHalf(const std::uint8_t* bytes) {
    std::uint64_t half;
    std::memcpy(&half, bytes, sizeof half);
    return half;
}

inline void writeHalf(std::uint8_t* bytes, std::uint64_t half) {
    std::memcpy(bytes, &half, sizeof half);
}

constexpr ColourHalf unpackColourHalf(std::uint64_t half) {
    return {static_cast<std::uint16_t>(half), static_cast<std::uint16_t>(half >> 16), static_cast<std::uint32_t>(half >> 32)};
}

constexpr std::uint64_t packColourHalf(const ColourHalf& half) {
    return half.c0 | std::uint64_t{half.c1} << 16 | std::uint64_t{half.indices} << 32;
}

}  // namespace moktexture::dxtn
