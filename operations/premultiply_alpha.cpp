#include <type_traits>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

// Kept (premultiply-keeps-low-byte): of every product only the low 8 bits are stored, in wider elements and floats too, where the
// colour is lost. Stored .mok files premultiplied at 16 and 32 bits have these values, and asset builds compare against them.
template <typename T>
T elementFromProduct(float product) {
    if constexpr (std::is_same_v<T, float>) {
        return static_cast<float>(truncateToInteger(product) & 0xFF);
    } else {
        return static_cast<T>(elementFromBounded<T>(product) & 0xFF);
    }
}

template <typename T>
bool premultiplyLevel(const LevelView<T>& level) {
    const std::size_t pixelCount = level.size.pixelCount();
    for (std::size_t i = 0; i < pixelCount; ++i) {
        T* const pixel = level.data + i * channelsPerPixel;
        const float factor = scaledElement<float>(pixel[3]);
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = elementFromProduct<T>(static_cast<float>(pixel[c]) * factor);
    }
    return true;
}

}  // namespace

bool PreMultiplyAlpha(CMOKTexture& texture) {
    if (!isOperable(texture) || texture.isPreMultiplied()) return false;
    const bool result = processLevels(texture, [](const auto& level, const Subresource&) { return premultiplyLevel(level); });
    texture.setIsPreMultiplied(true);
    return result;
}

}  // namespace moktexture
