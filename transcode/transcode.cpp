#include "transcode.h"

#include <utility>

#include "core/texture/TextureInternals.h"
#include "core/texture/data_size.h"
#include "transcode/compress_stage.h"
#include "transcode/convert_layout.h"
#include "transcode/decompress_stage.h"
#include "transcode/dither_stage.h"
#include "transcode/pixels/PixelCodec.h"
#include "transcode/stage_frame.h"

namespace moktexture {

namespace {

/// Whether the request can be begun: there are pixels and a target, and every form on the way fits in 32 bits.
bool isAcceptable(const CMOKTexture& texture, PixelType target, bool dithers) {
    if (!TextureInternals::hasValidPixelData(texture)) return false;
    if (isCompressed(target) && target.id >= eFmtUnknown) return false;
    const auto fitsAs = [&](PixelType format) {
        return sizesFit32Bits(withFormat(texture.getHeader(), format, eVarUByteNorm, eColourSpaceLinear));
    };
    const bool passesRGBA8 = dithers || isCompressed(target) || isCompressed(texture.getPixelType());
    return (!passesRGBA8 || fitsAs(PixelTypeRGBA8)) && fitsAs(target);
}

/// A new texture of the form; RGBA8 in that colour space if the target is compressed, which the encoder then takes up.
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
/// Kept: this comparison alone tells of failure, so a target without encoder and without size succeeds with an empty texture.
bool compress(CMOKTexture& texture, PixelType target, ECompressorQuality quality) {
    const std::uint32_t count = compressStage(texture, target, quality);
    return count == texture.getDataSize(CMOKTextureHeader::allLevels, true, true);
}

}  // namespace

bool Transcode(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType, EMOKTColourSpace colourSpace,
               ECompressorQuality quality, bool dither) {
    // Kept: a target of 32 bits per pixel or more is never dithered, also where its channels are narrow.
    const bool dithers = dither && bitsPerPixel(target) < 32;
    if (!isAcceptable(texture, target, dithers)) return false;

    if (isCompressed(texture.getPixelType())) decompressStage(texture);
    // Kept: also where the texture has the target's form already, so that such a request changes the pixels.
    if (dithers) ditherStage(texture, target);

    // From here on the texture is uncompressed, so that a compressed target always differs.
    const bool differs =
        target != texture.getPixelType() || colourSpace != texture.getColourSpace() || channelType != texture.getChannelType();
    if (!differs) return true;

    CMOKTexture converted = convertedTo(texture, target, channelType, colourSpace);
    const bool succeeded = !isCompressed(target) || compress(converted, target, quality);
    // Kept: the texture is replaced also where encoding failed; callers that get false hold a texture of the target format.
    texture = std::move(converted);
    return succeeded;
}

}  // namespace moktexture
