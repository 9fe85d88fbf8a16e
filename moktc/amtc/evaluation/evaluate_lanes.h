#pragma once

#include "moktc/amtc/evaluation/evaluation_lanes.h"

/// @file
/// The evaluators over lanes, for processors with AVX2.

namespace moktexture::amtc {

struct ColourPair;

/// Where the sums by level value go. Values that do not occur are left as they are.
struct LaneSums {
    std::int32_t* count;
    std::int32_t* weight;
    void* residual;  ///< four 32-bit integers a value, one a channel
};

struct LaneError {
    std::uint32_t inner, outer;
};

/// `colours` are those of the 3 by 3 blocks around the footprint, row by row.
LaneError evaluateLanes4bppAVX2(const EvaluationLanes4bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums);
LaneError evaluateSegmentLanesAVX2(const EvaluationLanes4bpp& lanes, const SegmentLanes& segments, const ColourPair* colours,
                                   bool firstPass, const LaneSums& sums);
LaneError evaluateLanes2bppAVX2(const EvaluationLanes2bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums);

}  // namespace moktexture::amtc
