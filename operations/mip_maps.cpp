#include <algorithm>
#include <cstring>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"
#include "operations/resample/resampling.h"

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

/// Copies the top level of one surface to a new chain and builds each further level from the one above it. Level 32 and those
/// below it have the size of level 0 again in the header, where shifts count modulo 32; only their first pixel is written.
template <typename T>
void fillChain(const LevelView<const T>& top, const CMOKTexture& chain, Subresource subresource, EResizeMode filter) {
    LevelView<T> upper = levelView<T>(chain, subresource);
    std::memcpy(upper.data, top.data, top.size.pixelCount() * channelsPerPixel * sizeof(T));
    for (subresource.level = 1; subresource.level < chain.getNumMIPLevels(); ++subresource.level) {
        const LevelView<T> lower = {levelView<T>(chain, subresource).data, nextLevelSize(upper.size)};
        resampleLevel<T>(upper, lower, filter);
        upper = lower;
    }
}

template <typename T>
T meanOfColours(const T* pixel) {
    if constexpr (std::is_same_v<T, float>) {
        return withCanonicalNaN((pixel[1] + pixel[0] + pixel[2]) / 3.0f);
    } else {
        // Kept (tint-mean-wraps): the sum of 32-bit elements wraps, so that bright pixels are tinted dark. Stored reference
        // images of tinted chains, which viewers are tested with, have these values.
        const std::uint32_t sum = std::uint32_t{pixel[0]} + pixel[1] + pixel[2];
        return elementFromBounded<T>(static_cast<float>(sum) / 3.0f);
    }
}

/// Tints a level. Level 0 stays; of every six further levels the first three have one channel left (n mod 3), the others lack
/// one:
///
/// | n mod 6 | 0   | 1     | 2    | 3    | 4       | 5      |
/// | ------- | --- | ----- | ---- | ---- | ------- | ------ |
/// | tint    | red | green | blue | cyan | magenta | yellow |
template <typename T>
bool colourLevel(const LevelView<T>& level, std::uint32_t n) {
    if (n == 0) return true;
    const bool lacksOne = n % 6 >= 3;
    bool isLit[3];
    for (std::uint32_t c = 0; c < 3; ++c)
        isLit[c] = (n % 3 == c) != lacksOne;

    const std::size_t pixelCount = level.size.pixelCount();
    for (std::size_t i = 0; i < pixelCount; ++i) {
        T* const pixel = level.data + i * channelsPerPixel;
        const T mean = meanOfColours(pixel);
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = isLit[c] ? mean : T{0};
    }
    return true;
}

}  // namespace

bool GenerateMIPMaps(CMOKTexture& texture, EResizeMode filter, unsigned int levels) {
    if (!isOperable(texture)) return false;
    const unsigned int count = levels == allMIPLevels ? fullChainLength(levelSize(texture, 0)) : levels;
    // Kept (mip-chain-of-same-length-stays): a chain of the wanted length is left as it is, even if stale or made by another
    // filter. Hosts that paint their own levels call this after loading and rely on it.
    if (count == texture.getNumMIPLevels()) return true;

    CMOKTextureHeader header = texture;
    header.setNumMIPLevels(count);
    // Without layers or faces there is nothing to build and the chain is complete; a surface without level 0 has no source.
    const bool hasSurfaces = texture.getNumArrayMembers() != 0 && texture.getNumFaces() != 0;
    const bool hasTopLevel = texture.getNumMIPLevels() != 0 && texture.getDataPtr() != nullptr;
    if (count == 0 || (hasSurfaces && !hasTopLevel)) return false;
    return rebuild(texture, header, [&](const CMOKTexture& source, CMOKTexture& chain) {
        const auto fill = [&]<typename T>(const LevelView<const T>& top, const LevelView<T>&, const Subresource& subresource) {
            fillChain<T>(top, chain, subresource, filter);
            return true;
        };
        return !hasSurfaces || processLevelsInto(source, chain, VisitedLevels::first, fill);
    });
}

bool ColourMIPMaps(CMOKTexture& texture) {
    return isOperable(texture) && processLevels(texture, [](const auto& level, const Subresource& subresource) {
               return colourLevel(level, subresource.level);
           });
}

}  // namespace moktexture
