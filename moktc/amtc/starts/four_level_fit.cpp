#include "moktc/amtc/starts/four_level_fit.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace moktexture::amtc {

namespace {

constexpr int mostSweeps = 20, mostFailures = 3;

constexpr std::array<double, 4> levelFractions = {0, 0.375, 0.625, 1};

/// What the positions of one part add up to.
PositionSums sumsOfPart(const SortedPositions& sorted, const Partition& partition, std::size_t part) {
    const PositionSums& from = sorted.before[part == 0 ? 0 : partition[part - 1]];
    const PositionSums& to = sorted.before[part == 3 ? sorted.count : partition[part]];
    return {to.weight - from.weight, to.weightedPosition - from.weightedPosition, to.weightedSquare - from.weightedSquare};
}

/// The levels between two ends, with the positions parted half-way between them.
LevelFit placeLevels(const SortedPositions& sorted, double low, double high) {
    std::array<double, 4> levels;
    for (std::size_t k = 0; k < 4; ++k)
        levels[k] = low + (high - low) * levelFractions[k];
    std::array<double, 3> decisions;
    double limit = sorted.highest();
    for (std::size_t k = 3; k-- > 0;) {
        limit = std::min((levels[k] + levels[k + 1]) * 0.5, limit);
        decisions[k] = limit;
    }
    const auto counts = sorted.countBelow(decisions);
    LevelFit fit = {low, high, 0, {}};
    for (std::size_t k = 0; k < 3; ++k)
        fit.partition[k] = static_cast<std::uint16_t>(counts[k]);
    for (std::size_t k = 0; k < 4; ++k) {
        const PositionSums part = sumsOfPart(sorted, fit.partition, k);
        const double level = levels[k];
        fit.error += std::max(part.weightedSquare - 2 * level * part.weightedPosition + level * level * part.weight, 0.0);
    }
    return fit;
}

/// The levels that a regression of the positions over the fractions of a partition gives.
LevelFit regressLevels(const SortedPositions& sorted, const Partition& partition) {
    double sumF = 0, sumFF = 0, sumFT = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        const PositionSums part = sumsOfPart(sorted, partition, k);
        const double fraction = levelFractions[k];
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
    return placeLevels(sorted, std::clamp(low, sorted.lowest(), sorted.highest()),
                       std::clamp(high, sorted.lowest(), sorted.highest()));
}

}  // namespace

const LevelFit& FollowingFits::after(const SortedPositions& sorted, const Partition& partition) {
    const std::size_t slot = (partition[0] + 31u * partition[1] + 101u * partition[2]) % entryCount;
    Entry& entry = entries[slot];
    if (!isUsed[slot] || entry.partition != partition) {
        isUsed[slot] = true;
        entry = {partition, regressLevels(sorted, partition)};
    }
    return entry.following;
}

LevelFit FitFourLevels(const SortedPositions& sorted, double low, double high, FollowingFits& followingFits) {
    if (low > high) std::swap(low, high);
    LevelFit fit = placeLevels(sorted, low, high), best = fit;
    for (int sweep = 0, failures = 0; sweep < mostSweeps; ++sweep) {
        const LevelFit& next = followingFits.after(sorted, fit.partition);
        // Kept: ends that stay are the result even where ends met before were better, which regressions held to the range lead
        // away from; encoded files depend on it.
        if (next.low == fit.low && next.high == fit.high) return fit;
        if (sweep == 0 || fit.error < best.error) {
            best = fit;
            failures = 0;
        } else if (++failures > mostFailures) {
            break;
        }
        fit = next;
    }
    return best;
}

}  // namespace moktexture::amtc
