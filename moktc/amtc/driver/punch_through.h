#pragma once

#include <cstdint>

#include "moktc/amtc/records/work_image.h"

namespace moktexture::amtc {

/// Prepares pixels with an alpha below 4 for punch-through: in the second generation they become 0, 0, 0, 0; in the first they
/// get an alpha of 0 and the colour of what surrounds them, weighted by nearness and alpha, wrapping around the image's edges.
void PunchThroughPreprocess(AmtcImage& image, std::uint32_t secondGeneration);

}  // namespace moktexture::amtc
