#pragma once

#include "etc1/etc1_coded_block.h"
#include "etc1/etc1_level.h"

namespace moktexture::etc1 {

/// The block coded around its halves' averages, rounded. In each split the individual form only where the differential form
/// cannot hold the pair; top and bottom halves only if strictly better.
CodedBlock FastRounded(const BlockPixels& block, Measure measure, BestTable bestTable);

/// The same around the averages quantised so that the hue is kept.
CodedBlock FastQuantised(const BlockPixels& block, Measure measure, BestTable bestTable);

/// Where candidates are decoded to: room for one row of blocks as it lies in a level, spilled pixels included.
struct ScratchRow {
    std::uint8_t* pixels;
    Level level;    ///< the level from this row of blocks on
    std::size_t x;  ///< first column of the block
};

/// Bytes that a scratch row of a level needs.
constexpr std::uint64_t scratchRowBytes(std::uint64_t width) {
    return (blockEdge * width + blockEdge) * bytesPerPixel;
}

/// The better of the two candidates once decoded; the quantised one only if strictly better.
BlockWords CompressBlockFast(const BlockPixels& block, const ScratchRow& scratch, Measure measure, BestTable bestTable);

}  // namespace moktexture::etc1
