#pragma once

#include <cstdint>

#include "CMOKTexture.h"

namespace moktexture {

/// Decodes a texture in a compressed format, in place, to PixelTypeRGBA8, eVarUByteNorm, linear. What a decoder does not write is
/// zero. The texture must be addressable and its RGBA8 form must fit in 32 bits. Returns the sum of the decoders' counts, which
/// tells nothing about success.
std::uint32_t decompressStage(CMOKTexture& texture);

}  // namespace moktexture
