#pragma once

#include "moktc/amtc/evaluation/blend_table.h"

namespace moktexture::amtc {

/// Chooses the modulation of one block against the final colours around it and writes its 8 bytes. Returns the block's error, the
/// sum of squared differences over its own pixels. `blendTable` is working space. At 1 bit per pixel it writes a message and
/// aborts.
std::uint32_t PackLocalBlock(const AmtcImage& image, const BlockRows& blockRows, const AmtcLevelSettings& settings,
                             std::uint32_t row, std::uint32_t column, BlendTable& blendTable, std::uint8_t* destination);

/// The colour word of a pair that the format can hold, with the bits of the region mode. At 1 bit per pixel it writes a message
/// and aborts.
std::uint32_t packColourWord(const ColourPair& colours, std::uint32_t mode, const AmtcLevelSettings& settings);

/// Ends the process with a message if a sample of one bit has another modulation index than 0 or 3.
void requireOneBitIndex(std::uint32_t index);
/// How the pixels without samples get their weights in a region mode that has samples; any other mode ends the process with a
/// message.
ModulationClass meanClassOf(std::uint32_t mode);

}  // namespace moktexture::amtc
