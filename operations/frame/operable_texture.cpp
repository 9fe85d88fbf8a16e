#include "operations/frame/operable_texture.h"

namespace moktexture {

bool isOperableTexture(const PixelType& type, const EMOKTVariableType& channelType) {
    switch (channelType) {
        case eVarUByteNorm:
            return type == PixelTypeRGBA8;
        case eVarUShortNorm:
            return type == PixelTypeRGBA16;
        case eVarUIntNorm:
        case eVarFloat:
            return type == PixelTypeRGBA32;
        default:
            return false;
    }
}

}  // namespace moktexture
