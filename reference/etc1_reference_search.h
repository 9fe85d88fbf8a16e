#pragma once

#include "etc1/etc1_subblock.h"

namespace moktexture::etc1 {

/// BestTable in the number types of its definition: integers for uniform weights, floats for perceptual ones.
TableFit BestTableReference(const Subblock& subblock, const Colour& base);

/// CompressBlockSearch by a run of BestTableReference for every colour and a comparison of every pair. `radius` is 3 or 5.
BlockWords CompressBlockSearchReference(const PixelBlock& block, int radius, ErrorMetric metric);

}  // namespace moktexture::etc1
