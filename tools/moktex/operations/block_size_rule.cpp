#include "moktex/operations/block_size_rule.h"

#include <algorithm>
#include <bit>

using namespace moktexture;

namespace moktextool {

namespace {

bool edgeFits(std::uint32_t edge, std::uint32_t block) {
    return edge < block || edge % block == 0;
}

/// The number of levels from the first on, up to `levels`, whose side is a multiple of the block or smaller.
std::uint32_t fittingLevels(std::uint32_t edge, std::uint32_t levels, std::uint32_t block) {
    std::uint32_t level = 0;
    while (level < levels && edgeFits(std::max(1u, level < 32 ? edge >> level : 0u), block))
        ++level;
    return level;
}

/// The side nearest to `edge` whose levels all fit; the larger one of two.
std::uint32_t nearestEdge(std::uint32_t edge, std::uint32_t levels, std::uint32_t block, const FormatInfo& format) {
    if (format.needsPowersOfTwo) return std::clamp(nearestPowerOfTwo(edge), block, format.largestSide);
    const std::uint32_t start = std::min(edge, format.largestSide);
    for (std::uint32_t distance = 0;; ++distance) {
        if (start + distance <= format.largestSide && fittingLevels(start + distance, levels, block) == levels)
            return start + distance;
        if (distance < start && fittingLevels(start - distance, levels, block) == levels) return start - distance;
    }
}

std::string sizeText(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string multipleText(std::uint32_t block) {
    return " a multiple of " + std::to_string(block) + ", or below " + std::to_string(block);
}

std::string blockText(const FormatInfo& format) {
    if (format.sizeBlock.height == 1) return "each level's width must be" + multipleText(format.sizeBlock.width);
    if (format.sizeBlock.width == format.sizeBlock.height)
        return "each level's width and height must be" + multipleText(format.sizeBlock.width);
    return "each level's width must be" + multipleText(format.sizeBlock.width) + ", and its height" +
           multipleText(format.sizeBlock.height);
}

}  // namespace

std::optional<SizeProblem> sizeProblem(const TextureFormat& target, const PlannedSize& size) {
    if (!isCompressed(target.pixelType)) return {};
    const FormatInfo& format = GetFormatInfo(target.pixelType);
    const std::string cannotHold = std::string(format.name) + " cannot hold ";
    if (size.depth > 1)
        return SizeProblem{cannotHold + "a volume of depth " + std::to_string(size.depth) + "; use an uncompressed format", 0, 0,
                           0};
    SizeProblem problem{cannotHold, nearestEdge(size.width, size.levels, format.sizeBlock.width, format),
                        nearestEdge(size.height, size.levels, format.sizeBlock.height, format), 0};
    if (problem.width == size.width && problem.height == size.height) return {};
    const std::uint32_t largest = std::max(size.width, size.height);
    if (format.needsPowersOfTwo) {
        problem.rule += sizeText(size.width, size.height) + ": width and height must be powers of two from " +
                        sizeText(format.sizeBlock.width, format.sizeBlock.height) + " to " +
                        sizeText(format.largestSide, format.largestSide);
    } else if (largest > format.largestSide) {
        problem.rule += sizeText(size.width, size.height) + ": sides must be at most " + std::to_string(format.largestSide);
    } else {
        problem.fittingLevels = std::min(fittingLevels(size.width, size.levels, format.sizeBlock.width),
                                         fittingLevels(size.height, size.levels, format.sizeBlock.height));
        problem.rule +=
            "level " + std::to_string(problem.fittingLevels) + " of " +
            sizeText(std::max(1u, size.width >> problem.fittingLevels), std::max(1u, size.height >> problem.fittingLevels)) +
            ": " + blockText(format);
    }
    return problem;
}

std::uint32_t nearestPowerOfTwo(std::uint32_t size) {
    const std::uint32_t below = std::bit_floor(size);
    return size - below < 2 * below - size ? below : 2 * below;
}

}  // namespace moktextool
