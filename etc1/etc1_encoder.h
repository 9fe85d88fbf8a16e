#pragma once

#include "etc1/etc1_subblock.h"

/// @file
/// The two ways to find the base colours of a block: quick candidates (qualities 0 and 1) and a search (2 to 5).

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
/// differential mode cannot store the pair; the split into top and bottom is chosen only if strictly better.
CodedBlock FastRounded(const PixelBlock& block, ErrorMetric metric);

/// The same around the averages quantised so that the hue is kept.
CodedBlock FastQuantised(const PixelBlock& block, ErrorMetric metric);

/// Memory to decode candidates into: one row of blocks as it lies in the image, and the pixels by which the last block exceeds
/// it.
struct ScratchRow {
    ImageView image;  ///< of the image's size from this row of blocks on; only `scratchRowBytes` of its pixels exist
    std::size_t x;    ///< first column of the block
};

/// Bytes that a scratch row of an image needs.
constexpr std::uint64_t scratchRowBytes(std::uint64_t width) {
    return (blockEdge * width + blockEdge) * bytesPerRGBA8Pixel;
}

/// The better of the two candidates, compared by their decoded pixels; the quantised one is chosen only if strictly better.
BlockWords CompressBlockFast(const PixelBlock& block, const ScratchRow& scratch, ErrorMetric metric);

/// Radii of the narrow search (qualities 2 and 3) and the wide one (4 and 5), in codes of 5 bits. A larger radius finds better
/// base colours; the number of colours grows with its third power. Bytes depend on both.
inline constexpr int narrowRadius = 3, wideRadius = 5;

/// The individual mode is searched from code 0 to this one.
/// Kept (etc1-no-code-15): 15 is never tried, so that white is reached by positive modifiers only. Bright blocks encoded at
/// qualities 2 to 5 would come out as other bytes than in stored .mok files.
inline constexpr int greatestIndividualCode = 14;

/// A box of codes, each channel from first to last.
struct CodeBox {
    Codes first;
    Codes last;
};

/// The base colours of the individual mode.
inline constexpr CodeBox individualBox = {{0, 0, 0}, {greatestIndividualCode, greatestIndividualCode, greatestIndividualCode}};

/// The box of codes of 5 bits within a radius of a code.
CodeBox boxAround(const Codes& centre, int radius);

/// Whether the differential mode is searched: whether the boxes around two averages in 5 bits hold a legal pair.
bool isDifferentialSearched(const std::array<Codes, 2>& averages, int radius);

/// Whether the individual mode is searched.
/// Kept (etc1-narrow-skips-individual): the narrow search leaves it out wherever the differential mode is searched, even if it
/// would be better. .mok files encoded at qualities 2 and 3 would change, and the encoding would take longer.
constexpr bool isIndividualSearched(bool differentialSearched, int radius) {
    return radius == wideRadius || !differentialSearched;
}

/// Codes a block with the base colours of lowest error: in the differential mode all legal pairs of colours within `radius`, one
/// of the two above, of the averages in 5 bits; in the individual mode all colours of `individualBox`.
BlockWords CompressBlockSearch(const PixelBlock& block, int radius, ErrorMetric metric);

}  // namespace moktexture::etc1
