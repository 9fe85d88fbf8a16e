#include "transcode/dither_stage.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "image_operations.h"
#include "transcode/convert_layout.h"
#include "transcode/pixels/PixelCodec.h"
#include "transcode/pixels/dither.h"
#include "transcode/stage_frame.h"

namespace moktexture {

namespace {

// Kept: the one layout whose `l` is no grey value, so that its pixels are dithered in colour.
constexpr PixelType colouredLuminanceLayout{'l', 'g', 'r', 0, 6, 5, 5, 0};

CMOKTexture convertedToRGBA8(const CMOKTexture& texture) {
    const EMOKTColourSpace colourSpace = texture.getColourSpace();
    CMOKTexture converted(withFormat(texture.getHeader(), PixelTypeRGBA8, eVarUByteNorm, colourSpace), nullptr);
    PixelCodec fromCodec(texture.getPixelType(), texture.getChannelType());
    PixelCodec toCodec(PixelTypeRGBA8, eVarUByteNorm);
    convertLayout(texture, converted, fromCodec, toCodec, colourSpace, colourSpace);
    return converted;
}

void makeGrey(CMOKTexture& texture, EChannelName source) {
    EChannelName destinations[] = {eChannelRed, eChannelGreen, eChannelBlue};
    EChannelName sources[] = {source, source, source};
    CopyChannels(texture, texture, 3, destinations, sources);
}

}  // namespace

EChannelName greySource(const PixelType& target) {
    if (isCompressed(target)) return target == PixelType(eFmtBW1bpp) ? eChannelIntensity : eChannelNone;
    if (target == colouredLuminanceLayout) return eChannelNone;
    const auto has = [&](char letter) {
        return std::ranges::find(target.layout.channelName, letter) != std::end(target.layout.channelName);
    };
    if (has('i')) return eChannelIntensity;
    return has('l') ? eChannelLuminance : eChannelNone;
}

void ditherStage(CMOKTexture& texture, const PixelType& target) {
    CMOKTexture dithered = convertedToRGBA8(texture);
    const EChannelName grey = greySource(target);
    if (grey != eChannelNone) makeGrey(dithered, grey);
    forEachSubresource(dithered, [&](std::uint32_t level, std::uint32_t member, std::uint32_t face) {
        const LevelSize size = levelSize(dithered, level);
        ditherLevel(static_cast<unsigned char*>(dithered.getDataPtr(level, member, face)), target, size.width, size.height,
                    size.depth);
    });
    texture = std::move(dithered);
}

}  // namespace moktexture
