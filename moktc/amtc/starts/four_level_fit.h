#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Sums over pixels with weight w at position t on an axis.
struct PositionSums {
    double weight, weightedPosition, weightedSquare;  ///< of w, w t and w t squared
};

/// The pixels of a footprint along an axis: `count` positions, ascending, and in entry i of `before` the sums over the first i.
struct SortedPositions {
    std::size_t count;
    std::array<double, mostFootprintPixels> positions;
    std::array<PositionSums, mostFootprintPixels + 1> before;

    double lowest() const { return positions[0]; }
    double highest() const { return positions[count - 1]; }
    const PositionSums& total() const { return before[count]; }
    /// How many positions lie strictly below each limit. There is at least one position.
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

/// Positions parted by the nearest of four levels: entry k tells how many positions lie below level k + 1's.
using Partition = std::array<std::uint16_t, 3>;

/// The ends of the four levels 0, 3/8, 5/8 and 1, and the weighted squared distance of the positions from the nearest levels.
struct LevelFit {
    double low, high, error;
    Partition partition;
};

/// The fits that partitions of one set of positions lead to. Fits from many starts meet in few partitions.
class FollowingFits {
public:
    /// The fit whose ends are the regression of the positions over the levels that `partition` gives them.
    const LevelFit& after(const SortedPositions& sorted, const Partition& partition);

private:
    struct Entry {
        Partition partition;
        LevelFit following;
    };
    static constexpr std::size_t entryCount = 256;
    std::array<bool, entryCount> isUsed{};
    std::array<Entry, entryCount> entries;
};

/// Moves the ends from those given step by step, each to the regression over the partition before. Gives the ends that stay where
/// they are, or the best met if none does within the sweeps. Positions are two at least, not all the same.
LevelFit FitFourLevels(const SortedPositions& sorted, double low, double high, FollowingFits& followingFits);

}  // namespace moktexture::amtc
