#pragma once

#include "PixelType.h"
#include "texture_enums.h"

namespace moktexture {

/// Whether the image operations work on a form: RGBA8 with eVarUByteNorm, RGBA16 with eVarUShortNorm, RGBA32 with eVarUIntNorm or
/// eVarFloat, and nothing else.
bool isOperableTexture(const PixelType& type, const EMOKTVariableType& channelType);

}  // namespace moktexture
