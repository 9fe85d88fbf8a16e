#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/base/numeric.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"
#include "texture_enums.h"

/// @file
/// Positions, weights and arithmetic of resampleLevel(), which maps a level to another size by sampling points: each destination
/// pixel has one source position and is interpolated from the pixels around it. Areas are not averaged.
///
/// Positions. On each axis, in single precision:
///
///     step     = source size / destination size
///     offset   = destination size / source size if the source is larger, else 0     (computed as 1 / step; nearest: none)
///     position = coordinate * step + offset
///     index    = trunc(position), fraction = position - index
///
/// A true centring would start at step / 2 - 1/2. This offset agrees with it at a reduction to one half, where both are 1/2,
/// which is the step of a MIP chain. An enlargement starts at the first source pixel.
///
/// Filters:
///
/// | Filter  | Samples per axis       | Weights                         | Beyond the edge                        |
/// | ------- | ---------------------- | ------------------------------- | -------------------------------------- |
/// | nearest | index                  | none                            | the last pixel, if rounding gets there |
/// | linear  | index, index + 1       | 1 - fraction, fraction          | the last pixel                         |
/// | cubic   | index - 1 to index + 2 | Lagrange cubic through 4 points | the last pixel, also for index -1      |
///
/// A source of depth 1 has no samples and weights in z.
///
/// Order of the operations, which fixes the bits of the result:
///
/// - Linear works in stages, one for each axis: x, then y, then z. A stage gives an element, not a float: for integers both
///   products are truncated before they are added. So the weights of the axes cannot be multiplied into one, and the order of the
///   stages counts.
/// - Cubic adds up `((sample * wx[i]) * wy[j]) * wz[k]` in floats, from 0, with x outermost and z innermost. Products and sums of
///   floats are rounded, so the weights are not combined and the terms are not regrouped. The sum is clamped and truncated once.
///
/// In both, what the weights in x contribute depends on the source row alone, not on the destination row. The filters use that:
///
///     for each strip of destination columns:
///         compute source columns and weights in x, once
///         for each destination slice and row:
///             for each of the 2 x 2 or 4 x 4 source rows around its position (2 or 4 if the depth is 1):
///                 take the row weighted in x from a small cache, or compute it
///             combine the rows, all columns in one loop that the compiler vectorises
///
/// The cache has one slot for each row index modulo 2 (or 4) and slice index modulo 2 (or 4), so that the rows around one
/// position have slots of their own; each slot records which row it holds. Enlargements find most rows there. A strip bounds the
/// memory: it takes, with its cache, at most about 45 KB (linear) or 75 KB (cubic) on the stack. Cost per element of the
/// destination: 1 copy (nearest); up to 3 blends, in volumes 7 (linear); up to 16 products in x and 16 in y, in volumes 64 in x
/// and 128 in y and z (cubic).

namespace moktexture {

/// How the pixels of a destination lie on one axis of a source.
struct ResampleAxis {
    float step;               ///< source pixels per destination pixel
    float offset;             ///< source position of the first destination pixel, in the linear and cubic filters
    std::uint32_t lastIndex;  ///< of the source
};

/// A position on a source axis: `fraction`, 0 to below 1, past `index`. Rounding may carry it past the last index.
struct AxisPosition {
    std::uint32_t index;
    float fraction;
};

/// Sizes are at least 1.
// Kept (reduction-offset): a reduction starts at destination over source instead of at its centre. Resized .mok files would
// change in every pixel; MIP chains would not.
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

/// The index clamped to the source's last one. An index of -1, the largest unsigned number, becomes the last one too.
inline std::uint32_t clampedIndex(const ResampleAxis& axis, std::uint32_t index) {
    return std::min(index, axis.lastIndex);
}

/// Where the nearest filter samples.
inline std::uint32_t nearestIndex(const ResampleAxis& axis, std::uint32_t coordinate) {
    return clampedIndex(axis, static_cast<std::uint32_t>(truncateToInteger(static_cast<float>(coordinate) * axis.step)));
}

/// The second sample of the linear filter.
inline std::uint32_t nextIndex(const ResampleAxis& axis, std::uint32_t index) {
    return index < axis.lastIndex ? index + 1 : axis.lastIndex;
}

/// One level that is read, one that is written, and the axes between them. No size is 0.
template <typename T>
struct Resampling {
    LevelView<const T> source;
    LevelView<T> destination;
    ResampleAxis x;
    ResampleAxis y;
    ResampleAxis z;
};

template <typename T>
Resampling<T> makeResampling(const LevelView<const T>& source, const LevelView<T>& destination) {
    const LevelSize& from = source.size;
    const LevelSize& to = destination.size;
    return {source, destination, makeResampleAxis(from.width, to.width), makeResampleAxis(from.height, to.height),
            makeResampleAxis(from.depth, to.depth)};
}

/// Key of an empty slot of a cache of rows.
constexpr std::uint64_t noRow = std::numeric_limits<std::uint64_t>::max();

/// Calls `work(firstColumn, columnCount)` for strips of up to `stripWidth` columns of a destination, from left to right.
template <typename Work>
void forEachStrip(std::uint32_t width, std::uint32_t stripWidth, Work work) {
    for (std::uint32_t first = 0; first < width;) {
        const std::uint32_t count = std::min(stripWidth, width - first);
        work(first, count);
        first += count;
    }
}

/// Copies the pixels of a row at the given columns, one after another.
template <typename T>
void gatherPixels(const T* row, const std::uint32_t* columns, std::uint32_t columnCount, T* gathered) {
    constexpr std::size_t pixelSize = channelsPerPixel * sizeof(T);
    for (std::uint32_t i = 0; i < columnCount; ++i) {
        std::memcpy(gathered + i * channelsPerPixel, row + columns[i] * channelsPerPixel, pixelSize);
    }
}

/// The product of an element and a weight from 0 to 1, as the linear filter keeps it.
// Kept (linear-truncates-products): each product is truncated before products are added. Fractional weights darken a flat image
// by up to one unit per stage, and white of 32-bit elements, 2 to the 32 as a float, becomes 0. Every MIP chain in stored .mok
// files was made this way.
template <typename T>
T weightedElement(T element, float weight) {
    return elementFromBounded<T>(static_cast<float>(element) * weight);
}

/// One stage of the linear filter, along one axis. The sum has the element's width.
template <typename T>
T blendElements(T a, T b, float weightA, float weightB) {
    return withCanonicalNaN(static_cast<T>(weightedElement(a, weightA) + weightedElement(b, weightB)));
}

/// Samples on each axis of the cubic filter.
inline constexpr std::size_t cubicTaps = 4;

/// The weights of the four samples around a position, for its fraction.
struct CubicWeights {
    float weight[cubicTaps];
};
inline CubicWeights cubicWeights(float f) {
    return {{(f - 1.0f) * f * (f - 2.0f) * -0.16666667f, (f - 1.0f) * (f + 1.0f) * (f - 2.0f) * 0.5f,
             (f + 1.0f) * f * (f - 2.0f) * -0.5f, (f + 1.0f) * f * (f - 1.0f) * 0.16666667f}};
}

/// Index on the source axis of one of the samples, 0 to 3, of a position.
// Kept (cubic-edge-wraps-at-start): the sample before the first pixel comes from the far end of the axis, while those past the
// last pixel repeat it. The first pixels of every cubic resize in stored .mok files have that edge.
inline std::uint32_t cubicIndex(const ResampleAxis& axis, const AxisPosition& position, std::size_t tap) {
    return clampedIndex(axis, position.index + static_cast<std::uint32_t>(tap) - 1);
}

/// The sum of the cubic filter as an element: clamped to 0 and the unit, then truncated. NaN gives 0.
// Kept (cubic-clamps-floats): this filter alone clamps floats to 0 to 1, and a 32-bit element at the top of the clamp wraps to 0.
// Stored float and 32-bit .mok files that were resized by it have these values.
template <typename T>
T elementFromCubicSum(float sum) {
    const float raised = sum > 0.0f ? sum : 0.0f;
    return elementFromBounded<T>(raised > channelUnit<T> ? channelUnit<T> : raised);
}

/// Each filter on all pixels of a destination.
template <typename T>
void resampleNearest(const Resampling<T>& resampling);

template <typename T>
void resampleLinear(const Resampling<T>& resampling);

template <typename T>
void resampleCubic(const Resampling<T>& resampling);

/// Maps one level to another size by sampling points, as described above. T is the element of an operable texture. The levels do
/// not overlap.
/// @return false if a data pointer is null. True for an unknown mode and where a size is 0, which write nothing.
template <typename T>
bool resampleLevel(const LevelView<const T>& source, const LevelView<T>& destination, EResizeMode mode) {
    if (source.data == nullptr || destination.data == nullptr) return false;
    if (source.size.isEmpty() || destination.size.isEmpty()) return true;
    const Resampling<T> resampling = makeResampling(source, destination);
    switch (mode) {
        case eResizeNearest:
            resampleNearest(resampling);
            break;
        case eResizeLinear:
            resampleLinear(resampling);
            break;
        case eResizeCubic:
            resampleCubic(resampling);
            break;
    }
    return true;
}

/// resampleLevel() of levels given by their parts.
template <typename T>
bool resampleLevel(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                   unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode) {
    return resampleLevel<T>(LevelView<const T>{source, {srcWidth, srcHeight, srcDepth}},
                            LevelView<T>{destination, {dstWidth, dstHeight, dstDepth}}, mode);
}

}  // namespace moktexture
