#include "operations/resample/resample_level.h"

#include "operations/resample/resample_filters.h"

namespace moktexture {

template <typename T>
bool resampleLevel(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                   unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode) {
    if (source == nullptr || destination == nullptr) return false;
    const LevelSize sourceSize = {srcWidth, srcHeight, srcDepth};
    const LevelSize destinationSize = {dstWidth, dstHeight, dstDepth};
    if (sourceSize.isEmpty() || destinationSize.isEmpty()) return true;

    const Resampling<T> resampling = makeResampling(source, destination, sourceSize, destinationSize);
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

template bool resampleLevel(const std::uint8_t*, std::uint8_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                            unsigned int, unsigned int, EResizeMode);
template bool resampleLevel(const std::uint16_t*, std::uint16_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                            unsigned int, unsigned int, EResizeMode);
template bool resampleLevel(const std::uint32_t*, std::uint32_t*, unsigned int, unsigned int, unsigned int, unsigned int,
                            unsigned int, unsigned int, EResizeMode);
template bool resampleLevel(const float*, float*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int,
                            unsigned int, EResizeMode);

}  // namespace moktexture
