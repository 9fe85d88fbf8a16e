// Axis search: the pair of colours whose four blends fit the pixels of a footprint along an axis.
//
// Problem   Given the axis along which the pixels spread, find the two ends such that the blends 0, 3/8, 5/8 and 1 between them
//           are near the pixels. Each pixel chooses one blend, and the ends depend on these choices.
// Idea      Projected on the axis, pixels are weighted numbers, and the problem is a one-dimensional k-means with four centres
//           that two numbers determine. A Lloyd iteration alternates: assign every position to its nearest blend; then move the
//           ends to the linear regression of the positions over the fractions of their blends. It finds a local minimum only, so
//           it runs from many starts.
//
//     project the pixels; sort by position; prefix sums of w, w t and w t^2
//     for each start (means of the lowest and the highest eighth of the weight; all pairs of 8 points over the range):
//         repeat, at most 20 times:
//             split the sorted positions at the midpoints between the blends
//             error = sum over the four parts, each from two prefix sums
//             ends = regression over the four parts, clamped to the range
//             if the ends did not move: stop
//             if the error has failed to improve more than 3 times: return to the best ends and stop
//     take the fit with the smallest error
//     A = mean colour of the pixels of the lowest blend, B = of the highest; order them; quantise the pair
//
// It ends because the number of sweeps is bounded. Assignment and regression each lower the error, but the clamping to the range
// may raise it, so the iteration may also cycle; the count of failures cuts that short.
//
// Cost      Sorting: O(n log n) for n pixels. A sweep: three binary searches and a fixed number of operations, independent of n.
//           The regression depends on the partition alone, not on the ends that led to it, so that it is kept by partition, and
//           the 29 starts share it.

#include <algorithm>
#include <cmath>
#include <utility>

#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/amtc/starts/start_candidates.h"

namespace moktexture::amtc {

namespace {

// More sweeps let slow starts converge, and more failures let the error rise for longer before the best ends are taken; both cost
// time where ends keep moving. The bytes depend on both.
constexpr int maxSweeps = 20, maxFailures = 3;
/// Points over the range whose pairs are starts. More of them find better minima; time grows with their square. The bytes depend
/// on it.
constexpr int startPoints = 8;

constexpr std::array<double, 4> blendFractions = {0, 0.375, 0.625, 1};

/// The sums over the positions of one part.
PositionSums sumsOfPart(const SortedPositions& sorted, const Partition& partition, std::size_t part) {
    const PositionSums& from = sorted.before[part == 0 ? 0 : partition[part - 1]];
    const PositionSums& to = sorted.before[part == 3 ? sorted.count : partition[part]];
    return {to.weight - from.weight, to.weightedPosition - from.weightedPosition, to.weightedSquare - from.weightedSquare};
}

/// Assigns the positions to the blends of two ends, at the midpoints between the blends.
AxisFit assignToBlends(const SortedPositions& sorted, double low, double high) {
    std::array<double, 4> blends;
    for (std::size_t k = 0; k < 4; ++k)
        blends[k] = low + (high - low) * blendFractions[k];
    std::array<double, 3> decisions;
    double limit = sorted.highest();
    for (std::size_t k = 3; k-- > 0;) {
        limit = std::min((blends[k] + blends[k + 1]) * 0.5, limit);
        decisions[k] = limit;
    }
    const auto counts = sorted.countBelow(decisions);
    AxisFit fit = {low, high, 0, {}};
    for (std::size_t k = 0; k < 3; ++k)
        fit.partition[k] = static_cast<std::uint16_t>(counts[k]);
    for (std::size_t k = 0; k < 4; ++k) {
        const PositionSums part = sumsOfPart(sorted, fit.partition, k);
        const double blend = blends[k];
        fit.error += std::max(part.weightedSquare - 2 * blend * part.weightedPosition + blend * blend * part.weight, 0.0);
    }
    return fit;
}

/// The fit whose ends are the linear regression of the positions over the fractions of the blends that a partition gives them.
AxisFit regressEnds(const SortedPositions& sorted, const Partition& partition) {
    double sumF = 0, sumFF = 0, sumFT = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        const PositionSums part = sumsOfPart(sorted, partition, k);
        const double fraction = blendFractions[k];
        sumF += fraction * part.weight;
        sumFF += fraction * fraction * part.weight;
        sumFT += fraction * part.weightedPosition;
    }
    const double inverseWeight = 1 / sorted.total().weight, range = sorted.highest() - sorted.lowest();
    const double meanT = sorted.total().weightedPosition * inverseWeight, meanF = sumF * inverseWeight;
    const double variance = sumFF * inverseWeight - meanF * meanF;
    const double covariance = sumFT * inverseWeight - meanF * meanT;
    const double slope = std::abs(covariance) >= variance * range ? range : covariance / variance;
    double low = meanT - slope * meanF, high = low + slope;
    if (low > high) std::swap(low, high);
    return assignToBlends(sorted, std::clamp(low, sorted.lowest(), sorted.highest()),
                          std::clamp(high, sorted.lowest(), sorted.highest()));
}

struct WeightedPixel {
    float position, weight;  ///< projection on the axis, magnitude of the kernel entry
    std::uint32_t colour;
    std::uint32_t index;  ///< in raster order
};

struct WeightedPixels {
    std::size_t count;
    std::array<WeightedPixel, maxFootprintPixels> pixels;
};

/// Gathers the pixels with a weight, sorted along the axis; equal positions stay in raster order.
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

enum class Extreme { lowest, highest };

/// The mean position of the lowest or highest pixels that make up an eighth of the weight; the last of them counts in full.
double meanOfExtremeOctile(const WeightedPixels& pixels, double totalWeight, Extreme extreme) {
    double weight = 0, weightedPosition = 0;
    for (std::size_t i = 0; i < pixels.count && weight < totalWeight / 8; ++i) {
        const WeightedPixel& pixel = pixels.pixels[extreme == Extreme::highest ? pixels.count - 1 - i : i];
        weight += static_cast<double>(pixel.weight);
        weightedPosition += static_cast<double>(pixel.weight) * static_cast<double>(pixel.position);
    }
    return weightedPosition / weight;
}

/// The best fit from the means of the extreme octiles and from all pairs of points over the range; of equal fits the first.
AxisFit fitFromManyStarts(const WeightedPixels& pixels, const SortedPositions& sorted) {
    const double weight = sorted.total().weight, lowest = sorted.lowest(), range = sorted.highest() - sorted.lowest();
    RegressionCache cache;
    AxisFit best = FitFourLevels(sorted, meanOfExtremeOctile(pixels, weight, Extreme::lowest),
                                 meanOfExtremeOctile(pixels, weight, Extreme::highest), cache);
    for (int lower = 0; lower < startPoints; ++lower) {
        for (int upper = lower + 1; upper < startPoints; ++upper) {
            const AxisFit fit = FitFourLevels(sorted, lowest + range * lower / (startPoints - 1),
                                              lowest + range * upper / (startPoints - 1), cache);
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

/// The squared magnitude of a colour, with alpha counted four times.
float alphaWeightedMagnitude(const ColourVector& colour) {
    const float alpha = colour[alphaChannel];
    return colour[0] * colour[0] + colour[1] * colour[1] + colour[2] * colour[2] + 4 * (alpha * alpha);
}

struct ColourEnds {
    ColourVector a, b;
};

/// The mean colours of the pixels of the lowest and the highest blend, with the larger magnitude as B. The thresholds are the
/// midpoints between the blends: 3/16 lies between 0 and 3/8, 13/16 between 5/8 and 1.
ColourEnds endsOfFit(const WeightedPixels& pixels, const SortedPositions& sorted, const AxisFit& fit) {
    const double span = fit.high - fit.low;
    const double lowerThreshold = std::clamp(fit.low + span * 3 / 16, fit.low, fit.high);
    const double upperThreshold = std::clamp(fit.low + span * 13 / 16, lowerThreshold, fit.high);
    const std::size_t lowEnd = std::max<std::size_t>(sorted.countBelow<1>({lowerThreshold})[0], 1);
    std::size_t highFirst = sorted.count - 1;
    while (highFirst > 0 && sorted.positions[highFirst - 1] > upperThreshold)
        --highFirst;
    ColourEnds ends = {meanColour(pixels, 0, lowEnd), meanColour(pixels, highFirst, sorted.count)};
    if (alphaWeightedMagnitude(ends.b) - alphaWeightedMagnitude(ends.a) < 0) std::swap(ends.a, ends.b);
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

const AxisFit& RegressionCache::fitAfter(const SortedPositions& sorted, const Partition& partition) {
    const std::size_t slot = (partition[0] + 31u * partition[1] + 101u * partition[2]) % entryCount;
    Entry& entry = entries[slot];
    if (!isUsed[slot] || entry.partition != partition) {
        isUsed[slot] = true;
        entry = {partition, regressEnds(sorted, partition)};
    }
    return entry.fit;
}

AxisFit FitFourLevels(const SortedPositions& sorted, double low, double high, RegressionCache& cache) {
    if (low > high) std::swap(low, high);
    AxisFit fit = assignToBlends(sorted, low, high), best = fit;
    for (int sweep = 0, failures = 0; sweep < maxSweeps; ++sweep) {
        const AxisFit& next = cache.fitAfter(sorted, fit.partition);
        // Kept (unmoved-ends-are-the-fit): ends that no longer move are the result, even if ends met before had a smaller error;
        // a regression that was clamped to the range leads away from them. `fitFromManyStarts` compares these errors: the best
        // met instead would give blocks other first candidates, and other bytes.
        if (next.low == fit.low && next.high == fit.high) return fit;
        if (sweep == 0 || fit.error < best.error) {
            best = fit;
            failures = 0;
        } else if (++failures > maxFailures) {
            break;
        }
        fit = next;
    }
    return best;
}

ColourPair FindAxisEndpoints(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                             const FootprintKernel& sharpKernel, const ColourVector& axis) {
    WeightedPixels pixels;
    collectPixels(settings, isPunchThrough, footprint, sharpKernel, axis, pixels);
    const ColourEnds ends = findEnds(pixels);
    // Kept (axis-pair-ignores-punch-through): the pair is quantised as for a block without punch-through, also if it is for a
    // punch-through block, whose middle blend lies at 1/2. The first candidate of such a block depends on it, and with it the
    // block's bytes.
    return QuantiseColourPair(settings.generation(), false, ends.a, ends.b);
}

}  // namespace moktexture::amtc
