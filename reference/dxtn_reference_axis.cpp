#include "reference/dxtn_reference_axis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

// All in single precision, sums left to right and pixels in raster order: the library's form does the same operations lane by
// lane.

namespace moktexture::dxtn {
namespace {

struct Vector {
    float r, g, b;
};

constexpr Vector operator+(const Vector& a, const Vector& b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
constexpr Vector operator-(const Vector& a, const Vector& b) {
    return {a.r - b.r, a.g - b.g, a.b - b.b};
}
constexpr Vector operator*(float factor, const Vector& a) {
    return {factor * a.r, factor * a.g, factor * a.b};
}
constexpr Vector operator/(const Vector& a, float divisor) {
    return {a.r / divisor, a.g / divisor, a.b / divisor};
}
constexpr float dot(const Vector& a, const Vector& b) {
    return a.r * b.r + a.g * b.g + a.b * b.b;
}
float length(const Vector& a) {
    return std::sqrt(dot(a, a));
}

/// The pixels' colours less their mean.
struct CentredBlock {
    Vector mean;
    std::array<Vector, blockArea> pixels;
};

/// A symmetric matrix.
struct Covariance {
    float rr, rg, rb, gg, gb, bb;
};

constexpr Vector operator*(const Covariance& m, const Vector& a) {
    return {m.rr * a.r + m.rg * a.g + m.rb * a.b, m.rg * a.r + m.gg * a.g + m.gb * a.b, m.rb * a.r + m.gb * a.g + m.bb * a.b};
}

/// The points on the axis at the smallest and the greatest projection of the block's pixels, relative to the mean.
struct Extremes {
    Vector low;
    Vector high;
};

Vector toVector(std::uint32_t rgba) {
    return {static_cast<float>(rgba & 255), static_cast<float>(rgba >> 8 & 255), static_cast<float>(rgba >> 16 & 255)};
}

CentredBlock centre(const PixelBlock& pixels) {
    CentredBlock block = {{0.0f, 0.0f, 0.0f}, {}};
    for (const std::uint32_t pixel : pixels)
        block.mean = block.mean + toVector(pixel);
    block.mean = 0.0625f * block.mean;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        block.pixels[pixel] = toVector(pixels[pixel]) - block.mean;
    return block;
}

Covariance covarianceOf(const CentredBlock& block) {
    Covariance sums = {};
    for (const Vector& p : block.pixels) {
        sums.rr += p.r * p.r;
        sums.rg += p.r * p.g;
        sums.rb += p.r * p.b;
        sums.gg += p.g * p.g;
        sums.gb += p.g * p.b;
        sums.bb += p.b * p.b;
    }
    return sums;
}

/// The direction of greatest variance by power iteration. Where the matrix sends the vector to zero it is zero, so that all
/// projections are 0 and both end points fall on the mean.
Vector principalAxis(const Covariance& matrix) {
    constexpr int maxSteps = 100;
    constexpr float smallChange = 1e-5f;
    Vector axis = {1.0f, 1.0f, 1.0f};
    for (int step = 0; step < maxSteps; ++step) {
        const Vector product = matrix * axis;
        const float productLength = length(product);
        if (!(productLength > 0.0f)) return {0.0f, 0.0f, 0.0f};
        const Vector last = std::exchange(axis, product / productLength);
        if (length(axis - last) < smallChange) break;
    }
    return axis;
}

Extremes project(const CentredBlock& block, const Vector& axis) {
    float smallest = 0.0f, greatest = 0.0f;
    for (const Vector& pixel : block.pixels) {
        const float d = dot(axis, pixel);
        if (d < smallest) smallest = d;
        if (d > greatest) greatest = d;
    }
    return {smallest * axis, greatest * axis};
}

/// A colour in 5-6-5 form, each channel clamped to 0 to 255 and truncated.
std::uint16_t quantise(const Vector& colour) {
    const auto channel = [](float value) { return static_cast<std::uint32_t>(std::clamp(value, 0.0f, 255.0f)); };
    return packRGB565(channel(colour.r) | channel(colour.g) << 8 | channel(colour.b) << 16);
}

/// The step nearest to `t`, which runs from 0 to 1 over `steps` steps; values of `t` beyond them give the nearer end.
std::uint32_t nearestStep(float t, std::uint32_t steps) {
    const float position = t * static_cast<float>(steps) + 0.5f;
    if (!(position > 0.0f)) return 0;
    return position < static_cast<float>(steps) ? static_cast<std::uint32_t>(position) : steps;
}

/// The 2-bit indices of the pixels between `start`, the point of c0, and `end`, the point of c1.
std::uint32_t indicesAlongAxis(const CentredBlock& block, const Vector& start, const Vector& end, std::uint32_t transparent) {
    constexpr std::uint32_t indexOfStep[2][4] = {{0, 2, 3, 1}, {0, 2, 1, 1}};  // four colours, three colours
    const bool threeColours = transparent != 0;
    const std::uint32_t steps = threeColours ? 2 : 3;
    const Vector v = (end - start) / dot(end - start, end - start);
    std::uint32_t indices = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
        const std::uint32_t step = nearestStep(dot(block.pixels[pixel] - start, v), steps);
        const std::uint32_t index = transparent >> pixel & 1 ? 3 : indexOfStep[threeColours][step];
        indices |= index << 2 * pixel;
    }
    return indices;
}

}  // namespace

ColourBlock encodeAlongAxisReference(const PixelBlock& pixels, std::uint32_t transparent) {
    const CentredBlock block = centre(pixels);
    const Vector axis = principalAxis(covarianceOf(block));
    const Extremes points = project(block, axis);
    const std::uint16_t low = quantise(block.mean + points.low);
    const std::uint16_t high = quantise(block.mean + points.high);
    if (low == high) return {low, high, 0};
    // The order of the two selects four colours or three.
    const bool highFirst = transparent != 0 ? high < low : low < high;
    if (highFirst) return {high, low, indicesAlongAxis(block, points.high, points.low, transparent)};
    return {low, high, indicesAlongAxis(block, points.low, points.high, transparent)};
}

}  // namespace moktexture::dxtn
