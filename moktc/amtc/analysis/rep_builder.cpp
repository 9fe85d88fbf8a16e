#include "moktc/amtc/analysis/rep_builder.h"

#include "moktc/amtc/analysis/eigen_symmetric.h"

namespace moktexture::amtc {

namespace {

constexpr SquareMatrix identityAxes = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

SquareMatrix covarianceOf(const MomentMatrix& moments, const ColourSum& mean) {
    SquareMatrix covariance{};
    std::size_t entry = 0;
    for (std::size_t i = 0; i < channelCount; ++i) {
        for (std::size_t j = i; j < channelCount; ++j) {
            covariance[i][j] = static_cast<float>(moments[entry++] - mean[i] * mean[j]);
            covariance[j][i] = covariance[i][j];
        }
    }
    return covariance;
}

}  // namespace

void ColourCloud::divideByWeight() {
    for (double& channel : sum)
        channel /= weight;
    for (double& moment : moments)
        moment /= weight;
}

void MakeRep(const MomentMatrix& moments, const ColourSum& mean, const ColourBounds& bounds, bool setMeanBytes, Rep& rep) {
    if (bounds.isFlat()) {
        rep.axes = identityAxes;
        rep.projMin = rep.projMax = bounds.least;
    } else {
        ColourVector eigenvalues;
        EigenSymmetric(covarianceOf(moments, mean), channelCount, eigenvalues, rep.axes);
        const ColourBounds empty;
        rep.projMin = empty.least;
        rep.projMax = empty.greatest;
    }
    rep.isFlat = bounds.isFlat() ? 1 : 0;
    rep.minColour = bounds.least;
    rep.maxColour = bounds.greatest;
    if (setMeanBytes)
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            rep.meanColour[channel] = static_cast<std::uint8_t>(roundToByte(static_cast<float>(mean[channel])));
}

}  // namespace moktexture::amtc
