#include "moktc/fast/colour_fit.h"

#include <cmath>

#include "core/base/numeric.h"

// Least squares fit of a block's two colours
//
// For given weights t, a pixel's blend is (1 - t) * A + t * B. Let e be the residual, the source minus the blend. Moving A by dA
// and B by dB moves the blend by the line (1 - t) * dA + t * dB, so the corrections that leave the smallest squares of residuals
// are the ends of the regression line of e over t, for each channel separately:
//
//     slope = (mean(e t) - mean(e) mean(t)) / (mean(t t) - mean(t) mean(t))
//     dA    = mean(e) - slope * mean(t)            the line at t = 0
//     dB    = dA + slope                           the line at t = 1
//
// If all weights of the block are equal there is no slope: each colour takes its share of the mean residual, (1 - t) or t, and
// then both move towards each other, since such a block needs one colour only.
//
// The fit treats the block as if the upscaled colours inside it came from its own two colours alone, although its neighbours'
// contribute as well. A fit is therefore an approximation, corrections are limited, and the passes repeat it.

namespace moktexture::moktc {
namespace {

constexpr float largestValue = 255.0f;
/// Limits the change of a channel in one pass. A larger limit lets far colours arrive in fewer passes, but lets a block whose
/// weights differ little, and whose slope is therefore steep, overshoot. The encoded bytes depend on it.
constexpr float largestCorrection = 100.0f;
/// Weights with a smaller variance count as equal, which keeps 1 / variance finite.
constexpr double smallestVariance = 1e-10;

struct ColourVectors {
    Vector4 a, b;
};

/// Means over a block's pixels of the quantities in ResidualSums.
struct ResidualMeans {
    float t, t2;
    Vector4 e, et;
};

ResidualMeans meansOf(const ResidualSums& sums, std::uint32_t pixels) {
    const float scale = 1.0f / static_cast<float>(pixels);
    ResidualMeans means{sums.t * scale, sums.t2 * scale, {}, {}};
    for (std::size_t channel = 0; channel < 4; ++channel) {
        means.e[channel] = sums.e[channel] * scale;
        means.et[channel] = sums.et[channel] * scale;
    }
    return means;
}

float squaredLength(const Vector4& vector) {
    return vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2] + vector[3] * vector[3];
}

Vector4 unpack(std::uint32_t rgba) {
    Vector4 vector;
    for (std::size_t channel = 0; channel < 4; ++channel)
        vector[channel] = static_cast<float>(rgba >> 8 * channel & 255);
    return vector;
}

std::uint32_t pack(const Vector4& vector) {
    std::uint32_t rgba = 0;
    for (std::size_t channel = 0; channel < 4; ++channel)
        rgba |= static_cast<std::uint32_t>(truncateToInteger(vector[channel]) & 255) << 8 * channel;
    return rgba;
}

/// The fit of a block whose weights are all equal.
ColourVectors shiftByMean(const ColourVectors& old, const ResidualMeans& means) {
    ColourVectors shifted;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        shifted.a[channel] = old.a[channel] + (1.0f - means.t) * means.e[channel];
        shifted.b[channel] = old.b[channel] + means.t * means.e[channel];
    }
    clampVector(shifted.a, shifted.a, 0.0f, largestValue);
    clampVector(shifted.b, shifted.b, 0.0f, largestValue);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const float difference = shifted.b[channel] - shifted.a[channel];
        const float distance = std::fabs(difference) < 1.0f ? 0.0f : difference;
        shifted.a[channel] = shifted.a[channel] + distance * means.t * 0.5f;
        shifted.b[channel] = shifted.b[channel] + distance * (1.0f - means.t) * -0.5f;
    }
    return shifted;
}

/// The fit of a block with different weights.
ColourVectors shiftByLine(const ColourVectors& old, const ResidualMeans& means, float variance) {
    ColourVectors correction;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const float slope = (means.et[channel] - means.e[channel] * means.t) * (1.0f / variance);
        const float offset = means.e[channel] - slope * means.t;
        correction.a[channel] = offset;
        correction.b[channel] = offset + slope;
    }
    clampVector(correction.a, correction.a, -largestCorrection, largestCorrection);
    clampVector(correction.b, correction.b, -largestCorrection, largestCorrection);
    ColourVectors shifted;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        shifted.a[channel] = old.a[channel] + correction.a[channel];
        shifted.b[channel] = old.b[channel] + correction.b[channel];
    }
    return shifted;
}

}  // namespace

void clampVector(Vector4& out, const Vector4& value, float low, float high) {
    for (std::size_t channel = 0; channel < 4; ++channel)
        out[channel] = value[channel] < low ? low : value[channel] > high ? high : value[channel];
}

RGBAPair fitColours(const ResidualSums& sums, const FitSettings& settings, const RGBAPair& colours) {
    const ResidualMeans means = meansOf(sums, settings.pixels);
    if (squaredLength(means.e) < settings.errorThreshold) return colours;
    const float variance = means.t2 - means.t * means.t;
    const ColourVectors old = {unpack(colours.a), unpack(colours.b)};
    ColourVectors fitted =
        static_cast<double>(variance) < smallestVariance ? shiftByMean(old, means) : shiftByLine(old, means, variance);
    clampVector(fitted.a, fitted.a, 0.0f, largestValue);
    clampVector(fitted.b, fitted.b, 0.0f, largestValue);
    return {pack(fitted.a), pack(fitted.b)};
}

}  // namespace moktexture::moktc
