#include "operations/operation_frame.h"

#include "core/TextureInternals.h"
#include "operations/operable_texture.h"

namespace moktexture {

bool isOperable(const CMOKTexture& texture) {
    return isOperableTexture(texture.getPixelType(), texture.getChannelType()) && TextureInternals::isAddressable(texture);
}

bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    return levelSize(a, 0) == levelSize(b, 0) && a.getNumArrayMembers() == b.getNumArrayMembers() &&
           a.getNumMIPLevels() == b.getNumMIPLevels() && a.getNumFaces() == b.getNumFaces();
}

}  // namespace moktexture
