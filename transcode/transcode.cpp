#include "transcode.h"

#include <utility>

#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"
#include "transcode/convert_layout.h"
#include "transcode/stages.h"

/// @file
/// The driver: from any format to any other, through RGBA8 where a codec or the dither needs it.
///
///     compressed source                       decompressStage()   -> RGBA8, linear
///     dither requested, target below 32 bits  ditherStage()       -> RGBA8, with the target's quantisation error spread
///     layout, type or colour space differs    convertLayout()     -> the target, or RGBA8 if it is compressed; curve applied
///     compressed target                       compressStage()     -> the target
///
/// A stage that has nothing to do is skipped. Each one builds a new texture and releases the one before. A conversion through
/// RGBA8 loses precision, and so does the curve, which works on quantised channels.

namespace moktexture {

namespace {

/// Whether the conversion can be started: there are pixels and a target, and the size in every format on the way fits 32 bits.
bool isAcceptable(const CMOKTexture& texture, PixelType target, bool dithers) {
    if (!TextureInternals::hasValidPixelData(texture)) return false;
    if (isCompressed(target) && target.id >= eFmtUnknown) return false;
    const auto fitsAs = [&](PixelType format) {
        return sizesFit32Bits(withFormat(texture.getHeader(), format, eVarUByteNorm, eColourSpaceLinear));
    };
    const bool passesRGBA8 = dithers || isCompressed(target) || isCompressed(texture.getPixelType());
    return (!passesRGBA8 || fitsAs(PixelTypeRGBA8)) && fitsAs(target);
}

/// The texture in the target format and colour space; for a compressed target in RGBA8, as its encoder takes it.
CMOKTexture convertedTo(const CMOKTexture& texture, PixelType target, EMOKTVariableType channelType,
                        EMOKTColourSpace colourSpace) {
    const bool willBeEncoded = isCompressed(target);
    const PixelType format = willBeEncoded ? PixelTypeRGBA8 : target;
    const EMOKTVariableType type = willBeEncoded ? eVarUByteNorm : channelType;

    CMOKTexture converted(withFormat(texture.getHeader(), format, type, colourSpace), nullptr);
    PixelCodec fromCodec(texture.getPixelType(), texture.getChannelType());
    PixelCodec toCodec(format, type);
    convertLayout(texture, converted, fromCodec, toCodec, colourSpace, texture.getColourSpace());
    return converted;
}

/// Whether the encoders wrote exactly the texture's size.
/// Kept (size-alone-decides-success): nothing else reports failure, so that a target with neither encoder nor data size, eFmtBC7
/// for one, gives true and an empty texture. Callers convert headers to such formats this way.
bool compress(CMOKTexture& texture, PixelType target, ECompressorQuality quality) {
    const std::uint32_t count = compressStage(texture, target, quality);
    return count == texture.getDataSize(CMOKTextureHeader::allLevels, true, true);
}

}  // namespace

bool Transcode(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType, EMOKTColourSpace colourSpace,
               ECompressorQuality quality, bool dither) {
    // Kept (no-dither-from-32-bits): a target of 32 bits per pixel or more is never dithered, not even abgr 2.10.10.10, whose
    // alpha has 2 bits. ditherStage() goes through RGBA8: .mok files of such targets, from callers that always pass `dither`,
    // would lose the low 2 bits of each 10-bit channel and the low byte of each 16-bit one.
    const bool dithers = dither && bitsPerPixel(target) < 32;
    if (!isAcceptable(texture, target, dithers)) return false;

    if (isCompressed(texture.getPixelType())) decompressStage(texture);
    // Kept (dither-of-equal-format): a texture that has the target's format already is dithered too, so that callers who pass
    // `dither` get dithered pixels whatever the source was.
    if (dithers) ditherStage(texture, target);

    // The texture is uncompressed now, so that a compressed target always differs.
    const bool differs =
        target != texture.getPixelType() || colourSpace != texture.getColourSpace() || channelType != texture.getChannelType();
    if (!differs) return true;

    CMOKTexture converted = convertedTo(texture, target, channelType, colourSpace);
    const bool succeeded = !isCompressed(target) || compress(converted, target, quality);
    // Kept (failed-encoding-replaces): the texture is replaced also where encoding failed. Callers that get false hold a texture
    // in the target format, with the levels that could be encoded.
    texture = std::move(converted);
    return succeeded;
}

}  // namespace moktexture
