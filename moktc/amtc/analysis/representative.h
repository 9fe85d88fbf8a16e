#pragma once

#include <algorithm>

#include "moktc/amtc/records/level_records.h"

/// @file
/// How a `Rep` is made from a set of weighted pixels: sums over the pixels, then the principal axes, then the extent of the
/// pixels along these axes.

namespace moktexture::amtc {

/// The upper triangle of a symmetric 4 by 4 matrix: 00, 01, 02, 03, 11, 12, 13, 22, 23, 33. In double: sums in float would lose
/// the small eigenvalues, on which the later axes depend.
using MomentMatrix = std::array<double, 10>;

/// Adds `weight` times the outer product of `colour` with itself.
inline void AddMoment(MomentMatrix& matrix, float weight, const ColourVector& colour) {
    std::size_t entry = 0;
    for (std::size_t i = 0; i < channelCount; ++i) {
        for (std::size_t j = i; j < channelCount; ++j) {
            const float moment = weight * (colour[i] * colour[j]);
            matrix[entry++] += static_cast<double>(moment);
        }
    }
}

inline constexpr float greatestFloat = 3.4028235e38f;

/// The minimum and maximum of each channel. Initially empty: the minimum is above the maximum.
struct ColourBounds {
    ColourVector minimum{greatestFloat, greatestFloat, greatestFloat, greatestFloat};
    ColourVector maximum{-greatestFloat, -greatestFloat, -greatestFloat, -greatestFloat};

    void include(const ColourVector& colour) {
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            minimum[channel] = std::min(minimum[channel], colour[channel]);
            maximum[channel] = std::max(maximum[channel], colour[channel]);
        }
    }
    bool isFlat() const { return minimum == maximum; }
};

using ColourSum = std::array<double, channelCount>;

/// Sums over weighted pixels, accumulated in the order in which the pixels are added.
struct ColourCloud {
    ColourBounds bounds;
    ColourSum sum{};
    MomentMatrix moments{};
    double weight = 0;

    void add(const ColourVector& colour, float pixelWeight) {
        bounds.include(colour);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            sum[channel] += static_cast<double>(colour[channel] * pixelWeight);
        AddMoment(moments, pixelWeight, colour);
        weight += static_cast<double>(pixelWeight);
    }
    /// Divides the sum and the moments by the weight, which must not be 0, so that they become means.
    void divideByWeight();
};

/// Sets axes, bounds and flatness of `rep`, and its mean colour if `setMeanBytes`. The sum and the moments of the cloud are taken
/// as means. The extent along the axes is empty afterwards, for `includeProjection` to widen, or the colour itself if the bounds
/// are flat.
void MakeRep(const ColourCloud& cloud, bool setMeanBytes, Rep& rep);

/// Widens the extent along each axis to include the colour.
inline void includeProjection(const ColourVector& colour, Rep& rep) {
    for (std::size_t axis = 0; axis < channelCount; ++axis) {
        const float projection = dotProduct(colour, rep.axes[axis]);
        rep.projMin[axis] = std::min(rep.projMin[axis], projection);
        rep.projMax[axis] = std::max(rep.projMax[axis], projection);
    }
}

/// Row by row.
using SquareMatrix = std::array<ColourVector, channelCount>;

inline constexpr SquareMatrix identityMatrix = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

/// The eigenvalues in descending order and the unit eigenvectors, one a row in the same order, of the symmetric matrix in the
/// first `n` (1 to 4) rows and columns. The other entries of the results are unspecified.
void EigenSymmetric(const SquareMatrix& matrix, std::size_t n, ColourVector& eigenvalues, SquareMatrix& eigenvectors);

}  // namespace moktexture::amtc
