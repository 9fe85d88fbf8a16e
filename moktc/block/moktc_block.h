#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

// A block is two little-endian 32-bit words, the modulation word first. It covers 4 by 4 pixels at 4 bits per pixel and 8 by 4 at
// 2 bits per pixel. Its two colours are samples of two small images, A and B, which are upscaled with the samples at the blocks'
// centres; the modulation says for each pixel how much of B is blended into A.
//
//   Colour word          31  30                   16  15  14                   1   0
//                       +---+-----------------------+---+-----------------------+---+
//                       |   |       colour B        |   |       colour A        |mod|
//                       +---+-----------------------+---+-----------------------+---+
//   First generation     bit 31: B is opaque         bit 15: A is opaque         mode of the modulation
//   Second generation    bit 31: both are opaque     bit 15: the block is flat
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
//     4 bpp             | p15 | p14 | - - | p1  | p0  |   2 bits of index a pixel, pixels in raster order
//     2 bpp, mode 0     | p31 p30 p29 p28 - - p2 p1 p0|   1 bit a pixel, pixels in raster order
//     2 bpp, mode 1     | s15 | s14 | - - | s1  | s0  |   2 bits of index for each pixel with even x + y, in raster order
//
// In mode 1 at 2 bpp the pixels with odd x + y are means of their neighbours. Which ones is the block's sub-mode, kept in the low
// bits of samples that give up half of their precision: bit 0 (of s0) and, if that is set, bit 20 (of s10).

namespace moktexture::moktc {

inline constexpr std::uint32_t blockHeight = 4;
inline constexpr std::uint32_t widestBlock = 8;
inline constexpr std::size_t bytesPerBlock = 8;
inline constexpr std::size_t bytesPerPixel = 4;

constexpr std::uint32_t blockWidth(bool is2bpp) {
    return is2bpp ? 8 : 4;
}
constexpr std::uint32_t bitsPerPixel(bool is2bpp) {
    return is2bpp ? 2 : 4;
}

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

/// Colour word: the mode of the modulation, and the bits above the two colours, by generation.
inline constexpr std::uint32_t modeBit = 1u << 0;
inline constexpr std::uint32_t opaqueABit = 1u << 15;     ///< first generation
inline constexpr std::uint32_t opaqueBBit = 1u << 31;     ///< first generation
inline constexpr std::uint32_t flatBit = 1u << 15;        ///< second generation: colours are not upscaled
inline constexpr std::uint32_t opaqueBothBit = 1u << 31;  ///< second generation

/// A run of bits in the colour word.
struct ColourField {
    std::uint32_t shift;
    std::uint32_t bits;

    constexpr std::uint32_t mask() const { return ((1u << bits) - 1) << shift; }
    constexpr std::uint32_t valueIn(std::uint32_t word) const { return (word & mask()) >> shift; }
    /// The field with the high bits of an 8-bit value.
    constexpr std::uint32_t highBitsOf(std::uint32_t value8) const { return (value8 >> (8 - bits)) << shift; }
};

struct ColourFields {
    ColourField r, g, b, a;
};

// Row: a form of a colour. Columns: lowest bit in the colour word and number of bits of red, green, blue and alpha.
// clang-format off
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

/// A value of 3, 4 or 5 bits in 5 bits; its high bits are repeated below it.
constexpr std::uint8_t expandTo5Bits(std::uint32_t value, std::uint32_t bits) {
    return static_cast<std::uint8_t>(bits == 5 ? value : value << (5 - bits) | value >> (2 * bits - 5));
}

/// The colour that stands in those fields; an alpha without bits is opaque, else its low bit is 0.
constexpr Colour unpackFields(std::uint32_t word, const ColourFields& fields) {
    return {expandTo5Bits(fields.r.valueIn(word), fields.r.bits), expandTo5Bits(fields.g.valueIn(word), fields.g.bits),
            expandTo5Bits(fields.b.valueIn(word), fields.b.bits),
            fields.a.bits == 0 ? opaqueAlpha : static_cast<std::uint8_t>(fields.a.valueIn(word) << 1)};
}

/// The bits that an RGBA8 colour (red in the lowest byte) has in those fields: the high bits of each channel.
constexpr std::uint32_t packFields(std::uint32_t rgba, const ColourFields& fields) {
    return fields.r.highBitsOf(rgba & 255) | fields.g.highBitsOf(rgba >> 8 & 255) | fields.b.highBitsOf(rgba >> 16 & 255) |
           fields.a.highBitsOf(rgba >> 24);
}

/// Colour A of a colour word.
constexpr Colour UnpackColourA(std::uint32_t word, bool isOpaque) {
    return isOpaque ? unpackFields(word, opaqueA) : unpackFields(word, translucentA);
}
/// Colour B of a colour word, with the low bit of a translucent alpha that the first generation has.
constexpr Colour UnpackColourB(std::uint32_t word, bool isOpaque) {
    return isOpaque ? unpackFields(word, opaqueB) : unpackFields(word, translucentB);
}

/// Both colours of a colour word. Returns whether the block is flat, which only the second generation knows.
constexpr bool UnpackColours(std::uint32_t word, bool secondGeneration, ColourPair& colours) {
    const bool isOpaqueB = (word & opaqueBBit) != 0;
    const bool isOpaqueA = secondGeneration ? isOpaqueB : (word & opaqueABit) != 0;
    colours = {UnpackColourA(word, isOpaqueA), UnpackColourB(word, isOpaqueB)};
    // Kept: in the second generation a translucent B never reaches alpha 0, though A does; stored textures count on it.
    if (secondGeneration) colours.b.a |= 1;
    return secondGeneration && (word & flatBit) != 0;
}

// Modulation

/// Eighths of colour B by the block's mode bit and a pixel's 2-bit index. At 2 bpp the first row holds for both modes.
inline constexpr std::array<std::array<std::uint8_t, 4>, 2> indexWeights = {{{0, 3, 5, 8}, {0, 4, 4, 8}}};
/// At 4 bpp in mode 1 a pixel with this index has alpha 0.
inline constexpr std::uint32_t punchThroughIndex = 2;

/// 2 bpp, mode 0: the 2-bit index that a set bit stands for; a clear one stands for 0.
inline constexpr std::uint32_t directSetIndex = 3;

/// 4 bpp and samples: the 2-bit index that stands at a position of the modulation word.
constexpr std::uint32_t indexAt(std::uint32_t modulation, std::uint32_t position) {
    return modulation >> 2 * position & 3;
}

/// How the pixels with odd x + y of a block at 2 bpp get their weights.
enum class SubMode : std::uint8_t {
    direct = 0,      ///< mode bit 0: a bit of their own
    average = 1,     ///< mean of all four neighbours
    horizontal = 2,  ///< mean of the left and the right neighbour
    vertical = 3     ///< mean of the upper and the lower neighbour
};

inline constexpr std::uint32_t subModeBit = 1u << 0;    ///< set for horizontal and vertical
inline constexpr std::uint32_t verticalBit = 1u << 20;  ///< set for vertical; sample data in sub-mode `average`

/// The sub-mode of a block at 2 bpp.
constexpr SubMode subModeOf(const Block& block) {
    if ((block.colours & modeBit) == 0) return SubMode::direct;
    if ((block.modulation & subModeBit) == 0) return SubMode::average;
    return (block.modulation & verticalBit) == 0 ? SubMode::horizontal : SubMode::vertical;
}

/// An interpolated modulation word whose samples can be read as they stand: the bits that hold the sub-mode get the values of
/// the bits above them.
constexpr std::uint32_t samplesOf(std::uint32_t modulation) {
    const std::uint32_t borrowed = (modulation & subModeBit) != 0 ? subModeBit | verticalBit : subModeBit;
    return (modulation & ~borrowed) | (modulation >> 1 & borrowed);
}

/// An interpolated modulation word made of 16 samples and a sub-mode, whose bits take the place of low bits of samples.
constexpr std::uint32_t withSubMode(std::uint32_t samples, SubMode subMode) {
    if (subMode == SubMode::average) return samples & ~subModeBit;
    return subMode == SubMode::vertical ? samples | subModeBit | verticalBit : (samples & ~verticalBit) | subModeBit;
}

/// The weight in eighths of a pixel with odd x + y, from those of its neighbours.
constexpr std::uint32_t meanWeight(SubMode subMode, std::uint32_t left, std::uint32_t right, std::uint32_t above,
                                   std::uint32_t below) {
    if (subMode == SubMode::horizontal) return (left + right + 1) / 2;
    if (subMode == SubMode::vertical) return (above + below + 1) / 2;
    return (left + right + above + below + 2) / 4;
}

}  // namespace moktexture::moktc
