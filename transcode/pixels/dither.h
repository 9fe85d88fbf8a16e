#pragma once

#include <array>
#include <cstdint>

#include "PixelType.h"

namespace moktexture {

/// Bits that a target keeps of R, G, B and A; 0 where it has no such channel.
using DitherRates = std::array<std::uint8_t, 4>;
DitherRates ditherRates(const PixelType& target);

/// Spreads the quantisation error of a target's bit rates through one RGBA8 level, in place: one half to the pixel on the right,
/// one quarter to the pixel on the lower right and one quarter to the pixel below, each truncated, and clamped after adding. What
/// would leave the level is lost. Channels that keep 0 bits, or 8 and more, stay as they are.
void ditherLevel(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth);

/// The plain form of ditherLevel(): channel by channel, column by column.
void ditherLevelPlain(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth);

}  // namespace moktexture
