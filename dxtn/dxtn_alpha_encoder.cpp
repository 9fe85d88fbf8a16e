#include "dxtn/dxtn_alpha_encoder.h"

#include <algorithm>

namespace moktexture::dxtn {
namespace {

/// Index of the step from the smallest alpha (0) to the greatest (7); the format puts the end points first.
constexpr std::uint64_t indexOfStep[8] = {1, 7, 6, 5, 4, 3, 2, 0};

constexpr std::uint32_t alphaOf(std::uint32_t rgba) {
    return rgba >> 24;
}

/// The step nearest to `t`, which runs from 0 to 7; halves go up.
int nearestStep(float t) {
    int step = 0;
    while (step < 7 && t >= static_cast<float>(step) + 0.5f)
        ++step;
    return step;
}

}  // namespace

std::uint64_t EncodeExplicitAlpha(const BlockPixels& pixels) {
    std::uint64_t half = 0;
    // Kept: truncated, not rounded, so that alpha 8 is 0; encoded textures come out as they always have.
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        half |= std::uint64_t{alphaOf(pixels[pixel]) >> 4} << 4 * pixel;
    return half;
}

std::uint64_t EncodeInterpolatedAlpha(const BlockPixels& pixels) {
    std::uint32_t smallest = 255, greatest = 0;
    for (const std::uint32_t pixel : pixels) {
        smallest = std::min(smallest, alphaOf(pixel));
        greatest = std::max(greatest, alphaOf(pixel));
    }
    std::uint64_t half = greatest | smallest << 8;
    if (greatest == smallest) return half;
    const float range = static_cast<float>(greatest - smallest);
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
        const float t = static_cast<float>(alphaOf(pixels[pixel]) - smallest) * 7.0f / range;
        half |= indexOfStep[nearestStep(t)] << (16 + 3 * pixel);
    }
    return half;
}

}  // namespace moktexture::dxtn
