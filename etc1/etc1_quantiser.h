#pragma once

#include "etc1/etc1_half.h"

namespace moktexture::etc1 {

/// Turns a colour into codes.
using Quantise = Codes (*)(const FloatColour& colour);

/// The nearest code of 5 bits to a channel; halves go up.
int RoundToFiveBits(float value);

/// The nearest code of 4 bits to a channel, from a little below the half.
int RoundToFourBits(float value);

Codes roundToFiveBits(const FloatColour& colour);
Codes roundToFourBits(const FloatColour& colour);

/// Of the codes next below and above each channel, the combination whose errors differ least between the channels, which keeps
/// the hue, however large they are. The first stays, low codes before high, red fastest.
Codes QuantiseColour444(const FloatColour& colour);
Codes QuantiseColour555(const FloatColour& colour);

/// The same with weights on the three differences.
Codes QuantiseColour444Perceptual(const FloatColour& colour);
Codes QuantiseColour555Perceptual(const FloatColour& colour);

/// The two ways of one strategy to find codes.
struct Quantisers {
    Quantise fiveBits;
    Quantise fourBits;
};

}  // namespace moktexture::etc1
