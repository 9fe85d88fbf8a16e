#pragma once

#include "CMOKTexture.h"

namespace moktexture {

/// Converts a texture, in place, to another pixel format, channel type and colour space.
///
/// A compressed source is decoded to RGBA8 first and counts as linear from then on, whatever colour space its header declares. A
/// compressed target is encoded from RGBA8 and gets the channel type eVarUByteNorm; levels smaller than the format's block are
/// tiled to fill it. Size, layers, faces, levels and metadata do not change. Integer types that are not normalised are read and
/// written as normalised ones. Values above 1 are not clamped: they wrap in their element or spill into the channels above.
/// @param target  the pixel format; eFmtUnknown and numbers above it are refused
/// @param channelType  type of the channels of an uncompressed target
/// @param colourSpace  if one of the two is linear and the other sRGB, the transfer curve is applied to the colour channels
/// @param quality  effort of the MOKTC and ETC1 encoders. First-generation MOKTC at quality 0 is fast; everything else takes
///        seconds to minutes per megapixel, 64 MiB of address space beside about 1.5 KB per block, and as many threads as the
///        machine runs at once
/// @param dither  diffuse the error of a target below 32 bits per pixel. The pixels are converted to RGBA8 for it, even if
///        nothing else changes, and become grey for a target with `l` or `i`.
/// @return false with the texture unchanged: the texture is empty or lacks pixels, an intermediate format does not fit in 32
/// bits,
///         or the target is refused. False with the texture replaced by one of the target format: the encoder refused a level
///         (DXT: a width or height above 4 that is no multiple of 4, or a depth above 1; MOKTC: a side above 4096, sides that are
///         not whole blocks, in the second generation with its blocks written nevertheless, or lack of memory), or the format
///         has a size but no encoder.
///         Otherwise true, also where pixels come out zeroed: levels that the decoder refuses (DXT: a width or height that is no
///         multiple of 4), sources without a decoder, layouts with contradicting channels, and channel types above eVarFloat.
/// Raises `std::bad_alloc`, with the texture either unchanged or in the intermediate format reached. The process ends with a
/// message on the standard error stream if the MOKTC encoder cannot start a thread.
///
/// Thread safety: calls on different textures may run at the same time.
/// TranscodeTexture() does the same and tells why it cannot.
MOKTEX_API bool Transcode(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType, EMOKTColourSpace colourSpace,
                          ECompressorQuality quality = eCompressorQuality3, bool dither = false);

/// Why a texture can or cannot be converted.
enum ETranscodeStatus : unsigned int {
    eTranscodeOk = 0,
    eTranscodeNoPixels = 1,   ///< the texture is empty or lacks pixels
    eTranscodeNoDecoder = 2,  ///< the source's format cannot be decoded, or its channels contradict each other
    eTranscodeNoEncoder = 3,  ///< the target's format cannot be encoded, or its channels contradict each other
    eTranscodeBadSize = 4,    ///< the codec of the source or the target does not take the size of a level, or a volume
    eTranscodeTooLarge = 5,   ///< the result, or RGBA8 on the way to it, does not fit in 32 bits
    eTranscodeFailed = 6,     ///< the encoder gave up, for want of memory for instance
};

/// A sentence in English for a status; a static string.
MOKTEX_API const char* describe(ETranscodeStatus status);

/// Whether TranscodeTexture() can convert textures of that header to a format. Touches no pixels.
MOKTEX_API ETranscodeStatus CheckTranscode(const CMOKTextureHeader& source, PixelType target, EMOKTVariableType channelType);

/// Transcode() with a status. The texture is unchanged unless the result is eTranscodeOk.
MOKTEX_API ETranscodeStatus TranscodeTexture(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType,
                                             EMOKTColourSpace colourSpace, ECompressorQuality quality = eCompressorQuality3,
                                             bool dither = false);

}  // namespace moktexture
