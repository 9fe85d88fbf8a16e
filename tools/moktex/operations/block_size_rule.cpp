#include "moktex/operations/block_size_rule.h"

#include <algorithm>
#include <bit>

using namespace moktexture;

namespace moktextool {

namespace {

std::string sizeText(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

/// The side nearest to `edge` that the format can hold.
std::uint32_t nearestEdge(std::uint32_t edge, std::uint32_t block, const FormatInfo& format) {
    return format.needsPowersOfTwo ? std::clamp(nearestPowerOfTwo(edge), block, format.largestSide)
                                   : std::min(edge, format.largestSide);
}

}  // namespace

std::optional<SizeProblem> sizeProblem(const TextureFormat& target, const PlannedSize& size) {
    if (!isCompressed(target.pixelType)) return {};
    const FormatInfo& format = GetFormatInfo(target.pixelType);
    const std::string cannotHold = std::string(format.name) + " cannot hold ";
    if (size.depth > 1)
        return SizeProblem{cannotHold + "a volume of depth " + std::to_string(size.depth) + "; use an uncompressed format", 0, 0};
    SizeProblem problem{cannotHold + sizeText(size.width, size.height) + ": ",
                        nearestEdge(size.width, format.sizeBlock.width, format),
                        nearestEdge(size.height, format.sizeBlock.height, format)};
    if (problem.width == size.width && problem.height == size.height) return {};
    problem.rule += format.needsPowersOfTwo ? "width and height must be powers of two from " +
                                                  sizeText(format.sizeBlock.width, format.sizeBlock.height) + " to " +
                                                  sizeText(format.largestSide, format.largestSide)
                                            : "sides must be at most " + std::to_string(format.largestSide);
    return problem;
}

std::uint32_t nearestPowerOfTwo(std::uint32_t size) {
    const std::uint32_t below = std::bit_floor(size);
    return size - below < 2 * below - size ? below : 2 * below;
}

}  // namespace moktextool
