#pragma once

#include "core/base/pixel_block.h"

/// @file
/// The published ETC1 block: 4 by 4 pixels in 8 bytes, two words, each stored with its most significant byte first. The block is
/// cut into two subblocks of 8 pixels. A subblock has a base colour and one of eight modifier tables; each of its pixels has an
/// index of 2 bits into that table, and its colour is the base colour with the modifier added to each of red, green and blue.
///
///   Colours       31    28 27    24 23    20 19    16 15    12 11     8 7   5 4   2  1   0
///                +--------+--------+--------+--------+--------+--------+-----+-----+---+---+
///   individual   |   R1   |   R2   |   G1   |   G2   |   B1   |   B2   | t1  | t2  | 0 | f |
///                +--------+-+------+--------+-+------+--------+-+------+-----+-----+---+---+
///   differential |    R     |  dR  |    G     |  dG  |    B     |  dB  | t1  | t2  | 1 | f |
///                +----------+------+----------+------+----------+------+-----+-----+---+---+
///                31       27 26  24 23      19 18  16 15      11 10   8
///                t1, t2: modifier table of each subblock      f: flip bit
///                dR, dG, dB: signed, second base colour minus first
///
///   Indices       31                    16 15                     0
///                +------------------------+------------------------+
///                | high bits, p15 ... p0  |  low bits, p15 ... p0  |     index of each pixel into its subblock's table
///                +------------------------+------------------------+
///
///   Pixels are numbered down the columns.      Flip bit 0: subblocks       Flip bit 1: subblocks
///                                              left and right              top and bottom
///        p0  p4  p8  p12                            1 1 2 2                     1 1 1 1
///        p1  p5  p9  p13                            1 1 2 2                     1 1 1 1
///        p2  p6  p10 p14                            1 1 2 2                     2 2 2 2
///        p3  p7  p11 p15                            1 1 2 2                     2 2 2 2

namespace moktexture::etc1 {

inline constexpr std::size_t subblockArea = 8;
inline constexpr std::size_t channelCount = 3;
inline constexpr std::size_t tableCount = 8;
inline constexpr std::size_t modifierCount = 4;
inline constexpr std::size_t bytesPerBlock = 8;

/// How the block is cut into subblocks; the value of the flip bit.
enum class Split : std::uint32_t { leftRight = 0, topBottom = 1 };

/// How the base colours are stored: 4 bits per channel for each, or 5 bits and a difference of 3 bits. The value of the
/// differential bit.
enum class ColourMode : std::uint32_t { individual = 0, differential = 1 };

/// Red, green and blue of 8 bits.
using Colour = std::array<std::uint8_t, channelCount>;

/// Red, green and blue as codes of 4 or 5 bits.
using Codes = std::array<int, channelCount>;

struct BlockWords {
    std::uint32_t colours;
    std::uint32_t indices;
    bool operator==(const BlockWords&) const = default;
};

// The published modifiers. Row: table. Column: index of a pixel.
// clang-format off
inline constexpr std::array<std::array<int, modifierCount>, tableCount> modifiers = {{
    // 0    1    2     3
    { 2,   8,  -2,   -8},
    { 5,  17,  -5,  -17},
    { 9,  29,  -9,  -29},
    {13,  42, -13,  -42},
    {18,  60, -18,  -60},
    {24,  80, -24,  -80},
    {33, 106, -33, -106},
    {47, 183, -47, -183},
}};
// clang-format on

/// The indices in ascending order of their modifiers.
inline constexpr std::array<std::uint32_t, modifierCount> ascendingIndices = {3, 2, 0, 1};

/// Range of the difference between the second and the first code of a differential block.
inline constexpr int minDelta = -4, maxDelta = 3;

/// A code of 4 bits as 8 bits.
constexpr std::uint8_t expandFourBits(int code) {
    return static_cast<std::uint8_t>(code * 17);
}

/// A code of 5 bits as 8 bits, its high bits repeated below it.
/// Kept (etc1-delta-wraps): a code outside 0 to 31, the sum of a base and a delta that leave the range, wraps in its byte instead
/// of being clamped: KTX files whose encoder wrote such sums would show other colours.
constexpr std::uint8_t expandFiveBits(int code) {
    const int byte = code & 0xFF;
    return static_cast<std::uint8_t>(byte << 3 | byte >> 2);
}

constexpr Colour expand(const Codes& codes, ColourMode mode) {
    Colour colour{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        colour[channel] = mode == ColourMode::individual ? expandFourBits(codes[channel]) : expandFiveBits(codes[channel]);
    return colour;
}

/// Whether a differential block can store the pair.
constexpr bool isLegalPair(const Codes& first, const Codes& second) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int delta = second[channel] - first[channel];
        if (delta < minDelta || delta > maxDelta) return false;
    }
    return true;
}

constexpr Split splitOf(const BlockWords& words) {
    return static_cast<Split>(words.colours & 1);
}

constexpr ColourMode colourModeOf(const BlockWords& words) {
    return static_cast<ColourMode>(words.colours >> 1 & 1);
}

/// Lowest bit of a subblock's modifier table in the colours word.
constexpr unsigned tableShift(std::size_t subblock) {
    return subblock == 0 ? 5 : 2;
}

constexpr std::uint32_t tableOf(const BlockWords& words, std::size_t subblock) {
    return words.colours >> tableShift(subblock) & 7;
}

/// The modifier index of a pixel, numbered `column * 4 + row`.
constexpr std::uint32_t indexOf(const BlockWords& words, std::size_t pixel) {
    return (words.indices >> pixel & 1) | (words.indices >> pixel >> 15 & 2);
}

/// Both base colours. The second one may lie outside 0 to 31 if the block is differential.
constexpr std::array<Codes, 2> codesOf(const BlockWords& words) {
    std::array<Codes, 2> codes{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int byte = static_cast<int>(words.colours >> (24 - 8 * channel) & 0xFF);
        const int delta = ((byte & 7) ^ 4) - 4;
        const bool isIndividual = colourModeOf(words) == ColourMode::individual;
        codes[0][channel] = isIndividual ? byte >> 4 : byte >> 3;
        codes[1][channel] = isIndividual ? byte & 15 : (byte >> 3) + delta;
    }
    return codes;
}

/// The byte of the colours word that stores one channel of both base colours.
constexpr std::uint32_t packChannel(int first, int second, ColourMode mode) {
    return static_cast<std::uint32_t>(mode == ColourMode::individual ? first << 4 | second : first << 3 | ((second - first) & 7));
}

/// Number of a subblock's n-th pixel, where a subblock's pixels are counted down its columns.
constexpr std::size_t pixelNumber(Split split, std::size_t subblock, std::size_t n) {
    return split == Split::leftRight ? subblock * subblockArea + n : n / 2 * blockEdge + subblock * 2 + n % 2;
}

/// Index in raster order of the pixel numbered `column * 4 + row`.
constexpr std::size_t rasterIndex(std::size_t pixel) {
    return pixel % blockEdge * blockEdge + pixel / blockEdge;
}

constexpr std::uint8_t channelOf(std::uint32_t rgba, std::size_t channel) {
    return static_cast<std::uint8_t>(rgba >> 8 * channel);
}

constexpr std::uint32_t readWord(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

constexpr BlockWords readWords(const std::uint8_t* block) {
    return {readWord(block), readWord(block + 4)};
}

constexpr void writeWords(std::uint8_t* block, const BlockWords& words) {
    for (std::size_t byte = 0; byte < 4; ++byte) {
        block[byte] = static_cast<std::uint8_t>(words.colours >> (24 - 8 * byte));
        block[4 + byte] = static_cast<std::uint8_t>(words.indices >> (24 - 8 * byte));
    }
}

// Blocks and the pixels of an image. The blocks at the right and bottom edges overhang an image whose sides are no multiples of
// 4. Pixel (x, y) is taken for number `y * width + x` of the image's pixels, also where x is not below the width; the rows of
// the image must follow each other without a gap.
//
//   an image 6 pixels wide          its second block covers
//   0  1  2  3  4  5                   4  5  6  7
//   6  7  8  9 10 11                  10 11 12 13        6 and 7 begin the next row
//  12 13 14 15 16 17                  16 17 18 19
//  18 19 20 21 22 23                  22 23 24 25        24 and 25 are outside the image
//
// Kept (etc1-overhang-spills): pixels beyond the right edge are the first ones of the next row, not dropped or repeated, so that
// .mok and KTX files whose width is no multiple of 4 decode and encode to the pixels that hosts have always got.

/// Reads the block whose first pixel is (x, y), which must lie in the image. Pixels below the image repeat its last row.
PixelBlock readBlock(const ConstImageView& image, std::size_t x, std::size_t y);

/// Decodes a block; any bits are valid. Alpha is 255.
PixelBlock decodeBlock(const BlockWords& words);

/// Writes a decoded block whose first pixel is (x, y), which must lie in the image; pixels below the image are dropped. `split`
/// is the block's.
void writeBlock(const PixelBlock& block, Split split, const ImageView& image, std::size_t x, std::size_t y);

}  // namespace moktexture::etc1
