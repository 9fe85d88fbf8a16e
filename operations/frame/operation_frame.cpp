#include "operations/frame/operation_frame.h"

#include "core/texture/TextureInternals.h"

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

bool isOperable(const CMOKTexture& texture) {
    if (!isOperableTexture(texture.getPixelType(), texture.getChannelType()) || !sizesFit32Bits(texture)) return false;
    return texture.getDataPtr() == nullptr || texture.getDataSize() <= TextureInternals::dataSize(texture);
}

bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    return levelSize(a, 0) == levelSize(b, 0) && a.getNumArrayMembers() == b.getNumArrayMembers() &&
           a.getNumMIPLevels() == b.getNumMIPLevels() && a.getNumFaces() == b.getNumFaces();
}

}  // namespace moktexture
