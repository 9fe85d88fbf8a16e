#include "operations/frame/operation_frame.h"

#include "core/texture/TextureInternals.h"
#include "operations/frame/operable_texture.h"

namespace moktexture {

bool isOperable(const CMOKTexture& texture) {
    if (!isOperableTexture(texture.getPixelType(), texture.getChannelType()) || !sizesFit32Bits(texture)) return false;
    return texture.getDataPtr() == nullptr || texture.getDataSize() <= TextureInternals::dataSize(texture);
}

bool hasPieces(const CMOKTextureHeader& header) {
    return header.getNumArrayMembers() != 0 && header.getNumFaces() != 0 && header.getNumMIPLevels() != 0;
}

bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    return levelSize(a, 0) == levelSize(b, 0) && a.getNumArrayMembers() == b.getNumArrayMembers() &&
           a.getNumMIPLevels() == b.getNumMIPLevels() && a.getNumFaces() == b.getNumFaces();
}

}  // namespace moktexture
