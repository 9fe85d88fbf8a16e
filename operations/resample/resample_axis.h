#pragma once

#include <algorithm>
#include <cstdint>

#include "core/base/numeric.h"

namespace moktexture {

/// How the pixels of a destination lie on one axis of a source.
struct ResampleAxis {
    float step;               ///< source pixels per destination pixel
    float offset;             ///< source position of the first destination pixel in the linear and cubic filters
    std::uint32_t lastIndex;  ///< of the source
};

/// A position on a source axis: `fraction`, 0 to below 1, past `index`. Float steps may carry it past the last index.
struct AxisPosition {
    std::uint32_t index;
    float fraction;
};

/// Sizes are at least 1.
// Kept: a reduction starts at destination over source, not at half a step; it is centred for halving only, and files that were
// made so must come out the same.
inline ResampleAxis makeResampleAxis(std::uint32_t sourceSize, std::uint32_t destinationSize) {
    const float step = static_cast<float>(sourceSize) / static_cast<float>(destinationSize);
    return {step, sourceSize > destinationSize ? 1.0f / step : 0.0f, sourceSize - 1};
}

/// Where the linear and cubic filters sample.
inline AxisPosition filteredPosition(const ResampleAxis& axis, std::uint32_t coordinate) {
    const float position = static_cast<float>(coordinate) * axis.step + axis.offset;
    const std::int64_t whole = truncateToInteger(position);
    return {static_cast<std::uint32_t>(whole), position - static_cast<float>(whole)};
}

/// The index if it is one of the source's, else the last. An index of -1, which is the largest number, becomes the last too.
inline std::uint32_t indexWithin(const ResampleAxis& axis, std::uint32_t index) {
    return std::min(index, axis.lastIndex);
}

/// Where the nearest filter samples: no offset.
inline std::uint32_t nearestIndex(const ResampleAxis& axis, std::uint32_t coordinate) {
    return indexWithin(axis, static_cast<std::uint32_t>(truncateToInteger(static_cast<float>(coordinate) * axis.step)));
}

/// The neighbour above in the linear filter: the edge is replicated.
inline std::uint32_t upperNeighbour(const ResampleAxis& axis, std::uint32_t index) {
    return index < axis.lastIndex ? index + 1 : axis.lastIndex;
}

/// The axes of one resampling.
struct ResampleAxes {
    ResampleAxis x;
    ResampleAxis y;
    ResampleAxis z;
};

}  // namespace moktexture
