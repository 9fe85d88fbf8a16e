#pragma once

#include "core/base/instruction_set.h"
#include "moktc/amtc/evaluation/lane_layout.h"
#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {

/// Evaluates many sets of colours for one footprint and one blend table, in the form that fits the processor; all forms give the
/// same bits. It refers to its arguments and lays them out once. The table is one of CreateBlendingAndUpdateWeights(). An
/// evaluation keeps no state, so threads may share an evaluator.
class RegionEvaluator {
public:
    /// `segments` is null where pixels choose their indices freely; it is for 4 bits per pixel.
    RegionEvaluator(const AmtcLevelSettings& settings, const BlendTable& table, const Footprint& footprint,
                    const Segments* segments, InstructionSet instructionSet);
    RegionEvaluator(const RegionEvaluator&) = delete;
    RegionEvaluator& operator=(const RegionEvaluator&) = delete;

    /// Clears and fills `sums` for the interpolation weights 0 to 8.
    RegionError evaluate(const NeighbourColours& colours, bool firstPass, RegressionSums& sums) const;

    /// What the form that runs needs: `avx2`, or `baseline` for the scalar form.
    InstructionSet form() const { return usesLanes ? InstructionSet::avx2 : InstructionSet::baseline; }

private:
    RegionError evaluateScalar(const NeighbourColours& colours, bool firstPass, RegressionSums& sums) const;

    const BlendTable& table;
    const Footprint& footprint;
    const Segments* segments;
    bool is4bpp, usesLanes;
    /// Set if lanes are used: those of the bit rate, and those of the segments if there are any.
    union {
        EvaluationLanes4bpp lanes4bpp;
        EvaluationLanes2bpp lanes2bpp;
    };
    SegmentLanes segmentLanes;
};

}  // namespace moktexture::amtc
