#pragma once

#include <array>
#include <cstdint>

#include "PixelType.h"

namespace moktexture {

/// Bits that a target keeps of R, G, B and A; 0 for a channel that it lacks.
using DitherRates = std::array<std::uint8_t, 4>;
DitherRates ditherRates(const PixelType& target);

/// Dithers one level of RGBA8 in place, for the bits that the target keeps. Channels of which it keeps 0 bits, or 8 and more,
/// stay as they are. No error leaves a slice.
void ditherLevel(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth);

}  // namespace moktexture
