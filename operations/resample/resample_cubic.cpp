#include <algorithm>
#include <limits>

#include "operations/resample/resampling.h"

namespace moktexture {
namespace {

/// Destination columns whose positions are computed once and serve all rows. Wider strips make longer loops and a larger cache of
/// 16 rows, which at this width takes 64 KB.
constexpr std::uint32_t cubicStripWidth = 64;
constexpr std::size_t cubicStripElements = cubicStripWidth * channelsPerPixel;

/// One of the four samples of each of the strip's columns, with weights repeated for each element so that one loop covers all.
struct StripTap {
    std::uint32_t column[cubicStripWidth];
    float weight[cubicStripElements];
};

void computeColumns(const ResampleAxis& axis, std::uint32_t firstColumn, std::uint32_t columnCount, StripTap (&taps)[cubicTaps]) {
    for (std::uint32_t i = 0; i < columnCount; ++i) {
        const AxisPosition position = filteredPosition(axis, firstColumn + i);
        const CubicWeights weights = cubicWeights(position.fraction);
        for (std::size_t tap = 0; tap < cubicTaps; ++tap) {
            taps[tap].column[i] = cubicIndex(axis, position, tap);
            for (std::size_t c = 0; c < channelsPerPixel; ++c) {
                taps[tap].weight[i * channelsPerPixel + c] = weights.weight[tap];
            }
        }
    }
}

/// A source row as the strip's columns sample it: for each of their four samples the product with its weight in x.
struct WeightedRow {
    float products[cubicTaps][cubicStripElements];
};

/// Adds to each sum its product of each of four runs, one after another, scaled by `weigh(product, index of the run)`.
template <typename Weigh>
void addProducts(const float* first, const float* second, const float* third, const float* fourth, std::size_t count,
                 float* __restrict sums, Weigh weigh) {
    for (std::size_t e = 0; e < count; ++e) {
        sums[e] = sums[e] + weigh(first[e], 0) + weigh(second[e], 1) + weigh(third[e], 2) + weigh(fourth[e], 3);
    }
}

template <typename T>
void multiplyRun(const T* elements, const float* weights, std::size_t count, float* __restrict products) {
    for (std::size_t e = 0; e < count; ++e)
        products[e] = static_cast<float>(elements[e]) * weights[e];
}

template <typename T>
void storeSums(const float* sums, std::size_t count, T* __restrict elements) {
    for (std::size_t e = 0; e < count; ++e)
        elements[e] = elementFromCubicSum<T>(sums[e]);
}

/// A strip of destination columns, with a cache of source rows that are multiplied by their weights in x.
template <typename T>
class CubicStrip {
public:
    CubicStrip(const Resampling<T>& stripResampling, std::uint32_t stripFirstColumn, std::uint32_t stripColumnCount)
        : resampling(stripResampling),
          firstColumn(stripFirstColumn),
          columnCount(stripColumnCount),
          elementCount(std::size_t{stripColumnCount} * channelsPerPixel) {
        computeColumns(resampling.x, firstColumn, columnCount, taps);
        std::ranges::fill(cachedKeys, noRow);
    }

    void resample() {
        for (std::uint32_t z = 0; z < resampling.destination.size.depth; ++z) {
            for (std::uint32_t y = 0; y < resampling.destination.size.height; ++y) {
                if (resampling.source.size.depth == 1) {
                    sumRows(y);
                } else {
                    sumSlices(y, z);
                }
                storeSums(sums, elementCount, resampling.destination.pixel(firstColumn, y, z));
            }
        }
    }

private:
    /// Sums over a source of depth 1: x outermost, then y.
    void sumRows(std::uint32_t y) {
        const AxisPosition position = filteredPosition(resampling.y, y);
        const CubicWeights wy = cubicWeights(position.fraction);
        const WeightedRow* rows[cubicTaps];
        for (std::size_t j = 0; j < cubicTaps; ++j)
            rows[j] = weightedRow(position, j, {}, 0);

        clearSums();
        for (std::size_t i = 0; i < cubicTaps; ++i) {
            addProducts(rows[0]->products[i], rows[1]->products[i], rows[2]->products[i], rows[3]->products[i], elementCount,
                        sums, [wy](float product, std::size_t j) { return product * wy.weight[j]; });
        }
    }

    /// Sums over a volume: x outermost, then y, then z.
    void sumSlices(std::uint32_t y, std::uint32_t z) {
        const AxisPosition row = filteredPosition(resampling.y, y);
        const AxisPosition slice = filteredPosition(resampling.z, z);
        const CubicWeights wy = cubicWeights(row.fraction);
        const CubicWeights wz = cubicWeights(slice.fraction);
        const WeightedRow* rows[cubicTaps][cubicTaps];
        for (std::size_t j = 0; j < cubicTaps; ++j) {
            for (std::size_t k = 0; k < cubicTaps; ++k)
                rows[j][k] = weightedRow(row, j, slice, k);
        }

        clearSums();
        for (std::size_t i = 0; i < cubicTaps; ++i) {
            for (std::size_t j = 0; j < cubicTaps; ++j) {
                const float weightY = wy.weight[j];
                addProducts(rows[j][0]->products[i], rows[j][1]->products[i], rows[j][2]->products[i], rows[j][3]->products[i],
                            elementCount, sums,
                            [weightY, wz](float product, std::size_t k) { return product * weightY * wz.weight[k]; });
            }
        }
    }

    void clearSums() {
        for (std::size_t e = 0; e < elementCount; ++e)
            sums[e] = 0.0f;
    }

    /// The products of the source row that is sample `rowTap` of the position `row`, in the slice that is sample `sliceTap` of
    /// the position `slice`. The sixteen rows around a position have slots of their own.
    const WeightedRow* weightedRow(const AxisPosition& row, std::size_t rowTap, const AxisPosition& slice, std::size_t sliceTap) {
        const bool isFlat = resampling.source.size.depth == 1;
        const std::size_t slot = ((slice.index + sliceTap) % cubicTaps) * cubicTaps + (row.index + rowTap) % cubicTaps;
        const std::uint32_t sourceY = cubicIndex(resampling.y, row, rowTap);
        const std::uint32_t sourceZ = isFlat ? 0 : cubicIndex(resampling.z, slice, sliceTap);
        const std::uint64_t key = std::uint64_t{sourceZ} << 32 | sourceY;
        if (cachedKeys[slot] != key) {
            weighRow(resampling.source.row(sourceY, sourceZ), cachedRows[slot]);
            cachedKeys[slot] = key;
        }
        return &cachedRows[slot];
    }

    void weighRow(const T* row, WeightedRow& weighted) {
        for (std::size_t i = 0; i < cubicTaps; ++i) {
            gatherPixels(row, taps[i].column, columnCount, gathered);
            multiplyRun(gathered, taps[i].weight, elementCount, weighted.products[i]);
        }
    }

    const Resampling<T>& resampling;
    const std::uint32_t firstColumn;
    const std::uint32_t columnCount;
    const std::size_t elementCount;
    StripTap taps[cubicTaps];
    T gathered[cubicStripElements];
    std::uint64_t cachedKeys[cubicTaps * cubicTaps];  ///< slice (high 32 bits) and row of each cached row
    WeightedRow cachedRows[cubicTaps * cubicTaps];
    float sums[cubicStripElements];
};

}  // namespace

template <typename T>
void resampleCubic(const Resampling<T>& resampling) {
    forEachStrip(resampling.destination.size.width, cubicStripWidth,
                 [&resampling](std::uint32_t first, std::uint32_t count) { CubicStrip<T>(resampling, first, count).resample(); });
}

template void resampleCubic(const Resampling<std::uint8_t>&);
template void resampleCubic(const Resampling<std::uint16_t>&);
template void resampleCubic(const Resampling<std::uint32_t>&);
template void resampleCubic(const Resampling<float>&);

}  // namespace moktexture
