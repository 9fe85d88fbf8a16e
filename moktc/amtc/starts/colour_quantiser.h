#pragma once

#include "moktc/amtc/records/level_records.h"

/// @file
/// From colours as they should be to pairs that a block can hold. Results are RGBA8 with the stored bits expanded.

namespace moktexture::amtc {

/// The 8 bits that a decoder makes of a stored code of `bits` (3 to 5).
constexpr std::uint32_t expandToByte(std::uint32_t code, std::uint32_t bits) {
    if (bits == 5) return code << 3 | code >> 2;
    if (bits == 4) return code << 4 | (code & 8) | code >> 1;
    return code << 5 | (code & 6) << 2 | code;
}

/// Stored bits of red, green and blue.
using ChannelBits = std::array<std::uint32_t, 3>;

// Rows: a translucent and an opaque colour. Columns: bits of red, green and blue.
// clang-format off
inline constexpr std::array<ChannelBits, 2> bitsOfA = {{{4, 4, 3}, {5, 5, 4}}};
inline constexpr std::array<ChannelBits, 2> bitsOfB = {{{4, 4, 4}, {5, 5, 5}}};
// clang-format on

/// The nearest of the codes of `bits` (3 to 5), expanded to 8 bits; of two equally near the upper one if `preferUpper`. `value`
/// is from 0 to 255; what lies beyond is held to that, and what is not a number gives 0.
std::uint32_t QuantiseChannel(float value, std::uint32_t bits, bool preferUpper);
std::uint32_t QuantiseChannelByte(std::uint32_t value, std::uint32_t bits, bool preferUpper);

/// The nearest, as 8 bits, of three alphas, the higher of two equals: q * 17, the next value with that low bit (0 or 1), and 255,
/// which marks an opaque colour. q is the value's 4-bit floor with that low bit. Only at or below 0 is it 0 whatever the low bit.
std::uint32_t QuantiseAlpha(float value, std::uint32_t lowBit);

/// The pair of storable colours for two wanted ones.
ColourPair QuantiseColourPair(bool secondGeneration, bool isPunchThrough, const ColourVector& floatA, const ColourVector& floatB);

/// By channel: whether A's and B's values may change places.
using Swappable = std::array<bool, channelCount>;

/// A pair one of whose blends comes close to one RGBA8 colour. `narrow` keeps A and B close together.
ColourPair SingleColourMatch(std::uint32_t colour, bool isPunchThrough, bool secondGeneration, bool narrow, Swappable& swappable);

/// For wanted colours that `equalColour` (RGBA8) came out of for both: a pair around it, turned so that each side is near its
/// own.
ColourPair SplitEqualPair(bool secondGeneration, bool isPunchThrough, const ColourVector& floatA, const ColourVector& floatB,
                          std::uint32_t equalColour);

}  // namespace moktexture::amtc
