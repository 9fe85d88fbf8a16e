#pragma once

#include "CMOKTexture.h"

namespace moktexture {

/// Brings a texture, in place, into another pixel format, channel type and colour space.
///
/// A compressed source is decoded to RGBA8 first and counts as linear from then on, whatever its header says. A compressed target
/// is encoded from RGBA8; levels below the format's block are tiled up to it. Size, members, faces, levels and metadata stay.
/// @param target  the format; eFmtUnknown and numbers above it are refused
/// @param channelType  type of the channels of an uncompressed target
/// @param colourSpace  where it differs from the texture's, the curve is applied to the colour channels
/// @param quality  effort of the MOKTC and ETC1 encoders
/// @param dither  spread the error of a target below 32 bits per pixel
/// @return false with the texture unchanged if it is empty or lacks pixels, a form on the way does not fit in 32 bits, or the
///         target is refused; false with the texture replaced by one of the target format if the encoder refused a level (DXT: a
///         width or height above 4 that is no multiple of 4, or a depth above 1) or the format has no encoder. A target without a
///         data size, such as eFmtBC7, gives true and a texture without pixels.
/// Raises `std::bad_alloc`, with the texture either unchanged or in the form it had reached.
///
/// Thread safety: calls on different textures may run at the same time.
MOKTEX_API bool Transcode(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType, EMOKTColourSpace colourSpace,
                          ECompressorQuality quality = eCompressorQuality3, bool dither = false);

}  // namespace moktexture
