#pragma once

#include "moktc/amtc/records/level_records.h"

/// @file
/// The colour pairs from which the refinement of a block starts.

namespace moktexture::amtc {

/// Sets the first candidates of each region mode of the format, from the representatives of the block, and its first mode. At 1
/// bit per pixel it writes a message and aborts.
void SetUpStandardRepStarts(BlockRecord& block, const AmtcLevelSettings& settings, const Footprint& footprint,
                            const FootprintKernel& sharpKernel);

/// The region mode in force before the first refinement. At 1 bit per pixel it writes a message and aborts.
std::uint32_t startingRegionMode(const AmtcLevelSettings& settings, bool transparentInCentre);

/// Finds 2 to 5 colours that represent the middle of a footprint of 9 by 9 pixels, starting from its extremes along `axis` (a
/// unit vector), and stores pairs of them in `start`. Sets `candidates`, `count` and `isFlatStart`.
void ClusterStart(const ColourVector& axis, const Footprint& footprint, RepStart& start);

// Axis search

/// The storable pair whose four blends fit the footprint's pixels along `axis` (a unit vector) best, each pixel weighted by the
/// magnitude of its kernel entry. With `isPunchThrough` the second generation at 4 bits per pixel leaves out pixels whose four
/// channels are all 0. If no pixel is left, both target colours are 0.
ColourPair FindAxisEndpoints(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                             const FootprintKernel& sharpKernel, const ColourVector& axis);

/// Sums over pixels with weight w at position t on an axis.
struct PositionSums {
    double weight, weightedPosition, weightedSquare;  ///< of w, w t and w t squared
};

/// The pixels of a footprint along an axis: `count` positions in ascending order, and their prefix sums.
struct SortedPositions {
    std::size_t count;
    std::array<double, maxFootprintPixels> positions;
    std::array<PositionSums, maxFootprintPixels + 1> before;  ///< entry i: the sums over the first i positions

    double lowest() const { return positions[0]; }
    double highest() const { return positions[count - 1]; }
    const PositionSums& total() const { return before[count]; }
    /// The number of positions strictly below each limit. There is at least one position.
    template <std::size_t limitCount>
    std::array<std::size_t, limitCount> countBelow(const std::array<double, limitCount>& limits) const {
        std::array<std::size_t, limitCount> counts{};
        for (std::size_t length = count; length > 1; length -= length / 2) {
            for (std::size_t i = 0; i < limitCount; ++i)
                counts[i] += positions[counts[i] + length / 2 - 1] < limits[i] ? length / 2 : 0;
        }
        for (std::size_t i = 0; i < limitCount; ++i)
            counts[i] += positions[counts[i]] < limits[i] ? 1 : 0;
        return counts;
    }
};

/// Positions assigned to the nearest of four blends: entry k is the number of positions below the part of blend k + 1.
using Partition = std::array<std::uint16_t, 3>;

/// Two ends, whose four blends lie at 0, 3/8, 5/8 and 1 of the way from `low` to `high`.
struct AxisFit {
    double low, high;
    double error;  ///< weighted sum of the squared distances of the positions from their blends
    Partition partition;
};

/// Remembers for each partition of one set of positions the fit that the regression over it gives. Iterations from different
/// starts meet in few partitions.
class RegressionCache {
public:
    const AxisFit& fitAfter(const SortedPositions& sorted, const Partition& partition);

private:
    struct Entry {
        Partition partition;
        AxisFit fit;
    };
    /// Partitions that share an entry replace each other, which costs time and changes no result. More entries avoid that, and
    /// cost 64 bytes of stack each.
    static constexpr std::size_t entryCount = 256;
    std::array<bool, entryCount> isUsed{};
    std::array<Entry, entryCount> entries;
};

/// Moves the ends from those given to the regression over their partition, until they no longer move. Returns the ends that no
/// longer move, or the best met if there are none within the sweeps. There are at least two positions, not all equal.
AxisFit FitFourLevels(const SortedPositions& sorted, double low, double high, RegressionCache& cache);

}  // namespace moktexture::amtc
