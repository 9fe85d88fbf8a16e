#include "operations/resample/resample_level.h"

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

template <typename T>
void resampleNearest(const Resampling<T>& resampling) {
    forEachStrip(resampling.destination.size.width, nearestStripWidth,
                 [&resampling](std::uint32_t first, std::uint32_t count) { resampleStripNearest(resampling, first, count); });
}

}  // namespace

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

template bool resampleLevel(const LevelView<const std::uint8_t>&, const LevelView<std::uint8_t>&, EResizeMode);
template bool resampleLevel(const LevelView<const std::uint16_t>&, const LevelView<std::uint16_t>&, EResizeMode);
template bool resampleLevel(const LevelView<const std::uint32_t>&, const LevelView<std::uint32_t>&, EResizeMode);
template bool resampleLevel(const LevelView<const float>&, const LevelView<float>&, EResizeMode);

}  // namespace moktexture
