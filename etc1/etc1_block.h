#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// A block holds 4 by 4 pixels in two words, each stored with its most significant byte first. Pixels are numbered down the
// columns: column * 4 + row. The two halves are the left and right columns, or with the flip bit the top and bottom rows.
//
//   Colours       31    28 27    24 23    20 19    16 15    12 11     8 7   5 4   2  1   0
//                +--------+--------+--------+--------+--------+--------+-----+-----+---+---+
//   individual   |   R1   |   R2   |   G1   |   G2   |   B1   |   B2   | t1  | t2  | 0 | f |
//                +--------+-+------+--------+-+------+--------+-+------+-----+-----+---+---+
//   differential |    R     |  dR  |    G     |  dG  |    B     |  dB  | t1  | t2  | 1 | f |
//                +----------+------+----------+------+----------+------+-----+-----+---+---+
//                31       27 26  24 23      19 18  16 15      11 10   8
//                t1, t2: modifier table of each half    f: flip bit    dR, dG, dB: signed, second colour minus first
//
//   Indices       31                    16 15                     0
//                +------------------------+------------------------+
//                | high bits, p15 ... p0  |  low bits, p15 ... p0  |     index of each pixel into its half's table
//                +------------------------+------------------------+

namespace moktexture::etc1 {

inline constexpr std::size_t blockEdge = 4;
inline constexpr std::size_t blockArea = 16;
inline constexpr std::size_t halfArea = 8;
inline constexpr std::size_t channelCount = 3;
inline constexpr std::size_t tableCount = 8;
inline constexpr std::size_t modifierCount = 4;
inline constexpr std::size_t bytesPerBlock = 8;
inline constexpr std::size_t bytesPerPixel = 4;

/// How the block is cut into halves; the value of the flip bit.
enum class Split : std::uint32_t { leftRight = 0, topBottom = 1 };

/// How the halves' colours are held; the value of the differential bit.
enum class Form : std::uint32_t { individual = 0, differential = 1 };

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

/// Differences that a differential block can hold between its second and first code.
inline constexpr int leastDelta = -4, greatestDelta = 3;

/// A code of 4 bits as 8 bits.
constexpr std::uint8_t expandFourBits(int code) {
    return static_cast<std::uint8_t>(code * 17);
}

/// A code of 5 bits as 8 bits, its high bits repeated below it.
/// Kept: a code outside 0 to 31, from a delta that leaves the range, wraps in its byte and is not clamped; foreign files with
/// such blocks decode as they always have.
constexpr std::uint8_t expandFiveBits(int code) {
    const int byte = code & 0xFF;
    return static_cast<std::uint8_t>(byte << 3 | byte >> 2);
}

constexpr Colour expand(const Codes& codes, Form form) {
    Colour colour{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        colour[channel] = form == Form::individual ? expandFourBits(codes[channel]) : expandFiveBits(codes[channel]);
    return colour;
}

/// Whether a differential block can hold the pair.
constexpr bool isLegalPair(const Codes& first, const Codes& second) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int delta = second[channel] - first[channel];
        if (delta < leastDelta || delta > greatestDelta) return false;
    }
    return true;
}

constexpr Split splitOf(const BlockWords& words) {
    return static_cast<Split>(words.colours & 1);
}

constexpr Form formOf(const BlockWords& words) {
    return static_cast<Form>(words.colours >> 1 & 1);
}

constexpr std::uint32_t tableOf(const BlockWords& words, std::size_t half) {
    return words.colours >> (half == 0 ? 5 : 2) & 7;
}

/// The index of pixel `column * 4 + row`.
constexpr std::uint32_t indexOf(const BlockWords& words, std::size_t pixel) {
    return (words.indices >> pixel & 1) | (words.indices >> pixel >> 15 & 2);
}

/// The halves' colours; the second's may lie outside the range of its form if the block is differential.
constexpr std::array<Codes, 2> codesOf(const BlockWords& words) {
    std::array<Codes, 2> codes{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int byte = static_cast<int>(words.colours >> (24 - 8 * channel) & 0xFF);
        const int delta = ((byte & 7) ^ 4) - 4;
        const bool isIndividual = formOf(words) == Form::individual;
        codes[0][channel] = isIndividual ? byte >> 4 : byte >> 3;
        codes[1][channel] = isIndividual ? byte & 15 : (byte >> 3) + delta;
    }
    return codes;
}

/// The byte of a colours word that holds one channel of both halves.
constexpr std::uint32_t packChannel(int first, int second, Form form) {
    return static_cast<std::uint32_t>(form == Form::individual ? first << 4 | second : first << 3 | ((second - first) & 7));
}

/// Number of a half's n-th pixel, the half's pixels counted down its columns.
constexpr std::size_t pixelNumber(Split split, std::size_t half, std::size_t n) {
    return split == Split::leftRight ? half * halfArea + n : n / 2 * blockEdge + half * 2 + n % 2;
}

/// A block's pixels in raster order: RGBA8, red in the lowest byte.
using BlockPixels = std::array<std::uint32_t, blockArea>;

/// Place in raster order of a pixel `column * 4 + row`.
constexpr std::size_t rasterPlace(std::size_t pixel) {
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

}  // namespace moktexture::etc1
