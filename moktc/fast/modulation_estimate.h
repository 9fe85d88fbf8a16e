#pragma once

#include <cstdint>

#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// What the compressor at 2 bpp expects the decoder to make of a block in a mode, from the block's own indices alone: for each
/// pixel the eighths of colour B, 0 to 10. All 255 in a mode above 3.
void expandModulation(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint8_t* eighths);

}  // namespace moktexture::moktc
