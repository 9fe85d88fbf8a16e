#pragma once

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// How errors are measured: as sums of squares over red, green and blue, or with weights on the three.
enum class Measure { plain, perceptual };

/// Weights of red, green and blue in the perceptual measure.
inline constexpr std::array<float, channelCount> perceptualWeights = {0.299f, 0.587f, 0.114f};

/// Above every error of a half, and of a block.
inline constexpr int halfErrorBound = 1560600, blockErrorBound = 3121200;

/// Red, green and blue from 0 to 255.
using FloatColour = std::array<float, channelCount>;

/// One half of a block and the rules that it is searched under.
struct Half {
    std::array<Colour, halfArea> pixels;  ///< counted down the columns
    Measure measure;
    bool wrapsBelowZero;  ///< whether a colour below 0 counts as 255
};

/// The halves of a block.
/// Kept: in the plain measure a colour below 0 counts as 255 where the halves are left and right, and as 0 where they are top and
/// bottom; the blocks of qualities 0, 2 and 4 come out as they always have.
constexpr std::array<Half, 2> halvesOf(const BlockPixels& block, Split split, Measure measure) {
    std::array<Half, 2> halves{};
    for (std::size_t half = 0; half < 2; ++half) {
        halves[half].measure = measure;
        halves[half].wrapsBelowZero = measure == Measure::plain && split == Split::leftRight;
        for (std::size_t n = 0; n < halfArea; ++n) {
            const std::uint32_t rgba = block[rasterPlace(pixelNumber(split, half, n))];
            halves[half].pixels[n] = {channelOf(rgba, 0), channelOf(rgba, 1), channelOf(rgba, 2)};
        }
    }
    return halves;
}

/// A channel of base colour plus modifier as a search of the half sees it.
constexpr int searchedChannel(int sum, bool wrapsBelowZero) {
    if (sum < 0) return wrapsBelowZero ? 255 : 0;
    return sum > 255 ? 255 : sum;
}

/// The mean of the half's pixels; exact.
constexpr FloatColour HalfAverage(const Half& half) {
    FloatColour average{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        int sum = 0;
        for (const Colour& pixel : half.pixels)
            sum += pixel[channel];
        average[channel] = static_cast<float>(sum) * 0.125f;
    }
    return average;
}

}  // namespace moktexture::etc1
