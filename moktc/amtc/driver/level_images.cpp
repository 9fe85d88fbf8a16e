#include "moktc/amtc/driver/level_images.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace moktexture::amtc {

namespace {

/// One row of pixels with alpha in front.
void rotateRow(const std::uint8_t* source, std::int32_t width, std::uint32_t* row) {
    for (std::int32_t x = 0; x < width; ++x, source += 4)
        row[x] = std::uint32_t{source[1]} | std::uint32_t{source[2]} << 8 | std::uint32_t{source[3]} << 16 |
                 std::uint32_t{source[0]} << 24;
}

constexpr std::uint32_t lowestVisibleAlpha = 4;

/// How far the neighbourhood reaches each way, and the weights along one axis. A wider one bleeds colours further under a
/// cut-out, at a cost that grows with its square.
constexpr std::int32_t reach = 3;
constexpr std::array<std::uint32_t, 2 * reach + 1> reductionWeights = {1, 2, 3, 4, 3, 2, 1};

std::int32_t wrap(std::int32_t position, std::int32_t size) {
    const std::int32_t rest = position % size;
    return rest < 0 ? rest + size : rest;
}

/// `sum / weight`, rounded. Sums stay below 2 to the 24, where floats are exact.
std::uint32_t roundedQuotient(std::uint32_t sum, std::uint32_t weight) {
    return static_cast<std::uint32_t>(static_cast<float>(sum) / static_cast<float>(weight) + 0.5F);
}

/// The weighted mean colour around a pixel, with an alpha of 0.
std::uint32_t surroundingColour(const AmtcImage& image, std::int32_t centreX, std::int32_t centreY) {
    std::uint32_t red = 0, green = 0, blue = 0, weightSum = 0;
    for (std::int32_t dy = -reach; dy <= reach; ++dy) {
        const std::uint32_t* const row = image.Pixels[wrap(centreY + dy, image.Height)];
        for (std::int32_t dx = -reach; dx <= reach; ++dx) {
            if (dx == 0 && dy == 0) continue;
            const std::uint32_t colour = row[wrap(centreX + dx, image.Width)];
            // Alpha plus 1: the weight is never 0, and so neither is the sum.
            const std::uint32_t weight = reductionWeights[static_cast<std::size_t>(dy + reach)] *
                                         reductionWeights[static_cast<std::size_t>(dx + reach)] * ((colour >> 24) + 1);
            red += weight * (colour & 0xFF);
            green += weight * (colour >> 8 & 0xFF);
            blue += weight * (colour >> 16 & 0xFF);
            weightSum += weight;
        }
    }
    return roundedQuotient(red, weightSum) | roundedQuotient(green, weightSum) << 8 | roundedQuotient(blue, weightSum) << 16;
}

constexpr std::uint32_t opaque = 0xFF000000;
constexpr std::uint32_t debugColourCount = 7;

void halveSides(AmtcImage& image) {
    image.Width /= 2;
    image.Height /= 2;
}

/// Each byte is the mean of the same byte of four pixels.
/// Kept (truncated-mip-average): it is truncated. Rounding would change the blocks of every further MIP level that a host makes
/// with `mipMode` 1, and so the .mok files that it writes.
std::uint32_t average(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    std::uint32_t mean = 0;
    for (std::uint32_t shift = 0; shift < 32; shift += 8) {
        const auto byteOf = [shift](std::uint32_t colour) { return colour >> shift & 0xFF; };
        mean |= (byteOf(a) + byteOf(b) + byteOf(c) + byteOf(d)) >> 2 << shift;
    }
    return mean;
}

}  // namespace

WorkImage loadWorkImage(const SourceImage& source) {
    if (source.pixels == nullptr || !isValidSide(source.width) || !isValidSide(source.height)) return nullptr;
    WorkImage image = makeWorkImage();
    if (image == nullptr) return nullptr;
    image->Width = source.width;
    image->Height = source.height;
    for (std::int32_t y = 0; y < source.height; ++y) {
        const std::uint8_t* const row = source.pixels + source.rowBytes * y;
        if (source.isRGBAOrder)
            std::memcpy(image->Pixels[y], row, std::size_t{4} * static_cast<std::uint32_t>(source.width));
        else
            rotateRow(row, source.width, image->Pixels[y]);
    }
    return image;
}

void PunchThroughPreprocess(AmtcImage& image, std::uint32_t secondGeneration) {
    for (std::int32_t y = 0; y < image.Height; ++y) {
        for (std::int32_t x = 0; x < image.Width; ++x) {
            std::uint32_t& pixel = image.Pixels[y][x];
            if (pixel >> 24 >= lowestVisibleAlpha) continue;
            // Kept (punch-through-reads-own-output): pixels rebuilt before count with their new colour, so colours bleed further
            // to the right and down; hosts that encode cut-outs with `punchThrough` get the resulting blocks.
            pixel = secondGeneration != 0 ? 0 : surroundingColour(image, x, y);
        }
    }
}

std::uint32_t furtherMIPLevelCount(std::int32_t width, std::int32_t height) {
    return static_cast<std::uint32_t>(std::bit_width(static_cast<std::uint32_t>(std::max(width, height)) - 1));
}

// Kept (smallest-mip-levels-are-tiled): no MIP level made below a larger one is smaller than 16 by 16, 16 by 8 or 8 by 8 pixels;
// readers of a chain compute the offsets of its last levels from that many blocks.
void tileSmallestImage(AmtcImage& image, moktc::Rate rate) {
    const std::int32_t smallestWidth = rate == moktc::Rate::fourBpp ? 8 : 16, smallestHeight = rate == moktc::Rate{1} ? 16 : 8;
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

void halveToDebugColour(AmtcImage& image, std::uint32_t mipLevel) {
    halveSides(image);
    const std::uint32_t code = mipLevel - debugColourCount * ((mipLevel - 1) / debugColourCount);
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
