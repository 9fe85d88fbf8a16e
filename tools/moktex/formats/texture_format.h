#pragma once

#include <cstdint>
#include <string>

#include "MOKTexLib.h"

namespace moktextool {

struct Console;

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

/// Bytes of all levels at `bytesPerPixel`, computed in 64 bits.
std::uint64_t uncompressedSize(const moktexture::CMOKTextureHeader& header, std::uint32_t bytesPerPixel);
/// The largest data size of a texture.
inline constexpr std::uint64_t maxDataSize = 0xFFFFFFFF;

/// Decodes a compressed texture to RGBA8; others stay. The colour space stays as well, and no curve is applied.
/// Also decodes levels that are not multiples of the block, and all slices of a volume, which the codec alone does not.
void decodeBlocks(moktexture::CMOKTexture& texture, const std::string& name);

/// The parameters of changeFormat().
struct FormatChange {
    TextureFormat target;
    EMOKTColourSpace colourSpace;  ///< if the texture's differs, the curve is applied
    moktexture::ECompressorQuality quality = moktexture::eCompressorQuality3;
    bool dither = false;
};

/// Converts a texture to a format and colour space. Values outside the target's range are clamped, with a note, where Transcode()
/// would wrap them. A texture that has the format already stays bit for bit.
void changeFormat(moktexture::CMOKTexture& texture, const FormatChange& change, const std::string& name, Console& console);

/// One face of one layer at one MIP level as a texture of the same format; of a volume the first slice.
moktexture::CMOKTexture extractImage(const moktexture::CMOKTexture& texture, std::uint32_t level, std::uint32_t layer,
                                     std::uint32_t face);

}  // namespace moktextool
