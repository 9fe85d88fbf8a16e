#pragma once

#include "etc1/etc1_best_table.h"

namespace moktexture::etc1 {

/// Of the codes of 4 or 5 bits next below and above each channel, the combination whose errors differ least between the channels,
/// which keeps the hue, however large the errors are. Of equal combinations the first wins, in the order of `corners` in the
/// source.
Codes QuantiseColour444(const FloatColour& colour);
Codes QuantiseColour555(const FloatColour& colour);

/// The same with weights on the differences between channels.
Codes QuantiseColour444Perceptual(const FloatColour& colour);
Codes QuantiseColour555Perceptual(const FloatColour& colour);

/// Codes a block around its subblocks' averages, rounded to the nearest codes. Each split uses the individual mode only where the
/// differential mode cannot store the pair; top and bottom subblocks only win if strictly better.
CodedBlock FastRounded(const PixelBlock& block, ErrorMetric metric);

/// The same around the averages quantised so that the hue is kept.
CodedBlock FastQuantised(const PixelBlock& block, ErrorMetric metric);

/// Memory to decode candidates into: one row of blocks as it lies in the image, spilled pixels included.
struct ScratchRow {
    ImageView image;  ///< of the image's size from this row of blocks on; only `scratchRowBytes` of its pixels exist
    std::size_t x;    ///< first column of the block
};

/// Bytes that a scratch row of an image needs.
constexpr std::uint64_t scratchRowBytes(std::uint64_t width) {
    return (blockEdge * width + blockEdge) * bytesPerRGBA8Pixel;
}

/// The better of the two candidates, compared by their decoded pixels; the quantised one only wins if strictly better.
BlockWords CompressBlockFast(const PixelBlock& block, const ScratchRow& scratch, ErrorMetric metric);

}  // namespace moktexture::etc1
