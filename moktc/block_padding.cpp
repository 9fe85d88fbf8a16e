#include "moktc/block_padding.h"

#include <cstring>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {
namespace {

/// Where position `i` of a padded side comes from: inside the image from itself, beyond it from as many before as were added.
std::uint32_t sourceOf(std::uint32_t i, std::uint32_t size, std::uint32_t paddedSize) {
    if (i < size) return i;
    const std::uint32_t added = paddedSize - size;
    return added <= size ? i - added : i % size;
}

}  // namespace

std::vector<std::uint8_t> padByRepeating(const void* pixels, std::uint32_t width, std::uint32_t height, std::uint32_t paddedWidth,
                                         std::uint32_t paddedHeight) {
    const std::uint8_t* const source = static_cast<const std::uint8_t*>(pixels);
    const std::size_t rowBytes = width * bytesPerPixel, paddedRowBytes = paddedWidth * bytesPerPixel;
    std::vector<std::uint8_t> padded(paddedRowBytes * paddedHeight);
    for (std::uint32_t y = 0; y < paddedHeight; ++y) {
        const std::uint8_t* const from = source + sourceOf(y, height, paddedHeight) * rowBytes;
        std::uint8_t* const to = padded.data() + y * paddedRowBytes;
        std::memcpy(to, from, rowBytes);
        for (std::uint32_t x = width; x < paddedWidth; ++x)
            std::memcpy(to + x * bytesPerPixel, from + sourceOf(x, width, paddedWidth) * bytesPerPixel, bytesPerPixel);
    }
    return padded;
}

}  // namespace moktexture::moktc
