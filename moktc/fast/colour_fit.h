#pragma once

#include <array>
#include <cstdint>

#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// A value for each of red, green, blue and alpha.
using Vector4 = std::array<float, 4>;

/// Colours A and B of a block as RGBA8, red in the lowest byte.
struct RGBAPair {
    std::uint32_t a, b;
};

struct FitSettings {
    std::uint32_t pixels;  ///< pixels in a block, a power of two
    /// A block keeps its colours if the squared length of its mean residual, over four channels of 8 bits, is below this.
    float errorThreshold;
};

/// Limits each channel to the range `low` to `high`.
void clampVector(Vector4& out, const Vector4& value, float low, float high);

/// The block's colours moved by least squares so that the residuals become small; `sums` are those of the present colours.
RGBAPair fitColours(const ResidualSums& sums, const FitSettings& settings, const RGBAPair& colours);

}  // namespace moktexture::moktc
