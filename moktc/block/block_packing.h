#pragma once

#include <cstdint>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {

/// Sets colour A or B of a first-generation colour word from an RGBA8 colour: opaque if alpha is 255, else translucent. Low bits
/// are cut off; the mode bit and the other colour's half stay.
void packColourA(Block& block, std::uint32_t rgba);
void packColourB(Block& block, std::uint32_t rgba);

// Modulation words from 2-bit indices, one a pixel in raster order.

/// 4 bpp, both modes: 16 indices.
std::uint32_t packIndices(const std::uint8_t* indices);

/// 2 bpp, mode 0: 32 indices, of which 3 gives a set bit.
std::uint32_t packDirect(const std::uint8_t* indices);

/// 2 bpp, mode 1: 32 indices, of which those with even x + y are taken. The sub-mode is still to be put in.
std::uint32_t packSamples(const std::uint8_t* indices);

}  // namespace moktexture::moktc
