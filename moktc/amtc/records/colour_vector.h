#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// @file
/// Colours as 32-bit RGBA8 words, red in the lowest byte, and as four floats in the same range of 0 to 255.

namespace moktexture::amtc {

inline constexpr std::size_t channelCount = 4;
inline constexpr std::size_t alphaChannel = 3;

/// Red, green, blue, alpha.
using ColourVector = std::array<float, channelCount>;

constexpr std::uint32_t channelOf(std::uint32_t rgba, std::size_t channel) {
    return rgba >> 8 * channel & 255;
}

constexpr ColourVector toVector(std::uint32_t rgba) {
    return {static_cast<float>(channelOf(rgba, 0)), static_cast<float>(channelOf(rgba, 1)),
            static_cast<float>(channelOf(rgba, 2)), static_cast<float>(channelOf(rgba, 3))};
}

/// The sum over the four channels of squared differences, at most 260,100.
constexpr std::uint32_t squaredDistance(std::uint32_t first, std::uint32_t second) {
    std::uint32_t sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int difference = static_cast<int>(channelOf(first, channel)) - static_cast<int>(channelOf(second, channel));
        sum += static_cast<std::uint32_t>(difference * difference);
    }
    return sum;
}

constexpr float squaredDistance(const ColourVector& first, const ColourVector& second) {
    float sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const float difference = first[channel] - second[channel];
        sum += difference * difference;
    }
    return sum;
}

constexpr float dotProduct(const ColourVector& first, const ColourVector& second) {
    float sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sum += first[channel] * second[channel];
    return sum;
}

/// The point at `fraction` of the way from one colour to another; fractions below 0 and above 1 extrapolate.
constexpr ColourVector pointBetween(const ColourVector& from, const ColourVector& to, float fraction) {
    ColourVector point{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        point[channel] = from[channel] + (to[channel] - from[channel]) * fraction;
    return point;
}

/// Rounds to a byte: adds 0.5, takes the floor, clamps to 0 to 255. A value that is not a number gives 0.
constexpr std::uint32_t roundToByte(float value) {
    const float raised = value + 0.5f;
    if (!(raised >= 1)) return 0;
    return raised < 256 ? static_cast<std::uint32_t>(raised) : 255;
}

inline std::uint32_t roundToRGBA(const ColourVector& colour) {
    std::uint32_t rgba = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        rgba |= roundToByte(colour[channel]) << 8 * channel;
    return rgba;
}

}  // namespace moktexture::amtc
