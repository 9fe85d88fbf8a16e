#pragma once

#include <array>
#include <cstdint>

#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// A value for each of red, green, blue and alpha.
using Vector4 = std::array<float, 4>;

/// Limits each channel to `low` to `high`.
void clampVector(Vector4& out, const Vector4& value, float low, float high);

/// Moves a block's colours (RGBA8, red in the lowest byte) by least squares to where the residuals that were summed up over its
/// pixels get small. `share` is one over the number of pixels. A block whose mean residual has a squared length below
/// `goodEnough` keeps its colours.
void fitColours(const ResidualSums& sums, float share, float goodEnough, std::uint32_t& colourA, std::uint32_t& colourB);

}  // namespace moktexture::moktc
