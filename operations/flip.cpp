#include <algorithm>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// Reverses the order of `count` runs of `length` pixels.
template <typename Pixel>
void reverseRuns(Pixel* pixels, std::size_t count, std::size_t length) {
    for (std::size_t i = 0; i < count / 2; ++i) {
        Pixel* const run = pixels + i * length;
        std::swap_ranges(run, run + length, pixels + (count - 1 - i) * length);
    }
}

template <typename Pixel>
bool flipLevel(const LevelView<Pixel>& level, EMOKTAxis axis) {
    const LevelSize& size = level.size;
    const std::size_t rowCount = std::size_t{size.height} * size.depth;
    if (axis == eAxisX) {
        for (std::size_t row = 0; row < rowCount; ++row)
            std::reverse(level.row(row, 0), level.row(row + 1, 0));
    } else if (axis == eAxisY) {
        for (std::size_t slice = 0; slice < size.depth; ++slice)
            reverseRuns(level.row(0, slice), size.height, size.width);
    } else if (axis == eAxisZ) {
        reverseRuns(level.data, size.depth, std::size_t{size.width} * size.height);
    }
    return true;
}

}  // namespace

bool Flip(CMOKTexture& texture, EMOKTAxis axis) {
    return isOperable(texture) &&
           processLevels(texture, [axis](const auto& level, const Subresource&) { return flipLevel(wholePixels(level), axis); });
}

}  // namespace moktexture
