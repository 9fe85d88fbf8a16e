#pragma once

#include <cstdint>
#include <string>

#include "MOKTexLib.h"

namespace moktextool {

struct Console;

/// Pixel format and channel type: what a texture's bytes mean.
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
/// Bits of the widest channel; 8 for a compressed format, whose pixels come out at 8 bits.
unsigned int widestChannel(const TextureFormat& format);

/// Bytes of all levels at so many bytes per pixel, without wrapping.
std::uint64_t uncompressedSize(const moktexture::CMOKTextureHeader& header, std::uint32_t bytesPerPixel);
/// The largest data size of a texture.
inline constexpr std::uint64_t maxDataSize = 0xFFFFFFFF;

/// Decodes a compressed texture to RGBA8; others stay. The colour space label stays as well, and no curve is applied.
/// Also decodes right what the codec alone does not: levels that are no whole blocks, and slices of a volume.
void decodeBlocks(moktexture::CMOKTexture& texture, const std::string& name);

/// What changeFormat() needs to know beyond the format.
struct FormatChange {
    TextureFormat target;
    EMOKTColourSpace colourSpace;  ///< where the texture's label differs, the curve is applied
    moktexture::ECompressorQuality quality = moktexture::eCompressorQuality3;
    bool dither = false;
};

/// Brings a texture into a format and colour space. Values that the target cannot hold are clamped, where the plain conversion
/// would wrap them; a line says so. A texture that is there already stays bit for bit.
void changeFormat(moktexture::CMOKTexture& texture, const FormatChange& change, const std::string& name, Console& console);

/// One image of a texture, in the texture's format: a face of a layer at a level, the first slice of a volume.
moktexture::CMOKTexture extractImage(const moktexture::CMOKTexture& texture, std::uint32_t level, std::uint32_t layer,
                                     std::uint32_t face);

}  // namespace moktextool
