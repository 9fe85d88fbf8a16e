#pragma once

#include <cstdint>

#include "CMOKTexture.h"

/// @file
/// The stages of Transcode(). Each replaces the texture it is given by one in another format; size, layers, faces, MIP levels and
/// metadata stay. The intermediate format of all stages is PixelTypeRGBA8 with eVarUByteNorm.

namespace moktexture {

/// A copy of the header, metadata included, with another format.
CMOKTextureHeader withFormat(const CMOKTextureHeader& header, PixelType format, EMOKTVariableType channelType,
                             EMOKTColourSpace colourSpace);

/// Decodes a texture in a compressed format to PixelTypeRGBA8, eVarUByteNorm, linear. Pixels that a decoder does not write are 0.
/// The texture must have valid pixel data, and its RGBA8 form must fit 32 bits.
/// @return the sum of the decoders' counts, which says nothing about success
std::uint32_t decompressStage(CMOKTexture& texture);

/// Converts an uncompressed texture to PixelTypeRGBA8 with eVarUByteNorm, to grey if the target is grey, and dithers it for the
/// bits that the target keeps. The colour space stays. The RGBA8 form must fit 32 bits.
void ditherStage(CMOKTexture& texture, const PixelType& target);

/// Encodes a texture in PixelTypeRGBA8 with eVarUByteNorm to a compressed format; the colour space stays. Bytes that an encoder
/// does not write are 0. The texture must have valid pixel data, and its target form must fit 32 bits.
/// @return the sum of the bytes that the encoders wrote: the texture's data size if every level was encoded
std::uint32_t compressStage(CMOKTexture& texture, PixelType target, ECompressorQuality quality);

/// The channel that ditherStage() makes the pixels grey from, eChannelLuminance or eChannelIntensity; eChannelNone if the target
/// is dithered in colour.
EChannelName greySource(const PixelType& target);

}  // namespace moktexture
