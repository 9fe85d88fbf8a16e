#pragma once

#include "core/base/instruction_set.h"
#include "moktc/amtc/evaluation/evaluation_lanes.h"
#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {

/// Evaluates many colour pairs for one footprint and one blend table, in the form that fits the processor; all forms give the
/// same bits. It refers to what it is given and prepares it once. The table is one of `CreateBlendingAndUpdateWeights`. An
/// evaluation leaves nothing behind, so any colours may follow any others, and threads may share an evaluator.
class RegionEvaluator {
public:
    /// `segments` is null where pixels choose their levels freely; it is for 4 bits per pixel.
    RegionEvaluator(const AmtcLevelSettings& settings, const BlendTable& table, const Footprint& footprint,
                    const Segments* segments, InstructionSet level);
    RegionEvaluator(const RegionEvaluator&) = delete;
    RegionEvaluator& operator=(const RegionEvaluator&) = delete;

    /// Clears and fills `sums` for levels 0 to 8.
    RegionError evaluate(const NeighbourColours& colours, bool firstPass, LevelSums& sums) const;

    /// Name of the form that runs: "plain" or the instruction set's.
    const char* formName() const;

private:
    RegionError evaluatePlain(const NeighbourColours& colours, bool firstPass, LevelSums& sums) const;

    const BlendTable& table;
    const Footprint& footprint;
    const Segments* segments;
    bool is4bpp, usesLanes;
    /// Set if lanes are used: of the bit rate, and of the segments if there are any.
    union {
        EvaluationLanes4bpp lanes4bpp;
        EvaluationLanes2bpp lanes2bpp;
    };
    SegmentLanes segmentLanes;
};

}  // namespace moktexture::amtc
