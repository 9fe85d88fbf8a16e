#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "moktc/block/block_variant.h"

// The MOKTC block format
//
// A level is stored as two small images, A and B, of one colour per block. Each is upscaled bilinearly, with a block's colour at
// the block's centre, and every pixel is a blend of the two upscaled images by its own weight:
//
//     pixel = (A * (8 - weight) + B * weight) / 8          weight: interpolation weight of B, 0 to 8
//
// So a pixel depends on the four blocks whose centres surround it, and blocks cannot be decoded or encoded alone. The four blocks
// wrap around at the level's edges.
//
// A block has 8 bytes, two little-endian 32-bit words: the modulation word, from which the weights come, and the colour word. It
// covers 4 by 4 pixels at 4 bits per pixel and 8 by 4 at 2 bits per pixel.
//
//   Colour word          31  30                   16  15  14                   1   0
//                       +---+-----------------------+---+-----------------------+---+
//                       |   |       colour B        |   |       colour A        |mod|
//                       +---+-----------------------+---+-----------------------+---+
//   First generation     bit 31: B is opaque         bit 15: A is opaque         bit 0: modulation mode
//   Second generation    bit 31: both are opaque     bit 15: the block is flat   bit 0: modulation mode
//
//   Colour A             14   13   12   11   10    9    8    7    6    5    4    3    2    1
//     opaque            | r4   r3   r2   r1   r0 | g4   g3   g2   g1   g0 | b3   b2   b1   b0 |
//     translucent       | a2   a1   a0 | r3   r2   r1   r0 | g3   g2   g1   g0 | b2   b1   b0 |
//
//   Colour B             30   29   28   27   26   25   24   23   22   21   20   19   18   17   16
//     opaque            | r4   r3   r2   r1   r0 | g4   g3   g2   g1   g0 | b4   b3   b2   b1   b0 |
//     translucent       | a2   a1   a0 | r3   r2   r1   r0 | g3   g2   g1   g0 | b3   b2   b1   b0 |
//
//   Modulation word      31 30 29 28        3  2  1  0
//     4 bpp             | p15 | p14 | - - | p1  | p0  |   a 2-bit index per pixel, pixels in raster order
//     2 bpp, mode 0     | p31 p30 p29 p28 - - p2 p1 p0|   one bit per pixel, pixels in raster order
//     2 bpp, mode 1     | s15 | s14 | - - | s1  | s0  |   a 2-bit index (sample) per pixel with even x + y, in raster order
//
// In mode 1 at 2 bpp the weight of a pixel with odd x + y is the mean of its neighbours' weights. The block's sub-mode says which
// neighbours. It is stored in the low bits of samples that give up half of their precision: bit 0 (of s0) and, if that is set,
// bit 20 (of s10).

namespace moktexture::moktc {

inline constexpr std::size_t bytesPerBlock = 8;

struct Block {
    std::uint32_t modulation;
    std::uint32_t colours;
};

inline Block readBlock(const std::uint8_t* bytes) {
    Block block;
    std::memcpy(&block.modulation, bytes, sizeof block.modulation);
    std::memcpy(&block.colours, bytes + sizeof block.modulation, sizeof block.colours);
    return block;
}
inline void writeBlock(std::uint8_t* bytes, const Block& block) {
    std::memcpy(bytes, &block.modulation, sizeof block.modulation);
    std::memcpy(bytes + sizeof block.modulation, &block.colours, sizeof block.colours);
}

// Colours

inline constexpr std::uint32_t modeBit = 1u << 0;         ///< modulation mode
inline constexpr std::uint32_t opaqueABit = 1u << 15;     ///< first generation
inline constexpr std::uint32_t opaqueBBit = 1u << 31;     ///< first generation
inline constexpr std::uint32_t flatBit = 1u << 15;        ///< second generation: the block's colours are not upscaled
inline constexpr std::uint32_t opaqueBothBit = 1u << 31;  ///< second generation

/// Consecutive bits of the colour word.
struct ColourField {
    std::uint32_t shift;
    std::uint32_t bits;

    constexpr std::uint32_t mask() const { return ((1u << bits) - 1) << shift; }
    constexpr std::uint32_t valueIn(std::uint32_t word) const { return (word & mask()) >> shift; }
    /// The field's bits set to the high bits of an 8-bit value.
    constexpr std::uint32_t highBitsOf(std::uint32_t value8) const { return (value8 >> (8 - bits)) << shift; }
};

struct ColourFields {
    ColourField r, g, b, a;
};

// Columns: position of the lowest bit in the colour word and number of bits, for each channel.
// clang-format off
//                                            red      green    blue     alpha
inline constexpr ColourFields opaqueA      = {{10, 5}, { 5, 5}, { 1, 4}, { 0, 0}};
inline constexpr ColourFields translucentA = {{ 8, 4}, { 4, 4}, { 1, 3}, {12, 3}};
inline constexpr ColourFields opaqueB      = {{26, 5}, {21, 5}, {16, 5}, { 0, 0}};
inline constexpr ColourFields translucentB = {{24, 4}, {20, 4}, {16, 4}, {28, 3}};
// clang-format on

inline constexpr std::uint32_t colourAMask = 0x00007FFE;
inline constexpr std::uint32_t colourBMask = 0x7FFF0000;

/// A decoded colour: red, green and blue from 0 to 31, alpha from 0 to 15.
struct Colour {
    std::uint8_t r, g, b, a;
    bool operator==(const Colour&) const = default;
};
inline constexpr std::uint8_t opaqueAlpha = 15;

struct ColourPair {
    Colour a, b;
};

/// Widens a value of 3, 4 or 5 bits to 5 bits by repeating its high bits below it.
constexpr std::uint8_t expandTo5Bits(std::uint32_t value, std::uint32_t bits) {
    return static_cast<std::uint8_t>(bits == 5 ? value : value << (5 - bits) | value >> (2 * bits - 5));
}

/// Reads a colour from its fields. Without an alpha field it is opaque; otherwise the low bit of its alpha is 0.
constexpr Colour unpackFields(std::uint32_t word, const ColourFields& fields) {
    return {expandTo5Bits(fields.r.valueIn(word), fields.r.bits), expandTo5Bits(fields.g.valueIn(word), fields.g.bits),
            expandTo5Bits(fields.b.valueIn(word), fields.b.bits),
            fields.a.bits == 0 ? opaqueAlpha : static_cast<std::uint8_t>(fields.a.valueIn(word) << 1)};
}

/// Packs the high bits of each channel of an RGBA8 colour (red in the lowest byte) into the fields.
constexpr std::uint32_t packFields(std::uint32_t rgba, const ColourFields& fields) {
    return fields.r.highBitsOf(rgba & 255) | fields.g.highBitsOf(rgba >> 8 & 255) | fields.b.highBitsOf(rgba >> 16 & 255) |
           fields.a.highBitsOf(rgba >> 24);
}

/// Colour A of a colour word.
constexpr Colour UnpackColourA(std::uint32_t word, bool isOpaque) {
    return isOpaque ? unpackFields(word, opaqueA) : unpackFields(word, translucentA);
}
/// Colour B of a colour word. The low bit of a translucent alpha is 0, as in the first generation.
constexpr Colour UnpackColourB(std::uint32_t word, bool isOpaque) {
    return isOpaque ? unpackFields(word, opaqueB) : unpackFields(word, translucentB);
}

/// Both colours of a colour word. Returns whether the block is flat, which only blocks of the second generation can be.
constexpr bool UnpackColours(std::uint32_t word, bool secondGeneration, ColourPair& colours) {
    const bool isOpaqueB = (word & opaqueBBit) != 0;
    const bool isOpaqueA = secondGeneration ? isOpaqueB : (word & opaqueABit) != 0;
    colours = {UnpackColourA(word, isOpaqueA), UnpackColourB(word, isOpaqueB)};
    // Kept (odd-alpha-of-second-generation-b): translucent B has an odd alpha in the second generation and so never reaches 0, as
    // A does; existing second-generation textures would decode to other alphas.
    if (secondGeneration) colours.b.a |= 1;
    return secondGeneration && (word & flatBit) != 0;
}

/// Sets colour A or B of a first-generation block from an RGBA8 colour (red in the lowest byte): opaque if its alpha is 255,
/// otherwise translucent. The low bits of each channel are dropped. The mode bit and the other colour do not change.
void packColourA(Block& block, std::uint32_t rgba);
void packColourB(Block& block, std::uint32_t rgba);

// Modulation

/// Interpolation weight by modulation mode and 2-bit index. At 2 bpp both modes use the first row.
// clang-format off
inline constexpr std::array<std::array<std::uint8_t, 4>, 2> indexWeights = {{
//   0  1  2  3     index
    {0, 3, 5, 8},  // mode 0
    {0, 4, 4, 8},  // mode 1
}};
// clang-format on

/// At 4 bpp in mode 1 a pixel with this index is a punch-through pixel: its alpha is 0.
inline constexpr std::uint32_t punchThroughIndex = 2;

/// 2 bpp, mode 0: the index that a set bit means; a clear bit means index 0.
inline constexpr std::uint32_t directSetIndex = 3;

/// The 2-bit index at a position of a modulation word, counted from the lowest bits: a pixel at 4 bpp, a sample at 2 bpp.
constexpr std::uint32_t indexAt(std::uint32_t modulation, std::uint32_t position) {
    return modulation >> 2 * position & 3;
}

/// How the pixels with odd x + y of a 2 bpp block get their weights.
enum class SubMode : std::uint8_t {
    direct = 0,      ///< mode bit 0: each has a bit of its own
    average = 1,     ///< mean of all four neighbours
    horizontal = 2,  ///< mean of the left and the right neighbour
    vertical = 3     ///< mean of the neighbours above and below
};

inline constexpr std::uint32_t subModeBit = 1u << 0;    ///< set for horizontal and vertical
inline constexpr std::uint32_t verticalBit = 1u << 20;  ///< set for vertical; a bit of a sample in sub-mode `average`

/// The sub-mode of a 2 bpp block.
constexpr SubMode subModeOf(const Block& block) {
    if ((block.colours & modeBit) == 0) return SubMode::direct;
    if ((block.modulation & subModeBit) == 0) return SubMode::average;
    return (block.modulation & verticalBit) == 0 ? SubMode::horizontal : SubMode::vertical;
}

/// The samples of an interpolated modulation word: each bit that holds the sub-mode is replaced by the bit above it.
constexpr std::uint32_t samplesOf(std::uint32_t modulation) {
    const std::uint32_t replaced = (modulation & subModeBit) != 0 ? subModeBit | verticalBit : subModeBit;
    return (modulation & ~replaced) | (modulation >> 1 & replaced);
}

/// The interpolated modulation word of 16 samples and a sub-mode, whose bits overwrite low bits of samples.
constexpr std::uint32_t withSubMode(std::uint32_t samples, SubMode subMode) {
    if (subMode == SubMode::average) return samples & ~subModeBit;
    return subMode == SubMode::vertical ? samples | subModeBit | verticalBit : (samples & ~verticalBit) | subModeBit;
}

// Modulation words from 2-bit indices, one per pixel in raster order.

/// 4 bpp, both modes: 16 indices.
std::uint32_t packIndices(const std::uint8_t* indices);

/// 2 bpp, mode 0: 32 indices; a pixel's bit is set if its index is 3.
std::uint32_t packDirect(const std::uint8_t* indices);

/// 2 bpp, mode 1: 32 indices, of which those with even x + y are used. The sub-mode is not yet set.
std::uint32_t packSamples(const std::uint8_t* indices);

// Corner palette
//
// Second generation at 4 bpp: in a flat cell the pixels of blocks with the mode bit are not blended. Each takes one of the eight
// colours of the cell's four corners, by its 2-bit index and its position in the cell.

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
