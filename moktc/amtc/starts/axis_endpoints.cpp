#include "moktc/amtc/starts/axis_endpoints.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/amtc/starts/four_level_fit.h"

namespace moktexture::amtc {

namespace {

struct WeightedPixel {
    float position, weight;  ///< projection on the axis, magnitude of the kernel
    std::uint32_t colour;
    std::uint32_t index;  ///< in raster order
};

struct WeightedPixels {
    std::size_t count;
    std::array<WeightedPixel, mostFootprintPixels> pixels;
};

/// The pixels that count, sorted along the axis, equal ones in raster order.
void collectPixels(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                   const FootprintKernel& sharpKernel, const ColourVector& axis, WeightedPixels& collected) {
    const bool dropsZero = isPunchThrough && settings.secondGeneration != 0 && settings.bitsPerPixel == 4;
    collected.count = 0;
    for (std::uint32_t i = 0; i < settings.footprintPixels(); ++i) {
        const float weight = std::abs(sharpKernel[i]);
        if (weight == 0 || (dropsZero && footprint[i] == 0)) continue;
        collected.pixels[collected.count++] = {dotProduct(toVector(footprint[i]), axis), weight, footprint[i], i};
    }
    std::sort(collected.pixels.begin(), collected.pixels.begin() + static_cast<std::ptrdiff_t>(collected.count),
              [](const WeightedPixel& first, const WeightedPixel& second) {
                  return first.position < second.position || (first.position == second.position && first.index < second.index);
              });
}

void sumPositions(const WeightedPixels& pixels, SortedPositions& sorted) {
    PositionSums sums{};
    for (std::size_t i = 0; i < pixels.count; ++i) {
        const double position = static_cast<double>(pixels.pixels[i].position);
        const double weight = static_cast<double>(pixels.pixels[i].weight);
        sorted.positions[i] = position;
        sorted.before[i] = sums;
        sums.weight += weight;
        sums.weightedPosition += weight * position;
        sums.weightedSquare += weight * position * position;
    }
    sorted.before[pixels.count] = sums;
    sorted.count = pixels.count;
}

/// Mean position of the lowest pixels, or of the highest, that make up an eighth of the weight; the last one counts in full.
double meanOfEighth(const WeightedPixels& pixels, double totalWeight, bool ofHighest) {
    double weight = 0, weightedPosition = 0;
    for (std::size_t i = 0; i < pixels.count && weight < totalWeight / 8; ++i) {
        const WeightedPixel& pixel = pixels.pixels[ofHighest ? pixels.count - 1 - i : i];
        weight += static_cast<double>(pixel.weight);
        weightedPosition += static_cast<double>(pixel.weight) * static_cast<double>(pixel.position);
    }
    return weightedPosition / weight;
}

/// The best fit from the lowest and highest eighth, and from all pairs of eight points over the range.
LevelFit fitFromManyStarts(const WeightedPixels& pixels, const SortedPositions& sorted) {
    constexpr int points = 8;
    const double weight = sorted.total().weight, lowest = sorted.lowest(), range = sorted.highest() - sorted.lowest();
    FollowingFits followingFits;
    LevelFit best = FitFourLevels(sorted, meanOfEighth(pixels, weight, false), meanOfEighth(pixels, weight, true), followingFits);
    for (int lower = 0; lower < points; ++lower) {
        for (int upper = lower + 1; upper < points; ++upper) {
            const LevelFit fit = FitFourLevels(sorted, lowest + range * lower / (points - 1),
                                               lowest + range * upper / (points - 1), followingFits);
            if (fit.error < best.error) best = fit;
        }
    }
    return best;
}

/// The weighted mean colour of the pixels from `first` up to, not including, `end`; there is at least one.
ColourVector meanColour(const WeightedPixels& pixels, std::size_t first, std::size_t end) {
    std::array<double, channelCount> sums{};
    double weight = 0;
    for (std::size_t i = first; i < end; ++i) {
        const WeightedPixel& pixel = pixels.pixels[i];
        weight += static_cast<double>(pixel.weight);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            sums[channel] += static_cast<double>(pixel.weight) * channelOf(pixel.colour, channel);
    }
    ColourVector mean{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        mean[channel] = static_cast<float>(sums[channel] / weight);
    return mean;
}

/// How much light and, four times as much, opacity a colour has.
float strengthOf(const ColourVector& colour) {
    const float alpha = colour[alphaChannel];
    return colour[0] * colour[0] + colour[1] * colour[1] + colour[2] * colour[2] + 4 * (alpha * alpha);
}

struct ColourEnds {
    ColourVector a, b;
};

/// The mean colours of the pixels at both ends of the fitted levels, the stronger one last.
ColourEnds endsOfFit(const WeightedPixels& pixels, const SortedPositions& sorted, const LevelFit& fit) {
    const double span = fit.high - fit.low;
    const double lowerThreshold = std::clamp(fit.low + span * 3 / 16, fit.low, fit.high);
    const double upperThreshold = std::clamp(fit.low + span * 13 / 16, lowerThreshold, fit.high);
    const std::size_t lowEnd = std::max<std::size_t>(sorted.countBelow<1>({lowerThreshold})[0], 1);
    std::size_t highFirst = sorted.count - 1;
    while (highFirst > 0 && sorted.positions[highFirst - 1] > upperThreshold)
        --highFirst;
    ColourEnds ends = {meanColour(pixels, 0, lowEnd), meanColour(pixels, highFirst, sorted.count)};
    if (strengthOf(ends.b) - strengthOf(ends.a) < 0) std::swap(ends.a, ends.b);
    return ends;
}

ColourEnds findEnds(const WeightedPixels& pixels) {
    if (pixels.count == 0) return {};
    const WeightedPixel &first = pixels.pixels[0], &last = pixels.pixels[pixels.count - 1];
    if (first.position == last.position) return {toVector(first.colour), toVector(last.colour)};

    SortedPositions sorted;
    sumPositions(pixels, sorted);
    return endsOfFit(pixels, sorted, fitFromManyStarts(pixels, sorted));
}

}  // namespace

ColourPair FindAxisEndpoints(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                             const FootprintKernel& sharpKernel, const ColourVector& axis) {
    WeightedPixels pixels;
    collectPixels(settings, isPunchThrough, footprint, sharpKernel, axis, pixels);
    const ColourEnds ends = findEnds(pixels);
    // Kept: the pair is quantised without regard to punch-through even where it is for a punch-through block, whose middle level
    // lies elsewhere; encoded files depend on it.
    return QuantiseColourPair(settings.secondGeneration != 0, false, ends.a, ends.b);
}

}  // namespace moktexture::amtc
