#include <algorithm>
#include <initializer_list>

#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {
namespace {

/// What the pixels of one segment and one punch class come to, by the level that they would share. Palette taps are left out.
struct ClassTotals {
    std::int32_t count = 0, weight = 0;  ///< of the inner pixels, at any level
    std::array<std::uint8_t, levelCountOfFormat> levelValue{};
    std::array<std::uint32_t, levelCountOfFormat> error{}, outerError{};
    std::array<ColourDifference, levelCountOfFormat> residual{};
};
/// Standard and punch-through.
using SegmentTotals = std::array<ClassTotals, 2>;

/// Levels of the standard and of the punch-through pixels of a segment.
struct LevelPair {
    std::size_t standard, punchThrough;
};
constexpr std::array<LevelPair, 6> sharedLevels = {{{0, 0}, {3, 3}, {0, 2}, {3, 2}, {1, 1}, {2, 1}}};
// Kept: segments without inner pixels may not take the transparent level, which those with inner pixels may; the first errors,
// which rank a block's starts, are the greater for it.
constexpr std::array<LevelPair, 4> sharedOuterLevels = {{{0, 0}, {3, 3}, {1, 1}, {2, 1}}};

void addOuterPixel(const DecodedPixel& decoded, ClassTotals& totals) {
    for (std::size_t level = 0; level < levelCountOfFormat; ++level)
        totals.outerError[level] += squaredDistance(decoded.pixel, decoded.candidates[level]);
}

void addInnerPixel(const DecodedPixel& decoded, ClassTotals& totals) {
    ++totals.count;
    totals.weight += decoded.entry.influence;
    totals.levelValue = decoded.entry.levelValue;
    for (std::size_t level = 0; level < levelCountOfFormat; ++level) {
        totals.error[level] += squaredDistance(decoded.pixel, decoded.candidates[level]);
        const ColourDifference difference = differenceOf(decoded.pixel, decoded.candidates[level]);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            totals.residual[level][channel] += difference[channel] * decoded.entry.importance;
    }
}

void settleClass(const ClassTotals& totals, std::size_t level, RegionError& total, LevelSums& sums) {
    const std::size_t value = totals.levelValue[level];
    total.inner += totals.error[level];
    total.outer += totals.outerError[level];
    sums.levelCount[value] += totals.count;
    sums.levelWeight[value] += totals.weight;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sums.levelResidual[value][channel] += totals.residual[level][channel];
}

std::size_t bestSingleLevel(const ClassTotals& totals) {
    std::size_t best = 3;
    for (const std::size_t level : {0, 1, 2}) {
        if (totals.error[level] < totals.error[best]) best = level;
    }
    return best;
}

LevelPair bestSharedLevels(const SegmentTotals& segment) {
    const auto errorOf = [&](const LevelPair& pair) {
        return segment[0].error[pair.standard] + segment[1].error[pair.punchThrough];
    };
    LevelPair best = sharedLevels[0];
    for (const LevelPair& pair : sharedLevels) {
        if (errorOf(pair) < errorOf(best)) best = pair;
    }
    return best;
}

std::uint32_t leastOuterError(const SegmentTotals& segment) {
    std::uint32_t least = ~0u;
    for (const LevelPair& pair : sharedOuterLevels)
        least = std::min(least, segment[0].outerError[pair.standard] + segment[1].outerError[pair.punchThrough]);
    return least;
}

void settleSegment(const SegmentTotals& segment, RegionError& total, LevelSums& sums) {
    const bool hasStandard = segment[0].count != 0, hasPunchThrough = segment[1].count != 0;
    if (hasStandard && hasPunchThrough) {
        const LevelPair pair = bestSharedLevels(segment);
        settleClass(segment[0], pair.standard, total, sums);
        settleClass(segment[1], pair.punchThrough, total, sums);
    } else if (hasStandard || hasPunchThrough) {
        // Kept: ring pixels of the class that the segment has not inside count nothing; the first errors, which rank a block's
        // starts, are without them.
        const ClassTotals& only = segment[hasStandard ? 0 : 1];
        settleClass(only, bestSingleLevel(only), total, sums);
    } else {
        total.outer += leastOuterError(segment);
    }
}

}  // namespace

RegionError EvalRegionSegments4bpp(const BlendTable& table, const Footprint& footprint, const Segments& segments,
                                   const NeighbourColours& colours, bool firstPass, LevelSums& sums) {
    RegionError total;
    for (std::size_t next = 0; next < footprintPixels4bpp;) {
        const std::uint8_t label = segments.labels[segments.order[next]];
        SegmentTotals segment{};
        for (; next < footprintPixels4bpp && segments.labels[segments.order[next]] == label; ++next) {
            const std::size_t pixel = segments.order[next];
            const PixelBlendEntry& entry = table[pixel];
            if (entry.isOuterRing != 0 && !firstPass) continue;
            const DecodedPixel decoded =
                decodePixel(table, footprint, colours, pixel / footprintWidth4bpp, pixel % footprintWidth4bpp, blockWidth4bpp);
            if (entry.isPaletteTap != 0)
                evaluatePixel(decoded, true, firstPass, total, sums);
            else if (entry.isOuterRing != 0)
                addOuterPixel(decoded, segment[entry.punchClass]);
            else
                addInnerPixel(decoded, segment[entry.punchClass]);
        }
        settleSegment(segment, total, sums);
    }
    return total;
}

}  // namespace moktexture::amtc
