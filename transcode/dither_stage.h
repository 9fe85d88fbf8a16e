#pragma once

#include "CMOKTexture.h"

namespace moktexture {

/// The channel of RGBA8 that a target reduces to grey, eChannelLuminance or eChannelIntensity, and takes the dither from;
/// eChannelNone if the target is dithered in colour.
EChannelName greySource(const PixelType& target);

/// Brings an uncompressed texture, in place, to PixelTypeRGBA8 with eVarUByteNorm, its colours grey if the target is, and spreads
/// the error that the target's bit rates will make. The colour space stays. The RGBA8 form must fit in 32 bits.
void ditherStage(CMOKTexture& texture, const PixelType& target);

}  // namespace moktexture
