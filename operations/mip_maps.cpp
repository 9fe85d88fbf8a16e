#include <algorithm>
#include <cstring>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/resample/resample_level.h"

namespace moktexture {
namespace {

/// Levels down to 1 by 1 by 1, the first included.
unsigned int fullChainLength(LevelSize size) {
    unsigned int count = 1;
    while (size.width > 1 || size.height > 1 || size.depth > 1) {
        ++count;
        size = {size.width >> 1, size.height >> 1, size.depth >> 1};
    }
    return count;
}

LevelSize nextLevelSize(const LevelSize& size) {
    return {std::max(size.width >> 1, 1u), std::max(size.height >> 1, 1u), std::max(size.depth >> 1, 1u)};
}

/// Fills the levels of one face of one member below level 0, each from the one above it. From level 32 on the header counts sizes
/// anew from that of level 0: of such levels only the first pixel is filled.
template <typename T>
void fillChain(const CMOKTexture& texture, Subresource piece, EResizeMode filter) {
    const T* source = pieceData<const T>(texture, piece);
    for (piece.level = 1; piece.level < texture.getNumMIPLevels(); ++piece.level) {
        const LevelSize size = nextLevelSize(piece.size);
        T* const destination = pieceData<T>(texture, piece);
        resampleLevel(source, destination, piece.size.width, piece.size.height, piece.size.depth, size.width, size.height,
                      size.depth, filter);
        source = destination;
        piece.size = size;
    }
}

}  // namespace

bool GenerateMIPMaps(CMOKTexture& texture, EResizeMode filter, unsigned int levels) {
    if (!isOperable(texture)) return false;
    const unsigned int count = levels == allMIPLevels ? fullChainLength(levelSize(texture, 0)) : levels;
    // Kept: a chain of the wanted length counts as made, even if it is stale or of another filter; callers rely on its levels
    // being left alone.
    if (count == texture.getNumMIPLevels()) return true;

    CMOKTextureHeader header = texture;
    header.setNumMIPLevels(count);
    // Without layers or faces there is nothing to build and the chain is complete; a surface without level 0 has no source.
    const bool hasSurfaces = texture.getNumArrayMembers() != 0 && texture.getNumFaces() != 0;
    const bool hasTopLevel = texture.getNumMIPLevels() != 0 && texture.getDataPtr() != nullptr;
    if (count == 0 || (hasSurfaces && !hasTopLevel)) return false;
    const std::size_t topSize = texture.getDataSize(0, false, false);
    return rebuild(texture, header, [&](const CMOKTexture& source, CMOKTexture& chained) {
        if (!hasSurfaces) return true;
        const auto fill = [&]<typename T>(const T* top, T* copiedTop, const Subresource& piece) {
            std::memcpy(copiedTop, top, topSize);
            fillChain<T>(chained, piece, filter);
            return true;
        };
        return processLevelsInto(source, chained, WalkedLevels::first, fill);
    });
}

}  // namespace moktexture
