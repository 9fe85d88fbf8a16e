// Whether a conversion is possible, and why not.
#include <algorithm>
#include <array>

#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"
#include "format_info.h"
#include "transcode.h"
#include "transcode/pixels/PixelCodec.h"

namespace moktexture {
namespace {

bool isLayoutSound(PixelType format, EMOKTVariableType channelType) {
    return channelType <= eVarFloat && PixelCodec(format, channelType).errorFlags == 0;
}

bool canDecode(const CMOKTextureHeader& source) {
    const PixelType format = source.getPixelType();
    return isCompressed(format) ? format.id < eFmtUnknown && GetFormatInfo(format).hasDecoder
                                : isLayoutSound(format, source.getChannelType());
}

bool canEncode(PixelType target, EMOKTVariableType channelType) {
    return isCompressed(target) ? target.id < eFmtUnknown && GetFormatInfo(target).hasEncoder
                                : isLayoutSound(target, channelType);
}

/// Levels smaller than a block are filled up to one.
bool fitsBlock(std::uint32_t edge, std::uint32_t block) {
    return edge < block || edge % block == 0;
}

/// Whether the codec takes every level.
bool takesSizes(const CMOKTextureHeader& header, PixelType format, bool isEncoded) {
    if (!isCompressed(format)) return true;
    const FormatInfo& info = GetFormatInfo(format);
    if (header.getDepth() > 1 && isEncoded) return false;
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level) {
        const std::uint32_t width = header.getWidth(level), height = header.getHeight(level);
        if (!fitsBlock(width, info.sizeBlock.width) || !fitsBlock(height, info.sizeBlock.height)) return false;
        if (isEncoded && std::max(width, height) > info.largestSide) return false;
        if (info.needsPowersOfTwo && ((width & (width - 1)) != 0 || (height & (height - 1)) != 0)) return false;
    }
    return true;
}

bool fitsAs(const CMOKTextureHeader& source, PixelType format) {
    CMOKTextureHeader header = source;
    header.setPixelFormat(format);
    return sizesFit32Bits(header);
}

}  // namespace

const char* describe(ETranscodeStatus status) {
    static constexpr std::array<const char*, 7> sentences = {
        "The texture can be converted.",
        "The texture has no pixels.",
        "The format of the texture cannot be decoded.",
        "The target format cannot be encoded.",
        "The format does not take the size of every level.",
        "The result does not fit in 32 bits.",
        "The encoder gave up.",
    };
    return status < sentences.size() ? sentences[status] : "The status is unknown.";
}

ETranscodeStatus CheckTranscode(const CMOKTextureHeader& source, PixelType target, EMOKTVariableType channelType) {
    if (!sizesFit32Bits(source)) return eTranscodeTooLarge;
    if (!canDecode(source)) return eTranscodeNoDecoder;
    if (source.getDataSize() == 0) return eTranscodeNoPixels;
    if (!canEncode(target, channelType)) return eTranscodeNoEncoder;
    if (!takesSizes(source, source.getPixelType(), false) || !takesSizes(source, target, true)) return eTranscodeBadSize;
    const bool passesRGBA8 = isCompressed(source.getPixelType()) || isCompressed(target);
    return fitsAs(source, target) && (!passesRGBA8 || fitsAs(source, PixelTypeRGBA8)) ? eTranscodeOk : eTranscodeTooLarge;
}

ETranscodeStatus TranscodeTexture(CMOKTexture& texture, PixelType target, EMOKTVariableType channelType,
                                  EMOKTColourSpace colourSpace, ECompressorQuality quality, bool dither) {
    const ETranscodeStatus status = CheckTranscode(texture, target, channelType);
    if (status != eTranscodeOk) return status;
    if (!TextureInternals::hasValidPixelData(texture)) return eTranscodeNoPixels;
    CMOKTexture converted = texture;
    if (!Transcode(converted, target, channelType, colourSpace, quality, dither)) return eTranscodeFailed;
    texture.Swap(converted);
    return eTranscodeOk;
}

}  // namespace moktexture
