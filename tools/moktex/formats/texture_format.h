#pragma once

#include "MOKTexLib.h"

namespace moktextool {

/// Pixel type and channel type, which together say what a texture's bytes mean.
struct TextureFormat {
    moktexture::PixelType pixelType;
    EMOKTVariableType channelType;
};
bool operator==(const TextureFormat& a, const TextureFormat& b);

inline constexpr TextureFormat rgba8Format{moktexture::PixelTypeRGBA8, eVarUByteNorm};
inline constexpr TextureFormat rgba16Format{moktexture::PixelTypeRGBA16, eVarUShortNorm};
inline constexpr TextureFormat rgbaFloatFormat{moktexture::PixelTypeRGBA32, eVarFloat};

TextureFormat formatOf(const moktexture::CMOKTextureHeader& header);
bool isCompressed(moktexture::PixelType format);
bool isSigned(EMOKTVariableType type);
/// Bits of the widest channel; 8 for a compressed format, which decodes to 8 bits.
unsigned int widestChannel(const TextureFormat& format);

}  // namespace moktextool
