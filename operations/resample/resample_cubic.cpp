#include <limits>

#include "operations/resample/resample_filters.h"

namespace moktexture {
namespace {

/// Destination columns whose positions are computed once and serve all rows.
constexpr std::uint32_t stripWidth = 64;
constexpr std::size_t stripElements = stripWidth * channelsPerPixel;

/// Samples and weights of the strip's columns, weights one for each element so that loops run straight.
struct StripTap {
    std::uint32_t column[stripWidth];
    float weight[stripElements];
};

void placeColumns(const ResampleAxis& axis, std::uint32_t firstColumn, std::uint32_t columnCount, StripTap (&taps)[cubicTaps]) {
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

/// The samples of a source row times their weights across x, for each of the four samples of the strip's columns.
struct WeightedRow {
    float products[cubicTaps][stripElements];
};

/// Adds four runs of products to the sums, one after another, each product weighed by `weigh(product, number of its run)`.
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

/// A strip of destination columns. Products with the weights across x depend on the source row alone, so those of the last
/// rows are kept: neighbouring destination rows share them.
template <typename T>
class CubicStrip {
public:
    CubicStrip(const Resampling<T>& stripResampling, std::uint32_t stripFirstColumn, std::uint32_t stripColumnCount)
        : resampling(stripResampling),
          firstColumn(stripFirstColumn),
          columnCount(stripColumnCount),
          elementCount(std::size_t{stripColumnCount} * channelsPerPixel) {
        placeColumns(resampling.axes.x, firstColumn, columnCount, taps);
        for (std::uint64_t& row : heldRow)
            row = std::numeric_limits<std::uint64_t>::max();
    }

    void resample() {
        for (std::uint32_t z = 0; z < resampling.destinationSize.depth; ++z) {
            for (std::uint32_t y = 0; y < resampling.destinationSize.height; ++y) {
                if (resampling.sourceSize.depth == 1) {
                    sumRows(y);
                } else {
                    sumSlices(y, z);
                }
                storeSums(sums, elementCount, resampling.destinationPixel(firstColumn, y, z));
            }
        }
    }

private:
    /// Sums of a two-dimensional source: across x outermost, then y.
    void sumRows(std::uint32_t y) {
        const AxisPosition position = filteredPosition(resampling.axes.y, y);
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

    /// Sums of a three-dimensional source: across x outermost, then y, then z.
    void sumSlices(std::uint32_t y, std::uint32_t z) {
        const AxisPosition row = filteredPosition(resampling.axes.y, y);
        const AxisPosition slice = filteredPosition(resampling.axes.z, z);
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
    /// the position `slice`. The sixteen rows around a position lie in different places.
    const WeightedRow* weightedRow(const AxisPosition& row, std::size_t rowTap, const AxisPosition& slice, std::size_t sliceTap) {
        const bool isFlat = resampling.sourceSize.depth == 1;
        const std::size_t place = ((slice.index + sliceTap) % cubicTaps) * cubicTaps + (row.index + rowTap) % cubicTaps;
        const std::uint32_t sourceY = cubicIndex(resampling.axes.y, row, rowTap);
        const std::uint32_t sourceZ = isFlat ? 0 : cubicIndex(resampling.axes.z, slice, sliceTap);
        const std::uint64_t number = std::uint64_t{sourceZ} << 32 | sourceY;
        if (heldRow[place] != number) {
            weighRow(resampling.sourceRow(sourceY, sourceZ), held[place]);
            heldRow[place] = number;
        }
        return &held[place];
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
    T gathered[stripElements];
    std::uint64_t heldRow[cubicTaps * cubicTaps];  ///< slice and row of what is held in each place
    WeightedRow held[cubicTaps * cubicTaps];
    float sums[stripElements];
};

}  // namespace

template <typename T>
void resampleCubic(const Resampling<T>& resampling) {
    forEachStrip(resampling.destinationSize.width, stripWidth,
                 [&resampling](std::uint32_t first, std::uint32_t count) { CubicStrip<T>(resampling, first, count).resample(); });
}

template void resampleCubic(const Resampling<std::uint8_t>&);
template void resampleCubic(const Resampling<std::uint16_t>&);
template void resampleCubic(const Resampling<std::uint32_t>&);
template void resampleCubic(const Resampling<float>&);

}  // namespace moktexture
