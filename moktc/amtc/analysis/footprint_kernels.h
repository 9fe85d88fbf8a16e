#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// How much each pixel of a footprint counts, the same for all blocks of a level. What lies behind the footprint is 0.
struct FootprintKernels {
    FootprintKernel sharp;   ///< sums to 1; negative near the border, which makes up for the upscaling's blur
    FootprintKernel smooth;  ///< sums to 1; a low-pass, positive everywhere
    FootprintMask centre;    ///< 1 on the pixels of the block itself
};

FootprintKernels makeFootprintKernels(const AmtcLevelSettings& settings);

}  // namespace moktexture::amtc
