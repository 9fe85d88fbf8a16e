#include "moktc/amtc/evaluation/region_evaluator.h"

#include <new>

#include "moktc/amtc/evaluation/evaluate_lanes.h"

namespace moktexture::amtc {

RegionEvaluator::RegionEvaluator(const AmtcLevelSettings& settings, const BlendTable& blendTable, const Footprint& pixels,
                                 const Segments* sharedLevels, InstructionSet level)
    : table(blendTable),
      footprint(pixels),
      segments(sharedLevels),
      is4bpp(settings.bitsPerPixel == 4),
      usesLanes(level >= InstructionSet::avx2) {
    if (!usesLanes) return;
    // Without initialisation: the lanes are large, and all that is used of them is set.
    if (is4bpp)
        prepareLanes(table.data(), footprint.data(), *::new (&lanes4bpp) EvaluationLanes4bpp);
    else
        prepareLanes(table.data(), footprint.data(), *::new (&lanes2bpp) EvaluationLanes2bpp);
    if (is4bpp && segments != nullptr) prepareLanes(table.data(), *segments, segmentLanes);
}

RegionError RegionEvaluator::evaluate(const NeighbourColours& colours, bool firstPass, LevelSums& sums) const {
    sums = LevelSums{};
    if (!usesLanes) return evaluatePlain(colours, firstPass, sums);
    static_assert(sizeof(ColourPair) == 8 && sizeof(ColourDifference) == 16, "the kernels' layout");
    const LaneSums laneSums = {sums.levelCount.data(), sums.levelWeight.data(), sums.levelResidual.data()};
    LaneError error;
    if (!is4bpp)
        error = evaluateLanes2bppAVX2(lanes2bpp, colours.data(), firstPass, laneSums);
    else if (segments != nullptr)
        error = evaluateSegmentLanesAVX2(lanes4bpp, segmentLanes, colours.data(), firstPass, laneSums);
    else
        error = evaluateLanes4bppAVX2(lanes4bpp, colours.data(), firstPass, laneSums);
    return {error.inner, error.outer};
}

RegionError RegionEvaluator::evaluatePlain(const NeighbourColours& colours, bool firstPass, LevelSums& sums) const {
    if (!is4bpp) return EvalRegion2bpp(table, footprint, colours, firstPass, sums);
    if (segments == nullptr) return EvalRegion4bpp(table, footprint, colours, firstPass, sums);
    return EvalRegionSegments4bpp(table, footprint, *segments, colours, firstPass, sums);
}

const char* RegionEvaluator::formName() const {
    return usesLanes ? "AVX2" : "plain";
}

}  // namespace moktexture::amtc
