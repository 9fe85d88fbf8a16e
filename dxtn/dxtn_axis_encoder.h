#pragma once

#include <cstdint>

#include "dxtn/dxtn_block.h"

namespace moktexture::dxtn {

/// The colour half of a block of three colours or more: end points at the extremes of the block's principal axis. Bit i of
/// `transparent` asks for index 3 at pixel i; with any bit set the block gets three colours and transparent black.
ColourHalf encodeAlongAxis(const BlockPixels& pixels, std::uint32_t transparent);

}  // namespace moktexture::dxtn
