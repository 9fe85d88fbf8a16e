#include "moktex/formats/texture_format.h"

#include <algorithm>

using namespace moktexture;

namespace moktextool {

bool operator==(const TextureFormat& a, const TextureFormat& b) {
    return a.pixelType == b.pixelType && a.channelType == b.channelType;
}

TextureFormat formatOf(const CMOKTextureHeader& header) {
    return {header.getPixelType(), header.getChannelType()};
}

bool isCompressed(PixelType format) {
    return format.part.high == 0;
}

bool isSigned(EMOKTVariableType type) {
    return type % 2 == 1;
}

unsigned int widestChannel(const TextureFormat& format) {
    if (isCompressed(format.pixelType)) return 8;
    return *std::max_element(std::begin(format.pixelType.layout.channelBits), std::end(format.pixelType.layout.channelBits));
}

}  // namespace moktextool
