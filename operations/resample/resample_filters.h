#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/texture/subresources.h"
#include "operations/frame/channel_elements.h"
#include "operations/resample/resample_axis.h"

/// @file
/// The filters of resampleLevel(). Pointers are to four elements a pixel; no size is 0.

namespace moktexture {

/// One surface that is read, one that is written, and how they lie on each other.
template <typename T>
struct Resampling {
    const T* source;
    T* destination;
    LevelSize sourceSize;
    LevelSize destinationSize;
    ResampleAxes axes;

    const T* sourceRow(std::uint32_t y, std::uint32_t z) const {
        return source + (std::size_t{z} * sourceSize.height + y) * sourceSize.width * channelsPerPixel;
    }
    T* destinationPixel(std::uint32_t x, std::uint32_t y, std::uint32_t z) const {
        return destination + ((std::size_t{z} * destinationSize.height + y) * destinationSize.width + x) * channelsPerPixel;
    }
};

template <typename T>
Resampling<T> makeResampling(const T* source, T* destination, const LevelSize& sourceSize, const LevelSize& destinationSize) {
    return {
        source,
        destination,
        sourceSize,
        destinationSize,
        {makeResampleAxis(sourceSize.width, destinationSize.width), makeResampleAxis(sourceSize.height, destinationSize.height),
         makeResampleAxis(sourceSize.depth, destinationSize.depth)}};
}

/// Calls `work(firstColumn, columnCount)` for strips of up to `stripWidth` columns of a destination, from left to right.
template <typename Work>
void forEachStrip(std::uint32_t width, std::uint32_t stripWidth, Work work) {
    for (std::uint32_t first = 0; first < width;) {
        const std::uint32_t count = std::min(stripWidth, width - first);
        work(first, count);
        first += count;
    }
}

/// Collects the pixels of a row at the given columns.
template <typename T>
void gatherPixels(const T* row, const std::uint32_t* columns, std::uint32_t columnCount, T* gathered) {
    constexpr std::size_t pixelSize = channelsPerPixel * sizeof(T);
    for (std::uint32_t i = 0; i < columnCount; ++i) {
        std::memcpy(gathered + i * channelsPerPixel, row + columns[i] * channelsPerPixel, pixelSize);
    }
}

template <typename T>
void resampleNearest(const Resampling<T>& resampling);

/// The product of an element and a weight from 0 to 1, as the linear filter keeps it.
// Kept: each product is truncated by itself before products are added, so that fractional weights darken a flat picture by a unit
// a stage, and white of 32-bit elements, which as a float is 2 to the 32, becomes 0.
template <typename T>
T weightedElement(T element, float weight) {
    return elementFromBounded<T>(static_cast<float>(element) * weight);
}

/// One stage of the linear filter, along one axis. Sums are kept at the element's width.
template <typename T>
T blendElements(T a, T b, float weightA, float weightB) {
    return withPlainNaN(static_cast<T>(weightedElement(a, weightA) + weightedElement(b, weightB)));
}

template <typename T>
void resampleLinear(const Resampling<T>& resampling);

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

/// Index on the source axis of a sample (0 to 3) of a position.
// Kept: the sample before the first pixel is taken from the far end of the axis, while those past the last pixel replicate it;
// textures resampled before carry that edge.
inline std::uint32_t cubicIndex(const ResampleAxis& axis, const AxisPosition& position, std::size_t tap) {
    return indexWithin(axis, position.index + static_cast<std::uint32_t>(tap) - 1);
}

/// The sum of the cubic filter as an element: clamped to 0 and the unit, truncated. NaN gives 0.
// Kept: float elements are clamped to 0 to 1 too, and a 32-bit element at the top wraps to 0, by this filter alone.
template <typename T>
T elementFromCubicSum(float sum) {
    const float raised = sum > 0.0f ? sum : 0.0f;
    return elementFromBounded<T>(raised > channelUnit<T> ? channelUnit<T> : raised);
}

template <typename T>
void resampleCubic(const Resampling<T>& resampling);

}  // namespace moktexture
