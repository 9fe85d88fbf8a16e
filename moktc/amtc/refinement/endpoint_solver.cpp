#include "moktc/amtc/refinement/endpoint_solver.h"

#include <bit>

namespace moktexture::amtc {
namespace {

/// Four channels side by side.
using Floats [[gnu::vector_size(16)]] = float;
using Integers [[gnu::vector_size(16)]] = std::int32_t;

constexpr std::size_t solvedLevels = 9;  ///< values 0 to 8; 9 is the ignored one
constexpr float steepestSlope = 20;
constexpr float largeStep = 1.5f;

/// Means over the levels, each weighed by its pixels' influence.
struct WeightedMeans {
    float fraction = 0, fractionSquared = 0;
    Floats residual{}, residualByFraction{};
};

Floats magnitudeOf(Floats values) {
    return values < 0 ? -values : values;
}

/// A residual is a sum over pixels of difference times importance, so it shrinks by the importance that a level holds.
float residualScale(std::int32_t weightOfOthers) {
    const float share = 1.0f - static_cast<float>(weightOfOthers) * 3.8146973e-6f;
    return share <= 0 ? 0.0f : 1.0f / (share * 4096.0f);
}

void addLevel(const LevelSums& sums, std::size_t level, std::int32_t totalWeight, WeightedMeans& means) {
    const float weight = static_cast<float>(sums.levelWeight[level]), fraction = static_cast<float>(level) / 8.0f;
    means.fraction += weight * fraction;
    means.fractionSquared += weight * fraction * fraction;
    const Floats residual = __builtin_convertvector(std::bit_cast<Integers>(sums.levelResidual[level]), Floats) *
                            (weight * residualScale(totalWeight - sums.levelWeight[level]));
    means.residual += residual;
    means.residualByFraction += residual * fraction;
}

/// `totalWeight` is not 0.
WeightedMeans meansOf(const LevelSums& sums, std::int32_t totalWeight) {
    WeightedMeans means;
    for (std::size_t level = 0; level < solvedLevels; ++level) {
        if (sums.levelCount[level] != 0 && sums.levelWeight[level] != 0) addLevel(sums, level, totalWeight, means);
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

/// With one level in use a line has no slope: the colours move that the level is made of.
EndpointDeltas shiftLevel(std::size_t level, const WeightedMeans& means) {
    const Floats a = level != 8 ? means.residual : Floats{}, b = level != 0 ? means.residual : Floats{};
    return {std::bit_cast<ColourVector>(a), std::bit_cast<ColourVector>(b), isLargeStep(a, b)};
}

EndpointDeltas fitLine(const WeightedMeans& means) {
    const float variance = means.fractionSquared - means.fraction * means.fraction;
    const Floats covariance = means.residualByFraction - means.residual * means.fraction;
    const Floats slope = variance != 0 ? slopesOf(covariance, variance) : Floats{};
    const Floats a = means.residual - slope * means.fraction, b = means.residual + slope * (1.0f - means.fraction);
    return {std::bit_cast<ColourVector>(a), std::bit_cast<ColourVector>(b), isLargeStep(a, b)};
}

}  // namespace

EndpointDeltas SolveEndpointDeltas(const LevelSums& sums) {
    std::size_t levelsInUse = 0, lastInUse = 0;
    std::int32_t totalWeight = 0;
    for (std::size_t level = 0; level < solvedLevels; ++level) {
        totalWeight += sums.levelWeight[level];
        if (sums.levelCount[level] != 0) {
            ++levelsInUse;
            lastInUse = level;
        }
    }
    if (levelsInUse == 0 || totalWeight == 0) return {{}, {}, true};
    const WeightedMeans means = meansOf(sums, totalWeight);
    return levelsInUse == 1 ? shiftLevel(lastInUse, means) : fitLine(means);
}

}  // namespace moktexture::amtc
