#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// A footprint cut into connected smooth regions.
struct Segments {
    FootprintMask labels;  ///< by pixel: its segment, from 0
    FootprintMask order;   ///< pixel indices segment by segment, the segments ascending
    std::uint32_t count;   ///< number of segments
};

/// Sets labels and order, and returns the number of segments, at most the number of pixels. At 1 bit per pixel, with 289 pixels,
/// the last labels are one and indices lose their high bit.
std::uint32_t SegmentFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, FootprintMask& labels,
                               FootprintMask& order);

}  // namespace moktexture::amtc
