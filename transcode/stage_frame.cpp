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

LevelSize paddedToSmallest(const LevelSize& size, const FormatInfo& format) {
    return {std::max(size.width, format.smallestSize.width), std::max(size.height, format.smallestSize.height), size.depth};
}

}  // namespace moktexture
