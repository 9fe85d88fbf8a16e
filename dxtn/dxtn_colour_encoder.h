#pragma once

#include <array>
#include <cstdint>

#include "dxtn/dxtn_block.h"

namespace moktexture::dxtn {

/// The colours of a block in 5-6-5 form, as far as they are counted.
struct DistinctColours {
    int count;  ///< 1, 2, or 3 for all above 2
    std::uint16_t first;
    std::uint16_t second;  ///< equal to `first` if there is one colour only
};

/// Counts a block's colours, transparent pixels' too.
DistinctColours CountDistinctColours(const std::array<std::uint16_t, blockArea>& colours);

/// A block's colour half. In mode 1 pixels of alpha exactly 0 are to be transparent; in the other modes alpha plays no part.
ColourHalf encodeColours(const BlockPixels& pixels, DXTMode mode);

}  // namespace moktexture::dxtn
