#include "moktc/amtc/driver/mip_levels.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace moktexture::amtc {

namespace {

constexpr std::uint32_t opaque = 0xFF000000;
constexpr std::uint32_t levelColours = 7;

void halveSides(AmtcImage& image) {
    image.Width /= 2;
    image.Height /= 2;
}

/// Each byte is the mean of the same byte of four pixels.
/// Kept: truncated. Levels made here are half a step darker than the picture, and files hold them so.
std::uint32_t average(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    std::uint32_t mean = 0;
    for (std::uint32_t shift = 0; shift < 32; shift += 8) {
        const auto byteOf = [shift](std::uint32_t colour) { return colour >> shift & 0xFF; };
        mean |= (byteOf(a) + byteOf(b) + byteOf(c) + byteOf(d)) >> 2 << shift;
    }
    return mean;
}

}  // namespace

std::uint32_t furtherLevelCount(std::int32_t width, std::int32_t height) {
    return static_cast<std::uint32_t>(std::bit_width(static_cast<std::uint32_t>(std::max(width, height)) - 1));
}

// Kept: no level made below a larger map is smaller than 16 by 16, 16 by 8 or 8 by 8 pixels, and readers of a chain count on
// that many blocks.
void tileSmallestMap(AmtcImage& image, std::uint32_t bitsPerPixel) {
    const std::int32_t smallestWidth = bitsPerPixel == 4 ? 8 : 16, smallestHeight = bitsPerPixel == 1 ? 16 : 8;
    if (image.Width == smallestWidth) {
        for (std::int32_t y = 0; y < image.Height; ++y)
            std::copy_n(image.Pixels[y], smallestWidth, image.Pixels[y] + smallestWidth);
        image.Width *= 2;
    }
    if (image.Height == smallestHeight) {
        for (std::int32_t y = 0; y < smallestHeight; ++y)
            std::copy_n(image.Pixels[y], image.Width, image.Pixels[smallestHeight + y]);
        image.Height *= 2;
    }
}

void halveByAveraging(AmtcImage& image) {
    halveSides(image);
    for (std::int32_t y = 0; y < image.Height; ++y) {
        const std::uint32_t* const upper = image.Pixels[2 * y];
        const std::uint32_t* const lower = image.Pixels[2 * y + 1];
        for (std::int32_t x = 0; x < image.Width; ++x)
            image.Pixels[y][x] = average(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
    }
}

void halveToLevelColour(AmtcImage& image, std::uint32_t level) {
    halveSides(image);
    const std::uint32_t code = level - levelColours * ((level - 1) / levelColours);
    const std::uint32_t colour = (code & 1 ? 0xFF : 0) | (code & 2 ? 0xFF00 : 0) | (code & 4 ? 0xFF0000 : 0) | opaque;
    for (std::int32_t y = 0; y < image.Height; ++y)
        std::fill_n(image.Pixels[y], image.Width, colour);
}

const std::uint8_t* halveByReading(AmtcImage& image, const std::uint8_t* source) {
    halveSides(image);
    const std::size_t rowBytes = static_cast<std::size_t>(image.Width) * sizeof image.Pixels[0][0];
    for (std::int32_t y = 0; y < image.Height; ++y, source += rowBytes)
        std::memcpy(image.Pixels[y], source, rowBytes);
    return source;
}

}  // namespace moktexture::amtc
