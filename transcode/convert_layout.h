#pragma once

#include "CMOKTexture.h"
#include "transcode/pixels/PixelCodec.h"

namespace moktexture {

/// Converts all pixels of `from` into `to`, which has the same size, members, faces and levels and a buffer of its own.
/// @param fromCodec, toCodec  the textures' layouts; their buffers are working space
/// @param target, source  colour spaces: where they differ, the colour channels of the result go through the curve
/// @return bytes a destination pixel times pixels converted, wrapped at 32 bits.
/// No pixel outside either level is touched, whatever the headers say; textures that are not addressable give 0.
int convertLayout(const CMOKTexture& from, CMOKTexture& to, PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target,
                  EMOKTColourSpace source);

}  // namespace moktexture
