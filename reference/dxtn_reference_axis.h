#pragma once

#include <cstdint>

#include "dxtn/dxtn_block.h"

namespace moktexture::dxtn {

/// The colour block of a block of three colours or more, computed one block at a time: endpoints at the extremes of the block's
/// principal axis. Bit i of `transparent` requests index 3 for pixel i; if any bit is set the block gets three colours and
/// transparent black.
ColourBlock encodeAlongAxisReference(const PixelBlock& pixels, std::uint32_t transparent);

}  // namespace moktexture::dxtn
