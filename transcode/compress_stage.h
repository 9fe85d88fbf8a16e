#pragma once

#include <cstdint>

#include "CMOKTexture.h"

namespace moktexture {

/// Encodes a texture in PixelTypeRGBA8 with eVarUByteNorm, in place, to a compressed format; the colour space stays. What an
/// encoder does not write is zero. The texture must be addressable and its target form must fit in 32 bits. Returns the sum of
/// the bytes that the encoders wrote, which equals the texture's data size if all went well.
std::uint32_t compressStage(CMOKTexture& texture, PixelType target, ECompressorQuality quality);

}  // namespace moktexture
