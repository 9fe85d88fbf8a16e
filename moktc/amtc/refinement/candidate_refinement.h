#pragma once

#include "moktc/amtc/refinement/pair_cache.h"

namespace moktexture::amtc {

/// Makes the candidate's pair better by turns of choosing all pixels' levels and solving for the colours that fit them, in at
/// most `iterations` evaluations, and sets its error. `pairs` is of the region.
void OptimiseRegion(Candidate& candidate, std::uint32_t iterations, EvaluatedPairs& pairs);

}  // namespace moktexture::amtc
