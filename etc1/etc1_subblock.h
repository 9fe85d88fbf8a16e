#pragma once

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// The error metric: sums of squares over red, green and blue, or with weights on the three.
enum class ErrorMetric { uniform, perceptual };

/// Weights of red, green and blue in a metric.
constexpr std::array<float, channelCount> channelWeights(ErrorMetric metric) {
    if (metric == ErrorMetric::perceptual) return {0.299f, 0.587f, 0.114f};
    return {1.0f, 1.0f, 1.0f};
}

/// Above every error that a search reaches: 255 squared times 3 channels times the 8 pixels of a subblock, 16 of a block.
inline constexpr int subblockErrorBound = 1560600, blockErrorBound = 3121200;

/// Red, green and blue from 0 to 255.
using FloatColour = std::array<float, channelCount>;

/// The pixels of a subblock and the rules for their errors.
struct Subblock {
    std::array<Colour, subblockArea> pixels;  ///< counted down the columns
    ErrorMetric metric;
    bool wrapsBelowZero;  ///< whether the search takes a channel below 0 for 255
};

using Subblocks = std::array<Subblock, 2>;

/// Cuts a block into its subblocks.
/// Kept (etc1-below-zero-is-255): with uniform weights the search takes a channel below 0 for 255 in left and right subblocks,
/// and for 0 in top and bottom ones. Decoders clamp it to 0; but dark blocks encoded at qualities 0, 2 and 4 would come out as
/// other bytes than in the .mok files that hosts have stored.
constexpr Subblocks subblocksOf(const PixelBlock& block, Split split, ErrorMetric metric) {
    Subblocks subblocks{};
    for (std::size_t subblock = 0; subblock < 2; ++subblock) {
        subblocks[subblock].metric = metric;
        subblocks[subblock].wrapsBelowZero = metric == ErrorMetric::uniform && split == Split::leftRight;
        for (std::size_t n = 0; n < subblockArea; ++n) {
            const std::uint32_t rgba = block[rasterIndex(pixelNumber(split, subblock, n))];
            subblocks[subblock].pixels[n] = {channelOf(rgba, 0), channelOf(rgba, 1), channelOf(rgba, 2)};
        }
    }
    return subblocks;
}

/// The mean of the subblock's pixels; exact.
constexpr FloatColour HalfAverage(const Subblock& subblock) {
    FloatColour average{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        int sum = 0;
        for (const Colour& pixel : subblock.pixels)
            sum += pixel[channel];
        average[channel] = static_cast<float>(sum) * 0.125f;
    }
    return average;
}

/// The nearest code of 5 bits to a channel; halves round up.
constexpr int RoundToFiveBits(float value) {
    const double scaled = static_cast<double>(value) * 31.0 / 255.0;
    return static_cast<int>(scaled < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

/// The nearest code of 4 bits to a channel; values a little below the half round up too.
constexpr int RoundToFourBits(float value) {
    constexpr float upward = 0.0001f;
    return static_cast<int>(static_cast<double>(value) / 17.0 + 0.5 + static_cast<double>(upward));
}

constexpr Codes roundToFiveBits(const FloatColour& colour) {
    return {RoundToFiveBits(colour[0]), RoundToFiveBits(colour[1]), RoundToFiveBits(colour[2])};
}

constexpr Codes roundToFourBits(const FloatColour& colour) {
    return {RoundToFourBits(colour[0]), RoundToFourBits(colour[1]), RoundToFourBits(colour[2])};
}

}  // namespace moktexture::etc1
