#pragma once

#include "moktc/amtc/evaluation/blend_table.h"

namespace moktexture::amtc {

/// Fixes the modulation of one block against the final colours around it and writes its 8 bytes. Returns the block's error, the
/// sum of squared differences over its own pixels. `blendTable` is working space. At 1 bit per pixel it writes a message and
/// aborts.
std::uint32_t PackLocalBlock(const AmtcImage& image, const BlockRows& blockRows, const AmtcLevelSettings& settings,
                             std::uint32_t row, std::uint32_t column, BlendTable& blendTable, std::uint8_t* destination);

/// The colour word of a pair whose alphas fit together, with the bits of the region mode. At 1 bit per pixel it writes a message
/// and aborts.
std::uint32_t packColourWord(const ColourPair& colours, std::uint32_t mode, const AmtcLevelSettings& settings);

}  // namespace moktexture::amtc
