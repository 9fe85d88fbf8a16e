#pragma once

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/evaluation/blend_table.h"

/// @file
/// The pixels that a decoder would produce for a footprint, and their squared error: the scalar form, which processors without
/// AVX2 run. RegionEvaluator chooses between it and the lanes.
/// In the second generation the prediction can differ from the decoder's pixels: in a translucent pair, A's alpha 255 decodes as
/// 238 and B's 0 as 17.

namespace moktexture::amtc {

/// The colour pairs of the 3 by 3 blocks around a footprint, row by row; number 4 is the block's own.
using NeighbourColours = std::array<ColourPair, 9>;

/// A00, A01, A10, A11, B00, B01, B10, B11: the colours of the 2 by 2 blocks around a pixel, row first.
using EightColours = std::array<std::uint32_t, 8>;

EightColours eightColoursAt(const NeighbourColours& colours, std::size_t row, std::size_t column, std::size_t blockWidth);

/// The four colours that a pixel may decode to, by modulation index.
using PixelCandidates = std::array<std::uint32_t, indexCount>;
void DecodePixelCandidates(const PixelBlendEntry& entry, const EightColours& colours, PixelCandidates& candidates);

/// (A * weightA + B * weightB) / 8 in each channel, truncated; the weights are at most 8 together.
std::uint32_t mixColours(std::uint32_t a, std::uint32_t b, std::uint32_t weightA, std::uint32_t weightB);

using ColourDifference = std::array<std::int32_t, channelCount>;
ColourDifference differenceOf(std::uint32_t pixel, std::uint32_t colour);

/// The modulation index whose colour is nearest to the pixel, with the pixel's difference from it and the squared error. Of
/// equally near ones the earliest of 2, 1, 0, 3 wins; with `twoLevelsOnly` the earlier of 3, 0.
std::uint32_t PickLevel(std::uint32_t pixel, const PixelCandidates& candidates, ColourDifference& difference,
                        std::uint32_t& error, bool twoLevelsOnly);

/// The input of the solver from an evaluation, by interpolation weight. Entry 9, the ignored value, need not be set.
struct RegressionSums {
    std::array<std::int32_t, levelValueCount> levelCount{};
    std::array<std::int32_t, levelValueCount> levelWeight{};        ///< sums of influence
    std::array<ColourDifference, levelValueCount> levelResidual{};  ///< sums of difference times importance

    /// Adds one pixel that chose an index of that interpolation weight.
    void addPixel(const PixelBlendEntry& entry, std::size_t value, const ColourDifference& difference) {
        ++levelCount[value];
        levelWeight[value] += entry.influence;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            levelResidual[value][channel] += difference[channel] * entry.importance;
    }
};

struct RegionError {
    std::uint32_t inner = 0;  ///< squared error of the pixels that the block's colours reach
    std::uint32_t outer = 0;  ///< of the ring around them; evaluated on the first pass only, else 0
};

struct DecodedPixel {
    std::uint32_t pixel;
    const PixelBlendEntry& entry;
    PixelCandidates candidates;
};
DecodedPixel decodePixel(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, std::size_t row,
                         std::size_t column, std::size_t blockWidth);

/// Picks a pixel's modulation index, adds the pixel to the totals and sums, and returns the index's interpolation weight.
std::uint8_t evaluatePixel(const DecodedPixel& decoded, bool twoLevelsOnly, bool firstPass, RegionError& total,
                           RegressionSums& sums);

/// 2 bits per pixel: interpolation weights by pixel of the footprint. Those that come from neighbours are not set.
using SampleValues = std::array<std::uint8_t, footprintPixels2bpp>;

/// The rounded mean of the samples around a pixel of class `average`, `horizontal` or `vertical`, as far as they lie in the
/// footprint.
std::uint32_t meanOfSamples(const SampleValues& samples, ModulationClass modulationClass, std::size_t row, std::size_t column);

/// Each evaluates all pixels and adds the inner ones to `sums`; `firstPass` also gives the error of the outer ring.
RegionError EvalRegion4bpp(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, bool firstPass,
                           RegressionSums& sums);
/// All pixels of a segment share one modulation index (see segment_evaluation.cpp).
RegionError EvalRegionSegments4bpp(const BlendTable& table, const Footprint& footprint, const Segments& segments,
                                   const NeighbourColours& colours, bool firstPass, RegressionSums& sums);
RegionError EvalRegion2bpp(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, bool firstPass,
                           RegressionSums& sums);

}  // namespace moktexture::amtc
