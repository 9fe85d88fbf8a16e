#include "reference/resample_reference.h"

#include "operations/resample/resampling.h"

namespace moktexture {
namespace {

template <typename T>
void samplePixelNearest(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const T* const row = resampling.source.row(nearestIndex(resampling.y, y), nearestIndex(resampling.z, z));
    const T* const sample = row + nearestIndex(resampling.x, x) * channelsPerPixel;
    for (std::size_t c = 0; c < channelsPerPixel; ++c)
        pixel[c] = sample[c];
}

template <typename T>
void samplePixelLinear(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const AxisPosition px = filteredPosition(resampling.x, x);
    const AxisPosition py = filteredPosition(resampling.y, y);
    const AxisPosition pz = filteredPosition(resampling.z, z);
    const std::size_t left = clampedIndex(resampling.x, px.index) * channelsPerPixel;
    const std::size_t right = nextIndex(resampling.x, px.index) * channelsPerPixel;
    const std::uint32_t upperRow = clampedIndex(resampling.y, py.index);
    const std::uint32_t lowerRow = nextIndex(resampling.y, py.index);

    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        const auto sampleRow = [&](std::uint32_t row, std::uint32_t slice) {
            const T* const elements = resampling.source.row(row, slice) + c;
            return blendElements(elements[left], elements[right], 1.0f - px.fraction, px.fraction);
        };
        const auto sampleSlice = [&](std::uint32_t slice) {
            return blendElements(sampleRow(upperRow, slice), sampleRow(lowerRow, slice), 1.0f - py.fraction, py.fraction);
        };
        if (resampling.source.size.depth == 1) {
            pixel[c] = sampleSlice(0);
        } else {
            pixel[c] = blendElements(sampleSlice(clampedIndex(resampling.z, pz.index)),
                                     sampleSlice(nextIndex(resampling.z, pz.index)), 1.0f - pz.fraction, pz.fraction);
        }
    }
}

template <typename T>
void samplePixelCubic(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const AxisPosition px = filteredPosition(resampling.x, x);
    const AxisPosition py = filteredPosition(resampling.y, y);
    const AxisPosition pz = filteredPosition(resampling.z, z);
    const CubicWeights wx = cubicWeights(px.fraction);
    const CubicWeights wy = cubicWeights(py.fraction);
    const CubicWeights wz = cubicWeights(pz.fraction);

    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        float sum = 0.0f;
        for (std::size_t i = 0; i < cubicTaps; ++i) {
            const std::size_t element = cubicIndex(resampling.x, px, i) * channelsPerPixel + c;
            for (std::size_t j = 0; j < cubicTaps; ++j) {
                const std::uint32_t row = cubicIndex(resampling.y, py, j);
                if (resampling.source.size.depth == 1) {
                    sum += static_cast<float>(resampling.source.row(row, 0)[element]) * wx.weight[i] * wy.weight[j];
                    continue;
                }
                for (std::size_t k = 0; k < cubicTaps; ++k) {
                    const T sample = resampling.source.row(row, cubicIndex(resampling.z, pz, k))[element];
                    sum += static_cast<float>(sample) * wx.weight[i] * wy.weight[j] * wz.weight[k];
                }
            }
        }
        pixel[c] = elementFromCubicSum<T>(sum);
    }
}

}  // namespace

template <typename T>
void referenceResampleLevel(const LevelView<const T>& source, const LevelView<T>& destination, EResizeMode mode) {
    const Resampling<T> resampling = makeResampling(source, destination);
    for (std::uint32_t z = 0; z < destination.size.depth; ++z) {
        for (std::uint32_t y = 0; y < destination.size.height; ++y) {
            for (std::uint32_t x = 0; x < destination.size.width; ++x) {
                T* const pixel = destination.pixel(x, y, z);
                if (mode == eResizeNearest) samplePixelNearest(resampling, x, y, z, pixel);
                if (mode == eResizeLinear) samplePixelLinear(resampling, x, y, z, pixel);
                if (mode == eResizeCubic) samplePixelCubic(resampling, x, y, z, pixel);
            }
        }
    }
}

template void referenceResampleLevel(const LevelView<const std::uint8_t>&, const LevelView<std::uint8_t>&, EResizeMode);
template void referenceResampleLevel(const LevelView<const std::uint16_t>&, const LevelView<std::uint16_t>&, EResizeMode);
template void referenceResampleLevel(const LevelView<const std::uint32_t>&, const LevelView<std::uint32_t>&, EResizeMode);
template void referenceResampleLevel(const LevelView<const float>&, const LevelView<float>&, EResizeMode);

}  // namespace moktexture
