#pragma once

#include "CMOKTexture.h"

/// @file
/// Operations on uncompressed textures, in place.
///
/// All of them accept four formats and refuse every other one, with false and the texture unchanged; Transcode() converts a
/// texture to one of them:
///
/// | PixelType       | channel type   | element         |
/// | --------------- | -------------- | --------------- |
/// | PixelTypeRGBA8  | eVarUByteNorm  | unsigned 8-bit  |
/// | PixelTypeRGBA16 | eVarUShortNorm | unsigned 16-bit |
/// | PixelTypeRGBA32 | eVarUIntNorm   | unsigned 32-bit |
/// | PixelTypeRGBA32 | eVarFloat      | 32-bit float    |
///
/// A texture whose size does not fit in 32 bits, or whose header describes more bytes than its buffer has, is refused likewise.
///
/// A texture without layers, faces, levels or a buffer is accepted, but has no pixels to work on. Operations that work in place
/// then give false, except where they document a case that gives true; PreMultiplyAlpha() still sets the flag. The operations
/// that build a new texture replace it nevertheless:
///
/// | Operation                                           | no layers or no faces      | no levels, or no buffer          |
/// | --------------------------------------------------- | -------------------------- | -------------------------------- |
/// | Resize(), Rotate90(), Border(), GenerateNormalMap() | false; new header          | false; new header, pixels all 0  |
/// | GenerateMIPMaps()                                   | true; new number of levels | false; unchanged                 |
///
/// Resize(), GenerateMIPMaps(), Rotate90(), Border() and GenerateNormalMap() replace the buffer: earlier results of getDataPtr()
/// dangle. The others write to the buffer in place.
///
/// Floats are converted to integers by truncation, keeping the low bits. A float result that is NaN by computation is always the
/// same quiet NaN. All but Bleed() raise `std::bad_alloc`, with the texture unchanged. Calls on different textures may run at the
/// same time.

namespace moktexture {

/// Writes constants to channels of every pixel of every level.
/// @param count  number of entries; 0 does nothing and gives true
/// @param channels  `count` destinations; a later entry overrides an earlier one. Luminance and intensity write the same value to
///        R, G and B, unspecified writes alpha, eChannelNone and names above eChannelUnspecified write nothing.
/// @param values  `count` values in units of the element, low bits kept; a float texture gets the value as a float (255 is 255.0)
/// @return false if the texture is refused, or an array is null and `count` is not 0.
MOKTEX_API bool SetChannels(CMOKTexture& texture, unsigned int count, EChannelName* channels, unsigned int* values);

/// SetChannels() with float values. They are not scaled: 1.0 stores 1 in an 8-bit element.
MOKTEX_API bool SetChannelsFloat(CMOKTexture& texture, unsigned int count, EChannelName* channels, float* values);

/// Copies channels of every pixel from a texture of equal size, which may be the destination itself and may differ in element
/// type. All sources are read before any destination is written.
/// @param count  number of entries; 0 does nothing and gives true
/// @param destinationChannels  `count` destinations, as in SetChannels()
/// @param sourceChannels  `count` sources; luminance is 0.2126 R + 0.7152 G + 0.0722 B, intensity the mean of R, G and B. Entries
///        of eChannelNone or above eChannelUnspecified are skipped.
/// Values are scaled by the units of the elements in single precision, truncated and not clamped: white becomes 0 in a 32-bit
/// integer element, and some 16-bit values lose a unit even between 16-bit textures.
/// @return false if a texture is refused, or, with `count` not 0, if width, height, depth or the numbers of layers, levels or
///         faces differ or an array is null.
MOKTEX_API bool CopyChannels(CMOKTexture& destination, const CMOKTexture& source, unsigned int count,
                             EChannelName* destinationChannels, EChannelName* sourceChannels);

/// Changes the size in pixels of level 0 and drops all other levels. The border in the metadata is scaled along.
/// Samples points, and does not average areas: reduce in steps of one half for best quality.
/// An equal size does nothing, keeps the levels and gives true. An unknown mode gives zeroed pixels.
/// The linear filter truncates every product of integer elements, so that even a flat picture darkens, by up to a unit for each
/// axis. White of 32-bit integer elements becomes 0 in the linear and cubic filters. The cubic filter clamps floats to the range
/// 0 to 1.
/// @return false if the texture is refused, a new size is 0, or the result does not fit in 32 bits; also for a texture without
///         pixels, which is replaced by one of the new size.
MOKTEX_API bool Resize(CMOKTexture& texture, const unsigned int& newWidth, const unsigned int& newHeight,
                       const unsigned int& newDepth, EResizeMode mode);

/// GenerateMIPMaps(): the full chain, down to 1 by 1 by 1.
inline constexpr unsigned int allMIPLevels = 0xFFFFFFFFu;

/// Rebuilds the levels below level 0, each from the one above it.
/// @param filter  as in Resize(), in steps of one half. An unknown filter gives zeroed levels and true.
/// @param levels  new number of levels, level 0 included, or allMIPLevels. The current number does nothing and gives true, even
///        if the levels are stale. Levels beyond the full chain are 1 by 1 by 1. From level 32 on, the sizes in the header repeat
///        from that of level 0: of such levels only the first pixel is written, the others are 0.
/// @return false if the texture is refused, if it has layers and faces but no level 0 to start from, if `levels` is 0 or above
///         255, or if the result does not fit in 32 bits; the texture is then unchanged. True for a texture without layers or
///         faces, whose header gets the new number of levels.
MOKTEX_API bool GenerateMIPMaps(CMOKTexture& texture, EResizeMode filter, unsigned int levels = allMIPLevels);

/// Tints each level but level 0 with a colour of its own, so that a viewer shows which level is sampled: green, blue, cyan,
/// magenta, yellow, red, and again. The tint is as bright as the mean of R, G and B; their sum wraps at 32 bits in 32-bit integer
/// elements, so that bright pixels become dark.
/// @return false if the texture is refused.
MOKTEX_API bool ColourMIPMaps(CMOKTexture& texture);

/// Multiplies the colours of every pixel of every level by its alpha, and sets isPreMultiplied(). Alpha does not change.
/// For 8-bit elements only: the low 8 bits of every product are kept, so that colours of wider elements are lost, and colours of
/// float elements become whole numbers from 0 to 255, 0 for products below 1.
/// @return false if the texture is refused or isPreMultiplied() already.
MOKTEX_API bool PreMultiplyAlpha(CMOKTexture& texture);

/// Replaces the colours of fully transparent pixels by the mean of the visible pixels (alpha not 0) up to 4 pixels away along
/// each axis, so that filters and block codecs draw no dark fringe into a cut-out. Alpha does not change, nor do pixels without
/// visible neighbours. White of 32-bit integer elements bleeds as 0. Call it before GenerateMIPMaps() or after: it processes
/// every level.
/// @return false if the texture is refused. If memory for the copy of a level is lacking, no exception is raised: that level
///         stays unchanged, the others are processed, and the result is false if it was the last one.
MOKTEX_API bool Bleed(CMOKTexture& texture);

/// Mirrors every level along an axis; an unknown axis does nothing and gives true. Orientation metadata does not change: call
/// CMOKTextureHeader::setOrientation() to update it.
/// @return false if the texture is refused.
MOKTEX_API bool Flip(CMOKTexture& texture, EMOKTAxis axis);

/// Rotates every slice of every level by 90 degrees about Z: width and height are exchanged.
/// @param axis  eAxisZ. Every other axis gives pixels of 0: eAxisX exchanges depth and height, eAxisY sets the height to the
///        width, and an unknown axis, which gives false, keeps the size.
/// @param forward  true moves the top left pixel to the top right, clockwise; false to the bottom left
/// @return false if the texture is refused, the result does not fit in 32 bits, or the axis is unknown; also for a texture
/// without
///         pixels, which is replaced by one of the new dimensions.
MOKTEX_API bool Rotate90(CMOKTexture& texture, EMOKTAxis axis, bool forward);

/// Extends level 0 on both sides of each axis, drops all other levels, and stores the sizes with setBorder(), in place of an
/// earlier border. In x and y the margin mirrors the image with its edge pixel repeated: A B C with a border of 2 becomes
/// B A A B C C B. A margin wider than the image is 0 where there is no pixel to mirror.
/// @param borderX,borderY  pixels on each side. All borders 0 do nothing and give true.
/// @param borderZ  slices on each side, whose content is not a border: the first slice and those after the image are 0, those
///        between mirror the image about its first slice, and `borderZ` - 1 slices before the image's last one become 0.
/// @return false if the texture is refused or the result does not fit in 32 bits; also for a texture without pixels, which is
///         replaced by one of the new size, with the border stored.
MOKTEX_API bool Border(CMOKTexture& texture, unsigned int borderX, unsigned int borderY, unsigned int borderZ);

/// Converts heights, in the red channel, to a map of surface normals, PixelTypeRGBA32 with eVarFloat whatever the source format;
/// scale and order are stored with setBumpMap(). Colour space, isPreMultiplied() and other metadata do not change, so set
/// eColourSpaceLinear if the heights were declared as sRGB. Every level is converted independently. Edges wrap around, for tiles;
/// in a texture with depth the rows beyond the first and last row are those of slice 0.
/// @param scale  steepness: a pixel's slope is this times the difference of its two neighbours, for heights from 0 to 1. Negative
///        values invert the relief. 0 gives false and a texture of the new format with all pixels 0.
/// @param channelOrder  content of the channels red to alpha: x, y and z of the normal, 0.5 for a component of 0, and h for the
///        height; other letters, and channels without one, give 1.0. Of equal letters the last one applies.
/// @return false if the texture is refused, the result does not fit in 32 bits, or `scale` is 0; also for a texture without
///         pixels, which is replaced by one of the new format, with scale and order stored.
///
/// @code
/// moktexture::GenerateNormalMap(texture, 2.0f, "xyzh");
/// moktexture::Transcode(texture, moktexture::PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear);
/// @endcode
MOKTEX_API bool GenerateNormalMap(CMOKTexture& texture, float scale, CMOKTString channelOrder);

}  // namespace moktexture
