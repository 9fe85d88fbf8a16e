#include "operations/resample/resample_filters.h"

namespace moktexture {
namespace {

/// Destination columns whose source columns are computed once and serve all rows.
constexpr std::uint32_t stripWidth = 512;

template <typename T>
void resampleStrip(const Resampling<T>& resampling, std::uint32_t firstColumn, std::uint32_t columnCount) {
    std::uint32_t columns[stripWidth];
    for (std::uint32_t i = 0; i < columnCount; ++i)
        columns[i] = nearestIndex(resampling.axes.x, firstColumn + i);
    for (std::uint32_t z = 0; z < resampling.destinationSize.depth; ++z) {
        const std::uint32_t slice = nearestIndex(resampling.axes.z, z);
        for (std::uint32_t y = 0; y < resampling.destinationSize.height; ++y) {
            const T* const row = resampling.sourceRow(nearestIndex(resampling.axes.y, y), slice);
            gatherPixels(row, columns, columnCount, resampling.destinationPixel(firstColumn, y, z));
        }
    }
}

}  // namespace

template <typename T>
void resampleNearest(const Resampling<T>& resampling) {
    forEachStrip(resampling.destinationSize.width, stripWidth,
                 [&resampling](std::uint32_t first, std::uint32_t count) { resampleStrip(resampling, first, count); });
}

template void resampleNearest(const Resampling<std::uint8_t>&);
template void resampleNearest(const Resampling<std::uint16_t>&);
template void resampleNearest(const Resampling<std::uint32_t>&);
template void resampleNearest(const Resampling<float>&);

}  // namespace moktexture
