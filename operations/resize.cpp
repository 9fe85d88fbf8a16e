#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/resample/resample_level.h"

namespace moktexture {
namespace {

/// The header of the resized texture: new size, one level, border scaled along in whole pixels.
CMOKTextureHeader resizedHeader(const CMOKTextureHeader& header, const LevelSize& oldSize, const LevelSize& newSize) {
    CMOKTextureHeader resized = header;
    unsigned int borderX = 0;
    unsigned int borderY = 0;
    unsigned int borderZ = 0;
    resized.getBorder(borderX, borderY, borderZ);
    resized.setWidth(newSize.width);
    resized.setHeight(newSize.height);
    resized.setDepth(newSize.depth);
    resized.setNumMIPLevels(1);
    // Kept: a texture without a border gets a block of three zeros; files of resized textures carry it.
    resized.setBorder(newSize.width * borderX / oldSize.width, newSize.height * borderY / oldSize.height,
                      newSize.depth * borderZ / oldSize.depth);
    return resized;
}

}  // namespace

bool Resize(CMOKTexture& texture, const unsigned int& newWidth, const unsigned int& newHeight, const unsigned int& newDepth,
            EResizeMode mode) {
    const LevelSize oldSize = levelSize(texture, 0);
    const LevelSize newSize = {newWidth, newHeight, newDepth};
    if (!isOperable(texture) || newSize.isEmpty()) return false;
    if (newSize == oldSize) return true;

    const auto resampleTop = [&]<typename T>(const T* source, T* destination, const Subresource&) {
        return resampleLevel(source, destination, oldSize.width, oldSize.height, oldSize.depth, newSize.width, newSize.height,
                             newSize.depth, mode);
    };
    return rebuildLevels(texture, resizedHeader(texture, oldSize, newSize), WalkedLevels::first, resampleTop);
}

}  // namespace moktexture
