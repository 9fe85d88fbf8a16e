#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/resample/resampling.h"

namespace moktexture {
namespace {

/// The header of the resized texture: the new size, one level, and the border scaled along in whole pixels.
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
    // Kept (resize-stores-border): a texture without a border gets a border block of three zeros. It is saved with the .mok file,
    // whose length and bytes would change without it.
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
    return rebuildLevels(texture, resizedHeader(texture, oldSize, newSize), VisitedLevels::first,
                         [mode](const auto& source, const auto& destination, const Subresource&) {
                             return resampleLevel(source, destination, mode);
                         });
}

}  // namespace moktexture
