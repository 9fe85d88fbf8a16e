#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Gives each region mode of the format its first candidates, from the block's representatives, and the block its first mode. At
/// 1 bit per pixel it writes a message and aborts.
void SetUpStandardRepStarts(BlockRecord& block, const AmtcLevelSettings& settings, const Footprint& footprint,
                            const FootprintKernel& sharpKernel);

/// The region mode in force before the first refinement. At 1 bit per pixel it writes a message and aborts.
std::uint32_t startingRegionMode(const AmtcLevelSettings& settings, bool transparentInCentre);

}  // namespace moktexture::amtc
