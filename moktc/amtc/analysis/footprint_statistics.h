#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Fills `reps[wholeRep]` to `reps[centreRep]` and `transparentInCentre`. The smooth kernel sums to 1. The sharp one, which
/// weighs the pixels for the start candidates, is taken so that a level's tables are handed on together; no statistic uses it.
void AnalyseFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintMask& centreMask,
                      const FootprintKernel& sharpKernel, const FootprintKernel& smoothKernel, BlockRecord& block);

/// The mean colours (R, G, B, A) of the 3 by 3 blocks around one, row by row.
using NeighbourMeans = std::array<std::array<std::uint8_t, channelCount>, 9>;

/// Fills `reps[detailRep]` and `reps[opaqueDetailRep]`: what the bilinear image of the neighbours' means leaves of the footprint.
void AnalyseDetail(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintKernel& smoothKernel,
                   const NeighbourMeans& neighbourMeans, BlockRecord& block);

}  // namespace moktexture::amtc
