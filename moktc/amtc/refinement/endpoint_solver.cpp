// Problem: an evaluation has given every pixel the modulation index that fits the current colours A and B best. With these
// indices fixed, which change of A and B lowers the weighted error most?
//
// A pixel with interpolation weight f (from 0 for A to 1 for B) decodes to A + f * (B - A), so changes dA and dB move it by
// dA + f * (dB - dA). If r is the pixel minus its decoded colour, the best changes minimise, for each channel,
//
//     sum over pixels of  w * (r - dA - f * (dB - dA))^2           w: the pixel's influence
//
// This is a linear regression of r over f. The pixels of one interpolation weight have the same f, so the evaluators sum by
// weight, and nine sums per channel represent the whole footprint. The normal equations of a straight line give
//
//     slope = covariance(r, f) / variance(f)        all means weighted with w
//     dA = mean(r) - slope * mean(f)                the line at f = 0
//     dB = mean(r) + slope * (1 - mean(f))          the line at f = 1
//
// What the evaluators sum is not r * w but r * importance; influence is importance times a tent of at most 64. The influences of
// a footprint come to about 2^18 together, so q = 1 - (sum of the other weights' influence) / 2^18 is about the share of this
// weight, and dividing the summed residual by q * 4096 = q * 2^18 / 64 makes it about a mean difference.
//
// With a single weight in use there is no slope: the colours that have a share in it move by the mean difference.
//
// Cost: nine additions of four channels at once, a division for each weight in use.
//
// The new colours then go to the nearest pair that a block can store, see applyDeltas().

#include "moktc/amtc/refinement/endpoint_solver.h"

#include <algorithm>
#include <bit>

namespace moktexture::amtc {
namespace {

/// Four channels side by side.
using Floats [[gnu::vector_size(16)]] = float;
using Integers [[gnu::vector_size(16)]] = std::int32_t;

constexpr std::size_t solvedWeights = 9;  ///< 0 to 8; 9 is the ignored one
/// Limits the colours' reach where nearly all pixels have one weight: higher follows noise, lower needs more iterations.
constexpr float steepestSlope = 20;
/// From this change of a channel on a step is large: lower keeps the search longer on colours that a block cannot store.
constexpr float largeStep = 1.5f;

/// Means over the interpolation weights in use, each with the influence of its pixels.
struct WeightedMeans {
    float fraction = 0, fractionSquared = 0;
    Floats residual{}, residualByFraction{};
};

Floats magnitudeOf(Floats values) {
    return values < 0 ? -values : values;
}

/// 1 / (q * 4096) as above; 3.8146973e-6 is 1 / 2^18.
float residualScale(std::int32_t influenceOfOthers) {
    const float share = 1.0f - static_cast<float>(influenceOfOthers) * 3.8146973e-6f;
    return share <= 0 ? 0.0f : 1.0f / (share * 4096.0f);
}

void addWeight(const RegressionSums& sums, std::size_t value, std::int32_t totalWeight, WeightedMeans& means) {
    const float weight = static_cast<float>(sums.levelWeight[value]), fraction = static_cast<float>(value) / 8.0f;
    means.fraction += weight * fraction;
    means.fractionSquared += weight * fraction * fraction;
    const Floats residual = __builtin_convertvector(std::bit_cast<Integers>(sums.levelResidual[value]), Floats) *
                            (weight * residualScale(totalWeight - sums.levelWeight[value]));
    means.residual += residual;
    means.residualByFraction += residual * fraction;
}

/// `totalWeight` is not 0.
WeightedMeans meansOf(const RegressionSums& sums, std::int32_t totalWeight) {
    WeightedMeans means;
    for (std::size_t value = 0; value < solvedWeights; ++value) {
        if (sums.levelCount[value] != 0 && sums.levelWeight[value] != 0) addWeight(sums, value, totalWeight, means);
    }
    const float divisor = static_cast<float>(totalWeight);
    means.fraction /= divisor;
    means.fractionSquared /= divisor;
    means.residual /= divisor;
    means.residualByFraction /= divisor;
    return means;
}

/// `variance` is not 0.
Floats slopesOf(Floats covariance, float variance) {
    const Floats slope = covariance / variance, steepest = {steepestSlope, steepestSlope, steepestSlope, steepestSlope};
    const float limit = steepestSlope * (variance < 0 ? -variance : variance);
    return magnitudeOf(covariance) > limit ? (slope < 0 ? -steepest : steepest) : slope;
}

bool isLargeStep(Floats a, Floats b) {
    const Integers large = (magnitudeOf(a) >= largeStep) | (magnitudeOf(b) >= largeStep);
    return (large[0] | large[1] | large[2] | large[3]) != 0;
}

/// With one weight in use.
EndpointDeltas shiftColours(std::size_t value, const WeightedMeans& means) {
    const Floats a = value != 8 ? means.residual : Floats{}, b = value != 0 ? means.residual : Floats{};
    return {std::bit_cast<ColourVector>(a), std::bit_cast<ColourVector>(b), isLargeStep(a, b)};
}

EndpointDeltas fitLine(const WeightedMeans& means) {
    const float variance = means.fractionSquared - means.fraction * means.fraction;
    const Floats covariance = means.residualByFraction - means.residual * means.fraction;
    const Floats slope = variance != 0 ? slopesOf(covariance, variance) : Floats{};
    const Floats a = means.residual - slope * means.fraction, b = means.residual + slope * (1.0f - means.fraction);
    return {std::bit_cast<ColourVector>(a), std::bit_cast<ColourVector>(b), isLargeStep(a, b)};
}

ColourVector sumOf(const ColourVector& colour, const ColourVector& delta) {
    ColourVector sum{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sum[channel] = colour[channel] + delta[channel];
    return sum;
}

ColourPair quantise(const ColourVector& a, const ColourVector& b, const StepRules& rules) {
    return QuantiseColourPair(rules.generation, rules.isPunchThrough, a, b);
}

ColourPair roundToBytes(const ColourVector& a, const ColourVector& b, const StepRules& rules) {
    const ColourPair rounded = {roundToRGBA(a), roundToRGBA(b)};
    return rounded.a == rounded.b ? SplitEqualPair(rules.generation, rules.isPunchThrough, a, b, rounded.a) : rounded;
}

/// A point beyond the two colours is clamped to 0 to 255; one between them needs no clamping.
ColourVector pointAt(const ColourVector& a, const ColourVector& b, float fraction, const StepRules& rules) {
    ColourVector point = pointBetween(a, b, fraction);
    if (fraction < 0 || fraction > 1) {
        for (float& channel : point)
            channel = std::clamp(channel, 0.0f, 255.0f);
    }
    if (rules.clampToBounds) ClampToRep(rules.axes, point);
    return point;
}

}  // namespace

EndpointDeltas SolveEndpointDeltas(const RegressionSums& sums) {
    std::size_t weightsInUse = 0, lastInUse = 0;
    std::int32_t totalWeight = 0;
    for (std::size_t value = 0; value < solvedWeights; ++value) {
        totalWeight += sums.levelWeight[value];
        if (sums.levelCount[value] != 0) {
            ++weightsInUse;
            lastInUse = value;
        }
    }
    if (weightsInUse == 0 || totalWeight == 0) return {{}, {}, true};
    const WeightedMeans means = meansOf(sums, totalWeight);
    return weightsInUse == 1 ? shiftColours(lastInUse, means) : fitLine(means);
}

void ClampToRep(const Rep& axes, ColourVector& colour) {
    ColourVector projections{};
    bool isClamped = false;
    for (std::size_t axis = 0; axis < channelCount; ++axis) {
        projections[axis] = dotProduct(colour, axes.axes[axis]);
        if (projections[axis] < axes.projMin[axis]) {
            projections[axis] = axes.projMin[axis];
            isClamped = true;
        } else if (projections[axis] > axes.projMax[axis]) {
            projections[axis] = axes.projMax[axis];
            isClamped = true;
        }
    }
    if (!isClamped) return;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        colour[channel] = 0;
        for (std::size_t axis = 0; axis < channelCount; ++axis)
            colour[channel] += projections[axis] * axes.axes[axis][channel];
    }
}

ColourPair applyDeltas(const ColourPair& pair, const EndpointDeltas& deltas, Step step, const StepRules& rules) {
    ColourVector a = sumOf(toVector(pair.a), deltas.a), b = sumOf(toVector(pair.b), deltas.b);
    if (rules.clampToBounds) {
        ClampToRep(rules.axes, a);
        ClampToRep(rules.axes, b);
    }
    // Kept (large-steps-on-bytes): large steps go to any colours of 8 bits, not to storable ones. OptimiseRegion() reaches other
    // pairs through them than through storable ones, so the blocks of every .mok file encoded with it depend on this.
    return deltas.isLargeStep && step == Step::coarse ? roundToBytes(a, b, rules) : quantise(a, b, rules);
}

ColourPair makeStorable(const ColourPair& pair, const StepRules& rules) {
    return quantise(toVector(pair.a), toVector(pair.b), rules);
}

bool MakePerturbedCandidate(const Candidate& source, const StepRules& rules, const FractionPair& fractions, Candidate& result) {
    const ColourVector a = toVector(source.colourA), b = toVector(source.colourB);
    const ColourPair pair = quantise(pointAt(a, b, fractions.a, rules), pointAt(a, b, fractions.b, rules), rules);
    result = source;
    result.colourA = pair.a;
    result.colourB = pair.b;
    return pair != source.colours();
}

}  // namespace moktexture::amtc
