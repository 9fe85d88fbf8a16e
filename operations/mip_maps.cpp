#include <algorithm>
#include <cstring>
#include <utility>

#include "core/data_size.h"
#include "image_operations.h"
#include "operations/operation_frame.h"
#include "operations/resample_level.h"

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

/// Fills the levels of one face of one member below level 0, each from the one above it.
template <typename T>
bool fillChain(const CMOKTexture& texture, TexturePiece piece, EResizeMode filter) {
    const T* source = pieceData<const T>(texture, piece);
    for (piece.level = 1; piece.level < texture.getNumMIPLevels(); ++piece.level) {
        const LevelSize size = nextLevelSize(piece.size);
        T* const destination = pieceData<T>(texture, piece);
        if (!resampleLevel(source, destination, piece.size.width, piece.size.height, piece.size.depth, size.width, size.height,
                           size.depth, filter)) {
            return false;
        }
        source = destination;
        piece.size = size;
    }
    return true;
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
    if (count == 0 || !sizesAreTrue(header)) return false;
    CMOKTexture chained(header, nullptr);
    const std::size_t topSize = texture.getDataSize(0, false, false);
    bool isFilled = true;
    processLevelsInto(texture, chained, WalkedLevels::first,
                      [&]<typename T>(const T* source, T* destination, const TexturePiece& piece) {
                          std::memcpy(destination, source, topSize);
                          return isFilled = isFilled && fillChain<T>(chained, piece, filter);
                      });
    if (isFilled) texture = std::move(chained);
    return isFilled;
}

}  // namespace moktexture
