#pragma once

#include <algorithm>

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// The upper triangle of a symmetric 4 by 4 matrix: 00, 01, 02, 03, 11, 12, 13, 22, 23, 33. In double: sums in float would lose
/// the small eigenvalues.
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

/// Least and greatest value of each channel. Empty to begin with: the least is above the greatest.
struct ColourBounds {
    ColourVector least{greatestFloat, greatestFloat, greatestFloat, greatestFloat};
    ColourVector greatest{-greatestFloat, -greatestFloat, -greatestFloat, -greatestFloat};

    void include(const ColourVector& colour) {
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            least[channel] = std::min(least[channel], colour[channel]);
            greatest[channel] = std::max(greatest[channel], colour[channel]);
        }
    }
    bool isFlat() const { return least == greatest; }
};

using ColourSum = std::array<double, channelCount>;

/// Weighted pixels, summed up in the order in which they are added.
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
    /// Makes means of the sum and the moments by dividing them by the weight, which is not 0.
    void divideByWeight();
};

/// Sets axes, bounds and flatness, and the mean bytes if `setMeanBytes`, from moments and mean. The extent along the axes is left
/// empty for `includeProjection` to widen, and is the colour itself if the bounds are flat.
void MakeRep(const MomentMatrix& moments, const ColourSum& mean, const ColourBounds& bounds, bool setMeanBytes, Rep& rep);

/// Widens the extent along each axis to take in the colour.
inline void includeProjection(const ColourVector& colour, Rep& rep) {
    for (std::size_t axis = 0; axis < channelCount; ++axis) {
        const float projection = dotProduct(colour, rep.axes[axis]);
        rep.projMin[axis] = std::min(rep.projMin[axis], projection);
        rep.projMax[axis] = std::max(rep.projMax[axis], projection);
    }
}

}  // namespace moktexture::amtc
