// Problem: choosing the modulation index of every pixel freely fits noise, and pulls colours apart that one smooth region of the
// image should share.
//
// Idea: in early sweeps all pixels of a connected segment take the same modulation index. The pixels of a segment may lie in
// standard and in punch-through cells, whose indices mean different colours, so the choice is a pair of indices:
//
//     for each segment:
//         for each of its pixels, for each of the four indices: add error and residual to the totals of the pixel's class
//         inner pixels of one class:    the index of the lowest error; 3 wins ties, then 0, 1, 2
//         inner pixels of both classes: the pair of the lowest summed error; the earliest of the list wins ties
//         no inner pixels:              only an error of the outer ring, at the best of four pairs
//
// Palette taps are chosen one by one, between 0 and 3: their four colours have no order that a segment could share.
//
// Cost: that of a free choice, with four residuals instead of one per pixel.

#include <algorithm>
#include <initializer_list>

#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {
namespace {

/// Totals of the pixels of one segment and one class, by the modulation index that they would share; without palette taps.
struct ClassTotals {
    std::int32_t count = 0, weight = 0;  ///< of the inner pixels, whatever the index
    std::array<std::uint8_t, indexCount> levelValue{};
    std::array<std::uint32_t, indexCount> error{}, outerError{};
    std::array<ColourDifference, indexCount> residual{};
};
/// Standard and punch-through.
using SegmentTotals = std::array<ClassTotals, 2>;

/// Modulation indices of the standard and of the punch-through pixels of a segment.
struct IndexPair {
    std::size_t standard, punchThrough;
};
constexpr std::array<IndexPair, 6> sharedIndices = {{{0, 0}, {3, 3}, {0, 2}, {3, 2}, {1, 1}, {2, 1}}};
// Kept (outer-segments-without-transparent-index): segments without inner pixels may not take the transparent index, which those
// with inner pixels may. Their outer error ranks the region modes of a block in VisitBlockRefine(), and so decides on the mode
// bits of its word.
constexpr std::array<IndexPair, 4> sharedOuterIndices = {{{0, 0}, {3, 3}, {1, 1}, {2, 1}}};

void addOuterPixel(const DecodedPixel& decoded, ClassTotals& totals) {
    for (std::size_t index = 0; index < indexCount; ++index)
        totals.outerError[index] += squaredDistance(decoded.pixel, decoded.candidates[index]);
}

void addInnerPixel(const DecodedPixel& decoded, ClassTotals& totals) {
    ++totals.count;
    totals.weight += decoded.entry.influence;
    totals.levelValue = decoded.entry.levelValue;
    for (std::size_t index = 0; index < indexCount; ++index) {
        totals.error[index] += squaredDistance(decoded.pixel, decoded.candidates[index]);
        const ColourDifference difference = differenceOf(decoded.pixel, decoded.candidates[index]);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            totals.residual[index][channel] += difference[channel] * decoded.entry.importance;
    }
}

void addClass(const ClassTotals& totals, std::size_t index, RegionError& total, RegressionSums& sums) {
    const std::size_t value = totals.levelValue[index];
    total.inner += totals.error[index];
    total.outer += totals.outerError[index];
    sums.levelCount[value] += totals.count;
    sums.levelWeight[value] += totals.weight;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sums.levelResidual[value][channel] += totals.residual[index][channel];
}

std::size_t bestIndex(const ClassTotals& totals) {
    std::size_t best = 3;
    for (const std::size_t index : {0, 1, 2}) {
        if (totals.error[index] < totals.error[best]) best = index;
    }
    return best;
}

IndexPair bestIndexPair(const SegmentTotals& segment) {
    const auto errorOf = [&](const IndexPair& pair) {
        return segment[0].error[pair.standard] + segment[1].error[pair.punchThrough];
    };
    IndexPair best = sharedIndices[0];
    for (const IndexPair& pair : sharedIndices) {
        if (errorOf(pair) < errorOf(best)) best = pair;
    }
    return best;
}

std::uint32_t minimumOuterError(const SegmentTotals& segment) {
    std::uint32_t smallest = ~0u;
    for (const IndexPair& pair : sharedOuterIndices)
        smallest = std::min(smallest, segment[0].outerError[pair.standard] + segment[1].outerError[pair.punchThrough]);
    return smallest;
}

void finishSegment(const SegmentTotals& segment, RegionError& total, RegressionSums& sums) {
    const bool hasStandard = segment[0].count != 0, hasPunchThrough = segment[1].count != 0;
    if (hasStandard && hasPunchThrough) {
        const IndexPair pair = bestIndexPair(segment);
        addClass(segment[0], pair.standard, total, sums);
        addClass(segment[1], pair.punchThrough, total, sums);
    } else if (hasStandard || hasPunchThrough) {
        // Kept (outer-pixels-of-absent-class-skipped): outer pixels of the class that the segment lacks inside add no error. The
        // total ranks the region modes of a block in VisitBlockRefine(), and so decides on the mode bits of its word.
        const ClassTotals& only = segment[hasStandard ? 0 : 1];
        addClass(only, bestIndex(only), total, sums);
    } else {
        total.outer += minimumOuterError(segment);
    }
}

}  // namespace

RegionError EvalRegionSegments4bpp(const BlendTable& table, const Footprint& footprint, const Segments& segments,
                                   const NeighbourColours& colours, bool firstPass, RegressionSums& sums) {
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
        finishSegment(segment, total, sums);
    }
    return total;
}

}  // namespace moktexture::amtc
