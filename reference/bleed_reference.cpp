#include "reference/bleed_reference.h"

#include <algorithm>
#include <vector>

#include "operations/bleed.h"
#include "operations/frame/channel_elements.h"

namespace moktexture {
namespace {

template <typename T>
void bleedPixel(const LevelView<const T>& source, std::uint32_t x, std::uint32_t y, std::uint32_t z, T* pixel) {
    const auto first = [](std::uint32_t index) { return index < bleedRadius ? 0 : index - bleedRadius; };
    float sums[3] = {};
    float count = 0.0f;
    for (std::uint32_t k = first(z); k < std::min(z + bleedRadius + 1, source.size.depth); ++k) {
        for (std::uint32_t j = first(y); j < std::min(y + bleedRadius + 1, source.size.height); ++j) {
            for (std::uint32_t i = first(x); i < std::min(x + bleedRadius + 1, source.size.width); ++i) {
                const T* const neighbour = source.pixel(i, j, k);
                if (neighbour[3] == T{0}) continue;
                for (std::size_t c = 0; c < 3; ++c)
                    sums[c] += static_cast<float>(neighbour[c]);
                count += 1.0f;
            }
        }
    }
    if (count == 0.0f) return;
    for (std::size_t c = 0; c < 3; ++c)
        pixel[c] = withCanonicalNaN(elementFromFloat<T>(sums[c] / count));
}

}  // namespace

template <typename T>
void referenceBleedLevel(const LevelView<T>& level) {
    const std::vector<T> copy(level.data, level.data + level.size.pixelCount() * channelsPerPixel);
    const LevelView<const T> source = {copy.data(), level.size};
    for (std::uint32_t z = 0; z < level.size.depth; ++z) {
        for (std::uint32_t y = 0; y < level.size.height; ++y) {
            for (std::uint32_t x = 0; x < level.size.width; ++x) {
                T* const pixel = level.pixel(x, y, z);
                if (pixel[3] == T{0}) bleedPixel(source, x, y, z, pixel);
            }
        }
    }
}

template void referenceBleedLevel(const LevelView<std::uint8_t>&);
template void referenceBleedLevel(const LevelView<std::uint16_t>&);
template void referenceBleedLevel(const LevelView<std::uint32_t>&);
template void referenceBleedLevel(const LevelView<float>&);

}  // namespace moktexture
