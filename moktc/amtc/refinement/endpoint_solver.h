#pragma once

#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {

/// How far the block's two colours should move, by a weighted linear regression of the pixels' differences over their levels,
/// all four channels side by side.
struct EndpointDeltas {
    ColourVector a, b;
    bool isLargeStep;  ///< a channel moves by 1.5 or more, or nothing can be said
};

EndpointDeltas SolveEndpointDeltas(const LevelSums& sums);

}  // namespace moktexture::amtc
