#include "transcode/stage_frame.h"

#include <algorithm>

namespace moktexture {

CMOKTextureHeader headerInForm(const CMOKTextureHeader& header, PixelType format, EMOKTVariableType channelType,
                               EMOKTColourSpace colourSpace) {
    CMOKTextureHeader form(header);
    form.setPixelFormat(format);
    form.setChannelType(channelType);
    form.setColourSpace(colourSpace);
    return form;
}

ImageSize imageSize(const CMOKTextureHeader& header, std::uint32_t level) {
    return {header.getWidth(level), header.getHeight(level), header.getDepth(level)};
}

ImageSize raisedToBlock(const ImageSize& size, const BlockSize& block) {
    return {std::max(size.width, block.width), std::max(size.height, block.height), std::max(size.depth, block.depth)};
}

}  // namespace moktexture
