#include "moktex/operations/block_size_rule.h"

#include <algorithm>
#include <bit>

#include "moktex/formats/format_names.h"

namespace moktextool {

namespace {

/// What the encoder of a format takes.
struct SizeRule {
    std::uint32_t blockWidth, blockHeight;  ///< sides of each level are multiples of these, or smaller
    std::uint32_t largest;
    bool needsPowersOfTwo;  ///< of at least a block
};

SizeRule ruleOf(const CompressedFormat& row) {
    const bool isMOKTC = row.id <= moktexture::eFmtMOKTCII4bpp;
    return {row.blockWidth, row.blockHeight, isMOKTC ? 4096 : 0xFFFFFFFF, isFirstMOKTC(row.id)};
}

bool edgeFits(std::uint32_t edge, std::uint32_t block) {
    return edge < block || edge % block == 0;
}

/// How many levels of a chain fit on one axis, up to `levels`.
std::uint32_t fittingLevels(std::uint32_t edge, std::uint32_t levels, std::uint32_t block) {
    std::uint32_t level = 0;
    while (level < levels && edgeFits(std::max(1u, level < 32 ? edge >> level : 0u), block))
        ++level;
    return level;
}

/// The edge nearest to the given one whose levels all fit, the larger one of two.
std::uint32_t nearestEdge(std::uint32_t edge, std::uint32_t levels, std::uint32_t block, const SizeRule& rule) {
    if (rule.needsPowersOfTwo) return std::clamp(nearestPowerOfTwo(edge), block, rule.largest);
    const std::uint32_t start = std::min(edge, rule.largest);
    for (std::uint32_t distance = 0;; ++distance) {
        if (start + distance <= rule.largest && fittingLevels(start + distance, levels, block) == levels) return start + distance;
        if (distance < start && fittingLevels(start - distance, levels, block) == levels) return start - distance;
    }
}

std::string sizeText(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string multipleText(std::uint32_t block) {
    return " a multiple of " + std::to_string(block) + ", or below " + std::to_string(block);
}

std::string blockText(const SizeRule& rule) {
    if (rule.blockHeight == 1) return "each level's width must be" + multipleText(rule.blockWidth);
    if (rule.blockWidth == rule.blockHeight) return "each level's width and height must be" + multipleText(rule.blockWidth);
    return "each level's width must be" + multipleText(rule.blockWidth) + ", and its height" + multipleText(rule.blockHeight);
}

}  // namespace

std::optional<SizeProblem> sizeProblem(const TextureFormat& target, const PlannedSize& size) {
    const CompressedFormat* row = findCompressed(target.pixelType);
    if (row == nullptr) return {};
    const std::string cannotHold = std::string(row->name) + " cannot hold ";
    if (size.depth > 1)
        return SizeProblem{cannotHold + "a volume of depth " + std::to_string(size.depth) + "; use an uncompressed format", 0, 0,
                           0};
    const SizeRule rule = ruleOf(*row);
    SizeProblem problem{cannotHold, nearestEdge(size.width, size.levels, rule.blockWidth, rule),
                        nearestEdge(size.height, size.levels, rule.blockHeight, rule), 0};
    if (problem.width == size.width && problem.height == size.height) return {};
    const std::uint32_t largest = std::max(size.width, size.height);
    if (rule.needsPowersOfTwo) {
        problem.rule += sizeText(size.width, size.height) + ": width and height must be powers of two from " +
                        sizeText(rule.blockWidth, rule.blockHeight) + " to " + sizeText(rule.largest, rule.largest);
    } else if (largest > rule.largest) {
        problem.rule += sizeText(size.width, size.height) + ": sides end at " + std::to_string(rule.largest);
    } else {
        problem.fittingLevels = std::min(fittingLevels(size.width, size.levels, rule.blockWidth),
                                         fittingLevels(size.height, size.levels, rule.blockHeight));
        problem.rule +=
            "level " + std::to_string(problem.fittingLevels) + " of " +
            sizeText(std::max(1u, size.width >> problem.fittingLevels), std::max(1u, size.height >> problem.fittingLevels)) +
            ": " + blockText(rule);
    }
    return problem;
}

std::uint32_t nearestPowerOfTwo(std::uint32_t size) {
    const std::uint32_t below = std::bit_floor(size);
    return size - below < 2 * below - size ? below : 2 * below;
}

}  // namespace moktextool
