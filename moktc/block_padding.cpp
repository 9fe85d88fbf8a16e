#include "moktc/block_padding.h"

#include <cstring>

namespace moktexture::moktc {
namespace {

/// The column (row) of the image that column (row) `i` of the padded image repeats: the one `added` before, where `added` is the
/// number of columns that the padding adds.
std::uint32_t sourceIndex(std::uint32_t i, std::uint32_t size, std::uint32_t paddedSize) {
    if (i < size) return i;
    const std::uint32_t added = paddedSize - size;
    return added <= size ? i - added : i % size;
}

}  // namespace

std::vector<std::uint8_t> padByRepeating(const ConstImageView& image, std::uint32_t paddedWidth, std::uint32_t paddedHeight) {
    std::vector<std::uint8_t> pixels(paddedWidth * bytesPerRGBA8Pixel * paddedHeight);
    const ImageView padded = packedImage(pixels.data(), paddedWidth, paddedHeight);
    for (std::uint32_t y = 0; y < paddedHeight; ++y) {
        const std::uint32_t sourceRow = sourceIndex(y, image.height, paddedHeight);
        std::memcpy(padded.row(y), image.row(sourceRow), image.width * bytesPerRGBA8Pixel);
        for (std::uint32_t x = image.width; x < paddedWidth; ++x) {
            const std::uint8_t* const source = image.pixel(sourceIndex(x, image.width, paddedWidth), sourceRow);
            std::memcpy(padded.pixel(x, y), source, bytesPerRGBA8Pixel);
        }
    }
    return pixels;
}

}  // namespace moktexture::moktc
