#pragma once

#include <cstdint>
#include <string>

#include "MOKTexLib.h"

namespace moktextool {

struct Console;

/// Pixel format and channel type: what a texture's bytes mean.
struct TextureForm {
    moktexture::PixelType format;
    EMOKTVariableType channelType;
};
bool operator==(const TextureForm& a, const TextureForm& b);

inline constexpr TextureForm rgba8Form{moktexture::PixelTypeRGBA8, eVarUByteNorm};
inline constexpr TextureForm rgba16Form{moktexture::PixelTypeRGBA16, eVarUShortNorm};
inline constexpr TextureForm rgbaFloatForm{moktexture::PixelTypeRGBA32, eVarFloat};

TextureForm formOf(const moktexture::CMOKTextureHeader& header);
bool isCompressed(moktexture::PixelType format);
bool isSigned(EMOKTVariableType type);
/// Bits of the widest channel; 8 for a compressed format, whose pixels come out at 8 bits.
unsigned int widestChannel(const TextureForm& form);

/// Bytes of all levels at so many bytes per pixel, without wrapping.
std::uint64_t uncompressedSize(const moktexture::CMOKTextureHeader& header, std::uint32_t bytesPerPixel);
/// The largest data size of a texture.
inline constexpr std::uint64_t maxDataSize = 0xFFFFFFFF;

/// Decodes a compressed texture to RGBA8; others stay. The colour space label stays as well, and no curve is applied.
/// Also decodes right what the codec alone does not: levels that are no whole blocks, and slices of a volume.
void decodeBlocks(moktexture::CMOKTexture& texture, const std::string& name);

/// What changeForm() needs to know beyond the form.
struct FormChange {
    TextureForm target;
    EMOKTColourSpace colourSpace;  ///< where the texture's label differs, the curve is applied
    moktexture::ECompressorQuality quality = moktexture::eCompressorQuality3;
    bool dither = false;
};

/// Brings a texture into a form and colour space. Values that the target cannot hold are clamped, where the plain conversion
/// would wrap them; a line says so. A texture that is there already stays bit for bit.
void changeForm(moktexture::CMOKTexture& texture, const FormChange& change, const std::string& name, Console& console);

/// One image of a texture, in the texture's form: a face of a member at a level, the first slice of a volume.
moktexture::CMOKTexture extractImage(const moktexture::CMOKTexture& texture, std::uint32_t level, std::uint32_t member,
                                     std::uint32_t face);

}  // namespace moktextool
