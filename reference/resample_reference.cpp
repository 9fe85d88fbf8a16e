#include "operations/resample/resample_filters.h"
#include "operations/resample/resample_level.h"

namespace moktexture {
namespace {

template <typename T>
void samplePixelNearest(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const T* const row = resampling.sourceRow(nearestIndex(resampling.axes.y, y), nearestIndex(resampling.axes.z, z));
    const T* const sample = row + nearestIndex(resampling.axes.x, x) * channelsPerPixel;
    for (std::size_t c = 0; c < channelsPerPixel; ++c)
        pixel[c] = sample[c];
}

template <typename T>
void samplePixelLinear(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const AxisPosition px = filteredPosition(resampling.axes.x, x);
    const AxisPosition py = filteredPosition(resampling.axes.y, y);
    const AxisPosition pz = filteredPosition(resampling.axes.z, z);
    const std::size_t left = indexWithin(resampling.axes.x, px.index) * channelsPerPixel;
    const std::size_t right = upperNeighbour(resampling.axes.x, px.index) * channelsPerPixel;
    const std::uint32_t upperRow = indexWithin(resampling.axes.y, py.index);
    const std::uint32_t lowerRow = upperNeighbour(resampling.axes.y, py.index);

    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        const auto sampleRow = [&](std::uint32_t row, std::uint32_t slice) {
            const T* const elements = resampling.sourceRow(row, slice) + c;
            return blendElements(elements[left], elements[right], 1.0f - px.fraction, px.fraction);
        };
        const auto sampleSlice = [&](std::uint32_t slice) {
            return blendElements(sampleRow(upperRow, slice), sampleRow(lowerRow, slice), 1.0f - py.fraction, py.fraction);
        };
        if (resampling.sourceSize.depth == 1) {
            pixel[c] = sampleSlice(0);
        } else {
            pixel[c] = blendElements(sampleSlice(indexWithin(resampling.axes.z, pz.index)),
                                     sampleSlice(upperNeighbour(resampling.axes.z, pz.index)), 1.0f - pz.fraction, pz.fraction);
        }
    }
}

template <typename T>
void samplePixelCubic(const Resampling<T>& resampling, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const AxisPosition px = filteredPosition(resampling.axes.x, x);
    const AxisPosition py = filteredPosition(resampling.axes.y, y);
    const AxisPosition pz = filteredPosition(resampling.axes.z, z);
    const CubicWeights wx = cubicWeights(px.fraction);
    const CubicWeights wy = cubicWeights(py.fraction);
    const CubicWeights wz = cubicWeights(pz.fraction);

    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        float sum = 0.0f;
        for (std::size_t i = 0; i < cubicTaps; ++i) {
            const std::size_t element = cubicIndex(resampling.axes.x, px, i) * channelsPerPixel + c;
            for (std::size_t j = 0; j < cubicTaps; ++j) {
                const std::uint32_t row = cubicIndex(resampling.axes.y, py, j);
                if (resampling.sourceSize.depth == 1) {
                    sum += static_cast<float>(resampling.sourceRow(row, 0)[element]) * wx.weight[i] * wy.weight[j];
                    continue;
                }
                for (std::size_t k = 0; k < cubicTaps; ++k) {
                    const T sample = resampling.sourceRow(row, cubicIndex(resampling.axes.z, pz, k))[element];
                    sum += static_cast<float>(sample) * wx.weight[i] * wy.weight[j] * wz.weight[k];
                }
            }
        }
        pixel[c] = elementFromCubicSum<T>(sum);
    }
}

}  // namespace

template <typename T>
bool resampleLevelPlain(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                        unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode) {
    if (source == nullptr || destination == nullptr) return false;
    const LevelSize sourceSize = {srcWidth, srcHeight, srcDepth};
    const LevelSize destinationSize = {dstWidth, dstHeight, dstDepth};
    if (sourceSize.isEmpty() || destinationSize.isEmpty()) return true;

    const Resampling<T> resampling = makeResampling(source, destination, sourceSize, destinationSize);
    for (std::uint32_t z = 0; z < dstDepth; ++z) {
        for (std::uint32_t y = 0; y < dstHeight; ++y) {
            for (std::uint32_t x = 0; x < dstWidth; ++x) {
                T* const pixel = resampling.destinationPixel(x, y, z);
                if (mode == eResizeNearest) samplePixelNearest(resampling, x, y, z, pixel);
                if (mode == eResizeLinear) samplePixelLinear(resampling, x, y, z, pixel);
                if (mode == eResizeCubic) samplePixelCubic(resampling, x, y, z, pixel);
            }
        }
    }
    return true;
}

template bool resampleLevelPlain(const std::uint8_t*, std::uint8_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                                 unsigned int, unsigned int, EResizeMode);
template bool resampleLevelPlain(const std::uint16_t*, std::uint16_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                                 unsigned int, unsigned int, EResizeMode);
template bool resampleLevelPlain(const std::uint32_t*, std::uint32_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                                 unsigned int, unsigned int, EResizeMode);
template bool resampleLevelPlain(const float*, float*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int,
                                 unsigned int, EResizeMode);

}  // namespace moktexture
