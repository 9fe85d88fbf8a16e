#include "moktc/amtc/driver/punch_through.h"

#include <array>

namespace moktexture::amtc {

namespace {

constexpr std::uint32_t leastVisibleAlpha = 4;

/// How far the neighbourhood reaches each way, and the weights along one axis.
constexpr std::int32_t reach = 3;
constexpr std::array<std::uint32_t, 2 * reach + 1> weights = {1, 2, 3, 4, 3, 2, 1};

std::int32_t wrapped(std::int32_t position, std::int32_t size) {
    const std::int32_t rest = position % size;
    return rest < 0 ? rest + size : rest;
}

/// `sum / weight`, rounded. Sums stay below 2 to the 24, where floats are exact.
std::uint32_t rounded(std::uint32_t sum, std::uint32_t weight) {
    return static_cast<std::uint32_t>(static_cast<float>(sum) / static_cast<float>(weight) + 0.5F);
}

/// The mean colour around a pixel, with an alpha of 0.
std::uint32_t surroundingColour(const AmtcImage& image, std::int32_t centreX, std::int32_t centreY) {
    std::uint32_t red = 0, green = 0, blue = 0, weightSum = 0;
    for (std::int32_t dy = -reach; dy <= reach; ++dy) {
        const std::uint32_t* const row = image.Pixels[wrapped(centreY + dy, image.Height)];
        for (std::int32_t dx = -reach; dx <= reach; ++dx) {
            if (dx == 0 && dy == 0) continue;
            const std::uint32_t colour = row[wrapped(centreX + dx, image.Width)];
            // Never 0, so that the sum is not either.
            const std::uint32_t weight = weights[static_cast<std::size_t>(dy + reach)] *
                                         weights[static_cast<std::size_t>(dx + reach)] * ((colour >> 24) + 1);
            red += weight * (colour & 0xFF);
            green += weight * (colour >> 8 & 0xFF);
            blue += weight * (colour >> 16 & 0xFF);
            weightSum += weight;
        }
    }
    return rounded(red, weightSum) | rounded(green, weightSum) << 8 | rounded(blue, weightSum) << 16;
}

}  // namespace

void PunchThroughPreprocess(AmtcImage& image, std::uint32_t secondGeneration) {
    for (std::int32_t y = 0; y < image.Height; ++y) {
        for (std::int32_t x = 0; x < image.Width; ++x) {
            std::uint32_t& pixel = image.Pixels[y][x];
            if (pixel >> 24 >= leastVisibleAlpha) continue;
            // Kept: pixels that were changed already count with their new colour, which bleeds to the right and down.
            pixel = secondGeneration != 0 ? 0 : surroundingColour(image, x, y);
        }
    }
}

}  // namespace moktexture::amtc
