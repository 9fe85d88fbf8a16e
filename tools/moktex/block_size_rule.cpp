#include "block_size_rule.h"

#include <algorithm>
#include <bit>

#include "format_names.h"

namespace moktextool {

namespace {

bool edgeFits(std::uint32_t edge) {
    return edge < 4 || edge % 4 == 0;
}

/// How many levels of a chain fit on one axis, up to `levels`.
std::uint32_t fittingLevels(std::uint32_t edge, std::uint32_t levels) {
    std::uint32_t level = 0;
    while (level < levels && edgeFits(std::max(1u, level < 32 ? edge >> level : 0u)))
        ++level;
    return level;
}

/// The edge nearest to the given one whose levels all fit, the larger one of two.
std::uint32_t nearestEdge(std::uint32_t edge, std::uint32_t levels) {
    for (std::uint32_t distance = 0;; ++distance) {
        if (fittingLevels(edge + distance, levels) == levels) return edge + distance;
        if (distance < edge && fittingLevels(edge - distance, levels) == levels) return edge - distance;
    }
}

std::string sizeText(std::uint32_t width, std::uint32_t height, const char* separator) {
    return std::to_string(width) + separator + std::to_string(height);
}

}  // namespace

std::string sizeProblem(const TextureForm& target, const PlannedSize& size) {
    if (!isDXT(target.format)) return "";
    if (size.depth > 1)
        return nameOf(target) + " cannot hold a volume of depth " + std::to_string(size.depth) + "; use an uncompressed format";
    const std::uint32_t fitting = std::min(fittingLevels(size.width, size.levels), fittingLevels(size.height, size.levels));
    if (fitting == size.levels) return "";
    const std::uint32_t width = std::max(1u, size.width >> fitting), height = std::max(1u, size.height >> fitting);
    return nameOf(target) + " cannot hold level " + std::to_string(fitting) + " of " + sizeText(width, height, " x ") +
           ": each level's width and height must be a multiple of 4, or below 4; use --resize " +
           sizeText(nearestEdge(size.width, size.levels), nearestEdge(size.height, size.levels), "x") +
           (fitting > 0 ? " or --mipmaps=" + std::to_string(fitting) : "");
}

std::uint32_t nearestPowerOfTwo(std::uint32_t size) {
    const std::uint32_t below = std::bit_floor(size);
    return size - below < 2 * below - size ? below : 2 * below;
}

}  // namespace moktextool
