#include <algorithm>
#include <limits>

#include "operations/resample/resampling.h"

namespace moktexture {
namespace {

/// Destination columns whose positions are computed once and serve all rows. Wider strips make longer loops and larger row
/// caches.
constexpr std::uint32_t linearStripWidth = 256;
constexpr std::size_t linearStripElements = linearStripWidth * channelsPerPixel;

/// Left and right samples of the strip's columns, and their weights, repeated for each element so that one loop covers all.
struct StripColumns {
    std::uint32_t left[linearStripWidth];
    std::uint32_t right[linearStripWidth];
    float leftWeight[linearStripElements];
    float rightWeight[linearStripElements];
    bool areHalfway;  ///< all weights are 0.5, as in a halving
};

void computeColumns(const ResampleAxis& axis, std::uint32_t firstColumn, std::uint32_t columnCount, StripColumns& columns) {
    columns.areHalfway = true;
    for (std::uint32_t i = 0; i < columnCount; ++i) {
        const AxisPosition position = filteredPosition(axis, firstColumn + i);
        columns.left[i] = clampedIndex(axis, position.index);
        columns.right[i] = nextIndex(axis, position.index);
        columns.areHalfway = columns.areHalfway && position.fraction == 0.5f;
        for (std::size_t c = 0; c < channelsPerPixel; ++c) {
            columns.leftWeight[i * channelsPerPixel + c] = 1.0f - position.fraction;
            columns.rightWeight[i * channelsPerPixel + c] = position.fraction;
        }
    }
}

/// Elements of 8 and 16 bits. Floats hold them exactly, so that half of one, truncated, is its shift.
template <typename T>
constexpr bool isNarrow = sizeof(T) < sizeof(float);

/// blendElements() of two runs, which may be one, with both weights 0.5.
template <typename T>
void averageRuns(const T* a, const T* b, std::size_t count, T* __restrict blended) {
    static_assert(isNarrow<T>);
    for (std::size_t i = 0; i < count; ++i)
        blended[i] = static_cast<T>((a[i] >> 1) + (b[i] >> 1));
}

/// blendElements() of two runs, which may be one, with weights for each element.
template <typename T>
void blendRuns(const T* a, const T* b, const float* weightA, const float* weightB, std::size_t count, T* __restrict blended) {
    for (std::size_t i = 0; i < count; ++i)
        blended[i] = blendElements(a[i], b[i], weightA[i], weightB[i]);
}

/// blendElements() of two runs, which may be one, with the same weights for all elements: 1 - fraction and fraction.
template <typename T>
void blendRuns(const T* a, const T* b, float fraction, std::size_t count, T* __restrict blended) {
    if constexpr (isNarrow<T>) {
        if (fraction == 0.5f) return averageRuns(a, b, count, blended);
    }
    const float weightA = 1.0f - fraction;
    for (std::size_t i = 0; i < count; ++i)
        blended[i] = blendElements(a[i], b[i], weightA, fraction);
}

/// blendElements() of the left and right sample of each column.
template <typename T>
void blendPixels(const T* row, const StripColumns& columns, std::uint32_t columnCount, T* __restrict blended) {
    for (std::uint32_t i = 0; i < columnCount; ++i) {
        const T* const left = row + columns.left[i] * channelsPerPixel;
        const T* const right = row + columns.right[i] * channelsPerPixel;
        const std::size_t first = i * channelsPerPixel;
        for (std::size_t c = 0; c < channelsPerPixel; ++c) {
            blended[first + c] = blendElements(left[c], right[c], columns.leftWeight[first + c], columns.rightWeight[first + c]);
        }
    }
}

/// A strip of destination columns, with a cache of source rows that are blended in x.
template <typename T>
class LinearStrip {
public:
    LinearStrip(const Resampling<T>& stripResampling, std::uint32_t stripFirstColumn, std::uint32_t stripColumnCount)
        : resampling(stripResampling),
          firstColumn(stripFirstColumn),
          columnCount(stripColumnCount),
          elementCount(std::size_t{stripColumnCount} * channelsPerPixel) {
        computeColumns(resampling.x, firstColumn, columnCount, columns);
        std::ranges::fill(cachedKeys, noRow);
    }

    void resample() {
        for (std::uint32_t z = 0; z < resampling.destination.size.depth; ++z) {
            for (std::uint32_t y = 0; y < resampling.destination.size.height; ++y) {
                resampleRow(y, z, resampling.destination.pixel(firstColumn, y, z));
            }
        }
    }

private:
    void resampleRow(std::uint32_t y, std::uint32_t z, T* destination) {
        const AxisPosition row = filteredPosition(resampling.y, y);
        if (resampling.source.size.depth == 1) {
            sampleSlice(row, 0, destination);
            return;
        }
        const ResampleAxis& axis = resampling.z;
        const AxisPosition slice = filteredPosition(axis, z);
        sampleSlice(row, clampedIndex(axis, slice.index), nearSlice);
        sampleSlice(row, nextIndex(axis, slice.index), farSlice);
        blendRuns(nearSlice, farSlice, slice.fraction, elementCount, destination);
    }

    void sampleSlice(const AxisPosition& position, std::uint32_t slice, T* sampled) {
        const ResampleAxis& axis = resampling.y;
        const T* const upper = sampleRow(clampedIndex(axis, position.index), slice);
        const T* const lower = sampleRow(nextIndex(axis, position.index), slice);
        blendRuns(upper, lower, position.fraction, elementCount, sampled);
    }

    /// A source row blended in x. Two neighbouring rows of two neighbouring slices have slots of their own.
    const T* sampleRow(std::uint32_t row, std::uint32_t slice) {
        const std::size_t slot = (slice & 1) * 2 + (row & 1);
        const std::uint64_t key = std::uint64_t{slice} << 32 | row;
        if (cachedKeys[slot] != key) {
            blendColumns(resampling.source.row(row, slice), cachedRows[slot]);
            cachedKeys[slot] = key;
        }
        return cachedRows[slot];
    }

    /// Narrow elements are gathered first, so that one loop over all of them vectorises; a pixel of wide ones fills a vector.
    void blendColumns(const T* row, T* blended) {
        if constexpr (isNarrow<T>) {
            gatherPixels(row, columns.left, columnCount, left);
            gatherPixels(row, columns.right, columnCount, right);
            if (columns.areHalfway) return averageRuns(left, right, elementCount, blended);
            blendRuns(left, right, columns.leftWeight, columns.rightWeight, elementCount, blended);
        } else {
            blendPixels(row, columns, columnCount, blended);
        }
    }

    const Resampling<T>& resampling;
    const std::uint32_t firstColumn;
    const std::uint32_t columnCount;
    const std::size_t elementCount;
    StripColumns columns;
    T left[linearStripElements];
    T right[linearStripElements];
    std::uint64_t cachedKeys[4];  ///< slice (high 32 bits) and row of each cached row
    T cachedRows[4][linearStripElements];
    T nearSlice[linearStripElements];
    T farSlice[linearStripElements];
};

}  // namespace

template <typename T>
void resampleLinear(const Resampling<T>& resampling) {
    forEachStrip(resampling.destination.size.width, linearStripWidth, [&resampling](std::uint32_t first, std::uint32_t count) {
        LinearStrip<T>(resampling, first, count).resample();
    });
}

template void resampleLinear(const Resampling<std::uint8_t>&);
template void resampleLinear(const Resampling<std::uint16_t>&);
template void resampleLinear(const Resampling<std::uint32_t>&);
template void resampleLinear(const Resampling<float>&);

}  // namespace moktexture
