#include "transcode/stage_frame.h"

#include <algorithm>

namespace moktexture {

CMOKTextureHeader withFormat(const CMOKTextureHeader& header, PixelType format, EMOKTVariableType channelType,
                             EMOKTColourSpace colourSpace) {
    CMOKTextureHeader form(header);
    form.setPixelFormat(format);
    form.setChannelType(channelType);
    form.setColourSpace(colourSpace);
    return form;
}

LevelSize paddedToBlock(const LevelSize& size, const BlockSize& block) {
    return {std::max(size.width, block.width), std::max(size.height, block.height), std::max(size.depth, block.depth)};
}

}  // namespace moktexture
