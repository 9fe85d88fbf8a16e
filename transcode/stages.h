#pragma once

#include <cstdint>

#include "CMOKTexture.h"
#include "core/base/image_view.h"
#include "format_info.h"

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

// Kept (codecs-take-one-slice): codecs know no depth. Of a 3D level the first slice alone is coded, and Transcode() to a
// compressed format reports failure, because the encoder's count is below the data size.

/// Decodes one slice to an RGBA8 image and returns the codec's own count, which need not be bytes.
using LevelDecoder = std::uint32_t (*)(const void* blocks, const ImageView& image, const FormatInfo& format);

/// Encodes one slice and returns the bytes written, 0 if the codec refuses the image.
using LevelEncoder = std::uint32_t (*)(const ConstImageView& image, void* blocks, const FormatInfo& format,
                                       ECompressorQuality quality);

/// A codec as the stages of Transcode() call it. The rows of its images follow each other without a gap.
struct LevelCodec {
    LevelDecoder decode;  ///< null: the pixels stay zero
    LevelEncoder encode;  ///< null: the blocks stay zero and nothing is counted
};

/// The codec of that number; one without functions for eCodecNone.
const LevelCodec& levelCodec(EFormatCodec codec);

}  // namespace moktexture
