#pragma once

#include "moktc/amtc/records/level_records.h"

/// @file
/// The colour pairs from which the refinement of a block starts.

namespace moktexture::amtc {

/// Sets the first candidates of each region mode of the format, from the representatives of the block, and its first mode. At 1
/// bit per pixel it writes a message and aborts.
void SetUpStandardRepStarts(BlockRecord& block, const AmtcLevelSettings& settings, const Footprint& footprint,
                            const FootprintKernel& sharpKernel);

/// The region mode in force before the first refinement. At 1 bit per pixel it writes a message and aborts.
std::uint32_t startingRegionMode(const AmtcLevelSettings& settings, bool transparentInCentre);

/// Finds 2 to 5 colours that represent the middle of a footprint of 9 by 9 pixels, starting from its extremes along `axis` (a
/// unit vector), and stores pairs of them in `start`. Sets `candidates`, `count` and `isFlatStart`.
void ClusterStart(const ColourVector& axis, const Footprint& footprint, RepStart& start);

}  // namespace moktexture::amtc
