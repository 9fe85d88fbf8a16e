#include "moktc/fast/colour_fit.h"

#include <cmath>

#include "core/base/numeric.h"

namespace moktexture::moktc {
namespace {

constexpr float largestValue = 255.0f;
constexpr float largestCorrection = 100.0f;
/// Variances of the weights below this leave no slope to fit.
constexpr double smallestVariance = 1e-10;

struct ColourVectors {
    Vector4 a, b;
};

/// Means over a block's pixels: the weight of colour B and its square, the residuals and their products with the weight.
struct ResidualMeans {
    float t, t2;
    Vector4 e, et;
};

ResidualMeans meansOf(const ResidualSums& sums, float share) {
    ResidualMeans means{sums.t * share, sums.t2 * share, {}, {}};
    for (std::size_t channel = 0; channel < 4; ++channel) {
        means.e[channel] = sums.e[channel] * share;
        means.et[channel] = sums.et[channel] * share;
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

/// All weights of the block are equal: each colour takes its share of the mean residual, then both draw together.
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

/// Fits the residual by a line in the weight: its value at weight 0 corrects A, that at weight 1 corrects B.
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

void fitColours(const ResidualSums& sums, float share, float goodEnough, std::uint32_t& colourA, std::uint32_t& colourB) {
    const ResidualMeans means = meansOf(sums, share);
    if (squaredLength(means.e) < goodEnough) return;
    const float variance = means.t2 - means.t * means.t;
    const ColourVectors old = {unpack(colourA), unpack(colourB)};
    ColourVectors fitted =
        static_cast<double>(variance) < smallestVariance ? shiftByMean(old, means) : shiftByLine(old, means, variance);
    clampVector(fitted.a, fitted.a, 0.0f, largestValue);
    clampVector(fitted.b, fitted.b, 0.0f, largestValue);
    colourA = pack(fitted.a);
    colourB = pack(fitted.b);
}

}  // namespace moktexture::moktc
