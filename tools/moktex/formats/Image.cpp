#include "moktex/formats/Image.h"

#include <algorithm>
#include <limits>
#include <new>

namespace moktextool {

Image::Image(const TextureFormat& imageFormat, const ImageSize& imageSize) : format(imageFormat), size(imageSize) {
    const std::uint64_t bytes = getDataSize();
    if (bytes > std::numeric_limits<std::size_t>::max()) throw std::bad_alloc();
    pixels.reset(static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(1, static_cast<std::size_t>(bytes)))));
    if (!pixels) throw std::bad_alloc();
}

Image::Image(const TextureFormat& imageFormat, const ImageSize& imageSize, unsigned char* imagePixels)
    : format(imageFormat), size(imageSize), pixels(imagePixels) {}

std::uint64_t Image::getDataSize() const {
    return imageSize(format.pixelType, size);
}

std::uint64_t Image::getRowSize() const {
    return std::uint64_t{size.width} * bitsPerPixel(format.pixelType) / 8;
}

}  // namespace moktextool
