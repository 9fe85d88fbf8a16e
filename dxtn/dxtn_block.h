#pragma once

#include "core/base/pixel_block.h"
#include "dxtn/dxtn.h"

/// @file
/// The published DXTn blocks: 4 by 4 pixels, p0 to p15 in raster order. All words are little-endian.
///
///   DXT1           8 bytes: colour block
///   DXT2 to DXT5  16 bytes: alpha block, colour block
///
///   Colour block             63 62 61 60       35 34 33 32 31          16 15           0
///                           +-----+-----+- - -+-----+-----+--------------+--------------+
///                           | p15 | p14 |     | p1  | p0  |      c1      |      c0      |
///                           +-----+-----+- - -+-----+-----+--------------+--------------+
///                             2-bit index per pixel         endpoints in 5-6-5: rrrrrggggggbbbbb
///
///   Explicit alpha           63  60            7    4 3    0
///   (DXT2, DXT3)            +------+- - - - -+------+------+
///                           | p15  |         |  p1  |  p0  |     4-bit alpha per pixel
///                           +------+- - - - -+------+------+
///
///   Interpolated alpha       63 61         21 19 18 16 15          8 7           0
///   (DXT4, DXT5)            +-----+- - - -+-----+-----+-------------+-------------+
///                           | p15 |       | p1  | p0  |     a1      |     a0      |
///                           +-----+- - - -+-----+-----+-------------+-------------+
///                             3-bit index per pixel                 endpoints

namespace moktexture::dxtn {

/// Bytes of a colour block and of an alpha block.
inline constexpr std::size_t wordBytes = 8;
inline constexpr DXTMode lastMode = 5;

/// Two endpoints in 5-6-5 form and a 2-bit index per pixel.
struct ColourBlock {
    std::uint16_t c0;
    std::uint16_t c1;
    std::uint32_t indices;
};

enum class AlphaBlock { none, explicitBits, interpolated };

/// The alpha block that precedes the colour block in a mode from 1 to 5.
constexpr AlphaBlock alphaBlockOf(DXTMode mode) {
    return mode == 1 ? AlphaBlock::none : mode <= 3 ? AlphaBlock::explicitBits : AlphaBlock::interpolated;
}

/// Bytes of a whole block.
constexpr std::size_t bytesPerBlock(AlphaBlock alpha) {
    return alpha == AlphaBlock::none ? wordBytes : 2 * wordBytes;
}

/// Whether both sides are multiples of 4 and the mode is one of the five.
constexpr bool isWholeBlocks(std::uint32_t width, std::uint32_t height, DXTMode mode) {
    return mode >= 1 && mode <= lastMode && width % blockEdge == 0 && height % blockEdge == 0;
}

/// An RGBA8 colour in 5-6-5 form.
/// Kept (dxtn-565-truncates): truncated, not rounded to the nearest; with rounding every DXTn block that is encoded again would
/// differ from the one in a stored .dds or .mok file.
constexpr std::uint16_t packRGB565(std::uint32_t rgba) {
    const std::uint32_t r = rgba & 0xF8, g = rgba >> 8 & 0xFC, b = rgba >> 16 & 0xFF;
    return static_cast<std::uint16_t>(r << 8 | g << 3 | b >> 3);
}

/// A 5-6-5 colour as RGBA8 with alpha 0; the high bits of each channel are repeated below it.
constexpr std::uint32_t expandRGB565(std::uint16_t colour) {
    const std::uint32_t r = colour >> 11, g = colour >> 5 & 63, b = colour & 31;
    return (r << 3 | r >> 2) | (g << 2 | g >> 4) << 8 | (b << 3 | b >> 2) << 16;
}

inline std::uint64_t readWord(const std::uint8_t* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline void writeWord(std::uint8_t* bytes, std::uint64_t word) {
    std::memcpy(bytes, &word, sizeof word);
}

constexpr ColourBlock unpackColourBlock(std::uint64_t word) {
    return {static_cast<std::uint16_t>(word), static_cast<std::uint16_t>(word >> 16), static_cast<std::uint32_t>(word >> 32)};
}

constexpr std::uint64_t packColourBlock(const ColourBlock& block) {
    return block.c0 | std::uint64_t{block.c1} << 16 | std::uint64_t{block.indices} << 32;
}

}  // namespace moktexture::dxtn
