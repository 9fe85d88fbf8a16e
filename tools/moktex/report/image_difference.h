#pragma once

#include <array>
#include <cstdint>

#include "MOKTexLib.h"

namespace moktextool {

/// How far two sets of values lie apart, in units of the pixels: 0 to `peak` of the comparison.
struct ChannelDifference {
    double meanSquaredError;
    double psnr;     ///< in decibels; infinite if all values are equal
    double largest;  ///< of the absolute differences
};

/// Places in LevelDifference::channels: red, green, blue, alpha, the means over three and four of them, and the mean over three
/// weighted as the eye sees them: 0.299, 0.587 and 0.114.
inline constexpr std::array differenceNames = {"r", "g", "b", "a", "rgb", "rgba", "weighted"};
inline constexpr std::size_t overAll = 5;

struct LevelDifference {
    std::uint32_t level, width, height;
    std::array<ChannelDifference, differenceNames.size()> channels;
};

/// The largest value of a channel: 255, 65535, or 1 for floats.
double peakOf(const moktexture::CMOKTextureHeader& header);

/// Compares a level, all members, faces and slices of it, of two textures of equal size in the same form: RGBA8, RGBA16 or float
/// RGBA. Where one value is no number and the other is, the difference is infinite.
LevelDifference compareLevel(const moktexture::CMOKTexture& a, const moktexture::CMOKTexture& b, std::uint32_t level);

}  // namespace moktextool
