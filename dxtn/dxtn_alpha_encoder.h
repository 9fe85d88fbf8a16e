#pragma once

#include <cstdint>

#include "dxtn/dxtn_block.h"

namespace moktexture::dxtn {

/// The alpha half of modes 2 and 3: the top 4 bits of each pixel's alpha.
std::uint64_t EncodeExplicitAlpha(const BlockPixels& pixels);

/// The alpha half of modes 4 and 5: the block's greatest and smallest alpha, and for each pixel the nearest of the eight steps
/// between them. A block of one alpha has indices 0.
std::uint64_t EncodeInterpolatedAlpha(const BlockPixels& pixels);

}  // namespace moktexture::dxtn
