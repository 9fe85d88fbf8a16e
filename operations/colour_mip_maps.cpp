#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

template <typename T>
T meanOfColours(const T* pixel) {
    if constexpr (std::is_same_v<T, float>) {
        return withPlainNaN((pixel[1] + pixel[0] + pixel[2]) / 3.0f);
    } else {
        // Kept: the sum of 32-bit elements wraps, so bright levels are tinted dark; previews look as they always did.
        const std::uint32_t sum = std::uint32_t{pixel[0]} + pixel[1] + pixel[2];
        return elementFromBounded<T>(static_cast<float>(sum) / 3.0f);
    }
}

/// Tints a level, 1 or above. Of every six levels the first three leave one channel, in turn, and the others leave out one.
template <typename T>
void tintLevel(T* pixels, std::size_t pixelCount, std::uint32_t level) {
    const bool leavesOneOut = level % 6 >= 3;
    bool isLit[3];
    for (std::uint32_t c = 0; c < 3; ++c)
        isLit[c] = (level % 3 == c) != leavesOneOut;

    for (std::size_t i = 0; i < pixelCount; ++i) {
        T* const pixel = pixels + i * channelsPerPixel;
        const T mean = meanOfColours(pixel);
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = isLit[c] ? mean : T{0};
    }
}

template <typename T>
bool colourLevel(T* pixels, std::size_t pixelCount, std::uint32_t level) {
    if (level > 0) tintLevel(pixels, pixelCount, level);
    return true;
}

}  // namespace

bool ColourMIPMaps(CMOKTexture& texture) {
    return isOperable(texture) && processLevels(texture, [](auto* pixels, const Subresource& piece) {
               return colourLevel(pixels, piece.size.pixelCount(), piece.level);
           });
}

}  // namespace moktexture
