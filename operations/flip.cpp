#include <algorithm>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/frame/whole_pixels.h"

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
bool flipLevel(Pixel* pixels, const LevelSize& size, EMOKTAxis axis) {
    const std::size_t rowCount = std::size_t{size.height} * size.depth;
    const std::size_t sliceLength = std::size_t{size.width} * size.height;
    if (axis == eAxisX) {
        for (std::size_t row = 0; row < rowCount; ++row)
            std::reverse(pixels + row * size.width, pixels + (row + 1) * size.width);
    } else if (axis == eAxisY) {
        for (std::size_t slice = 0; slice < size.depth; ++slice)
            reverseRuns(pixels + slice * sliceLength, size.height, size.width);
    } else if (axis == eAxisZ) {
        reverseRuns(pixels, size.depth, sliceLength);
    }
    return true;
}

}  // namespace

bool Flip(CMOKTexture& texture, EMOKTAxis axis) {
    return isOperable(texture) && processLevels(texture, [axis](auto* pixels, const Subresource& piece) {
               return flipLevel(wholePixels(pixels), piece.size, axis);
           });
}

}  // namespace moktexture
