#include "operations/resample/resampling.h"

namespace moktexture {
namespace {

/// Destination columns whose source columns are computed once and serve all rows of the nearest filter: 2 KB.
constexpr std::uint32_t nearestStripWidth = 512;

template <typename T>
void resampleStripNearest(const Resampling<T>& resampling, std::uint32_t firstColumn, std::uint32_t columnCount) {
    std::uint32_t columns[nearestStripWidth];
    for (std::uint32_t i = 0; i < columnCount; ++i)
        columns[i] = nearestIndex(resampling.x, firstColumn + i);
    const LevelSize& size = resampling.destination.size;
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        const std::uint32_t slice = nearestIndex(resampling.z, z);
        for (std::uint32_t y = 0; y < size.height; ++y) {
            const T* const row = resampling.source.row(nearestIndex(resampling.y, y), slice);
            gatherPixels(row, columns, columnCount, resampling.destination.pixel(firstColumn, y, z));
        }
    }
}

}  // namespace

template <typename T>
void resampleNearest(const Resampling<T>& resampling) {
    forEachStrip(resampling.destination.size.width, nearestStripWidth,
                 [&resampling](std::uint32_t first, std::uint32_t count) { resampleStripNearest(resampling, first, count); });
}

template void resampleNearest(const Resampling<std::uint8_t>&);
template void resampleNearest(const Resampling<std::uint16_t>&);
template void resampleNearest(const Resampling<std::uint32_t>&);
template void resampleNearest(const Resampling<float>&);

}  // namespace moktexture
