#pragma once

#include "moktc/amtc/records/level_records.h"

/// @file
/// Measurements of a block's footprint before any colour is chosen: the representatives, which describe the pixels
/// as clouds in RGBA space, and the segments, which are connected smooth regions.

namespace moktexture::amtc {

/// The weight of each pixel of a footprint, the same for all blocks of a level. Entries beyond the footprint are 0.
struct FootprintKernels {
    FootprintKernel
        sharp;  ///< for start candidates; sums to 1, negative near the border, which offsets the blur of the upscaling
    FootprintKernel smooth;  ///< for statistics; sums to 1, a low-pass, positive everywhere
    FootprintMask centre;    ///< 1 on the pixels of the block itself, 0 elsewhere
};

FootprintKernels makeFootprintKernels(const AmtcLevelSettings& settings);

/// Fills `reps[wholeRep]`, `reps[opaqueRep]`, `reps[centreRep]` and `transparentInCentre`.
void AnalyseFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                      BlockRecord& block);

/// The mean colours (R, G, B, A) of the 3 by 3 blocks around one, row by row.
using NeighbourMeans = std::array<std::array<std::uint8_t, channelCount>, 9>;

/// Fills `reps[detailRep]` and `reps[opaqueDetailRep]`: the difference of the footprint from the bilinear image of the means.
void AnalyseDetail(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                   const NeighbourMeans& neighbourMeans, BlockRecord& block);

/// A footprint divided into connected smooth regions.
struct Segments {
    FootprintMask labels;  ///< by pixel: the number of its segment, from 0
    FootprintMask order;   ///< pixel indices segment by segment, in ascending order of the segments
    std::uint32_t count;   ///< number of segments
};

/// Sets `labels` and `order`, and returns the number of segments, at most the number of pixels. At 1 bit per pixel, with 289
/// pixels, all segments from number 254 on share that label, and `order` keeps the low 8 bits of each index.
std::uint32_t SegmentFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, FootprintMask& labels,
                               FootprintMask& order);

}  // namespace moktexture::amtc
