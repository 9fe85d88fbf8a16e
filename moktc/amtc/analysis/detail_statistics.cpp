// Detail statistics: the difference of a footprint from its low-frequency image.
//
// Problem   In smooth regions the principal axis of a footprint follows the gradient across the blocks. The upscaling of the
//           colours alone reproduces that gradient; the modulation has to add only the detail on top of it.
// Idea      Estimate the upscaled image by the bilinear interpolation of the mean colours of the 3 by 3 blocks around, subtract
//           it from the pixels, and find the axes of the differences. The representatives are then shifted to the mean of the
//           block, so that their extent is a range of colours again.
// Method    1. subtract the interpolated means from every pixel of the footprint
//           2. sum the differences, weighted by the smooth kernel: of all pixels, and of those with an alpha above 0
//           3. axes of both clouds; extent of the differences inside the outer ring of the footprint
//           4. shift mean and extent by the block's mean colour
//
// Interpolation along one axis, for a block side of 4 (means of the blocks before, here and after: P, C, N):
//
//     row of the footprint   0     1     2     3     4     5     6     7     8
//     value                  P   3P+C  2P+2C P+3C    C   3C+N  2C+2N C+3N    N      (divided by 4)
//
// Cost      Linear in the pixels of the footprint, once per block, after the means of all blocks are known. Nothing is allocated.

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/analysis/representative.h"

namespace moktexture::amtc {

namespace {

/// The difference of each pixel from the interpolated means, row by row.
using DetailImage = std::array<ColourVector, maxFootprintPixels>;

/// The position of a row or column of the footprint between the centres of neighbouring blocks: after the centre of block 0 or 1
/// by a fraction of a block. The centre of block 1 is at fraction 1 after block 0.
struct GridPosition {
    std::size_t block;
    float fraction;
};

constexpr GridPosition gridPositionOf(std::size_t offset, std::size_t blockSide) {
    const std::size_t block = offset > blockSide ? 1 : 0;
    return {block, static_cast<float>(offset - block * blockSide) / static_cast<float>(blockSide)};
}

ColourVector meanVector(const std::array<std::uint8_t, channelCount>& colour) {
    return {static_cast<float>(colour[0]), static_cast<float>(colour[1]), static_cast<float>(colour[2]),
            static_cast<float>(colour[3])};
}

/// The means of the three block columns, interpolated at one row of the footprint.
std::array<ColourVector, 3> meansAtRow(const NeighbourMeans& means, std::size_t row, std::size_t blockHeight) {
    const GridPosition position = gridPositionOf(row, blockHeight);
    std::array<ColourVector, 3> interpolated;
    for (std::size_t column = 0; column < 3; ++column)
        interpolated[column] = pointBetween(meanVector(means[3 * position.block + column]),
                                            meanVector(means[3 * (position.block + 1) + column]), position.fraction);
    return interpolated;
}

void subtractMeans(const Footprint& footprint, const AmtcLevelSettings& settings, const NeighbourMeans& neighbourMeans,
                   DetailImage& detail) {
    std::size_t pixel = 0;
    for (std::size_t row = 0; row < settings.footprintHeight; ++row) {
        const std::array<ColourVector, 3> means = meansAtRow(neighbourMeans, row, settings.blockHeight);
        for (std::size_t column = 0; column < settings.footprintWidth; ++column, ++pixel) {
            const GridPosition position = gridPositionOf(column, settings.blockWidth);
            const ColourVector mean = pointBetween(means[position.block], means[position.block + 1], position.fraction);
            const ColourVector colour = toVector(footprint[pixel]);
            for (std::size_t channel = 0; channel < channelCount; ++channel)
                detail[pixel][channel] = colour[channel] - mean[channel];
        }
    }
}

bool hasAlpha(std::uint32_t pixel) {
    return channelOf(pixel, alphaChannel) != 0;
}

/// Calls `visit` with the index of each pixel that is not on the footprint's outer ring.
template <typename Visitor>
void forEachInnerPixel(const AmtcLevelSettings& settings, Visitor visit) {
    for (std::size_t row = 1; row + 1 < settings.footprintHeight; ++row)
        for (std::size_t column = 1; column + 1 < settings.footprintWidth; ++column)
            visit(row * settings.footprintWidth + column);
}

ColourCloud gatherAll(const DetailImage& detail, std::size_t pixels, const FootprintKernel& smoothKernel) {
    ColourCloud cloud;
    for (std::size_t i = 0; i < pixels; ++i)
        cloud.add(detail[i], smoothKernel[i]);
    return cloud;
}

ColourCloud gatherOpaque(const Footprint& footprint, const DetailImage& detail, std::size_t pixels,
                         const FootprintKernel& smoothKernel) {
    ColourCloud cloud;
    for (std::size_t i = 0; i < pixels; ++i)
        if (hasAlpha(footprint[i])) cloud.add(detail[i], smoothKernel[i]);
    return cloud;
}

/// Kept (transparent-detail-flat-with-extent): a footprint whose inner pixels are all transparent counts as flat, without detail,
/// while its extent still includes the differences of these pixels. `axesOfSmoothModes` compares this extent with that of the
/// whole footprint; an extent of 0 would give hidden pixels other start candidates.
ColourCloud noDetail() {
    ColourCloud cloud;
    cloud.bounds.include({});
    return cloud;
}

/// Shifts the mean and the extent of a representative from differences to colours around the block's mean. The minimum and the
/// maximum colour remain differences.
void shiftToColours(const ColourVector& centreMean, const ColourSum& meanDetail, Rep& rep) {
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        rep.meanColour[channel] =
            static_cast<std::uint8_t>(roundToByte(centreMean[channel] + static_cast<float>(meanDetail[channel])));
    for (std::size_t axis = 0; axis < channelCount; ++axis) {
        const float shift = dotProduct(centreMean, rep.axes[axis]);
        rep.projMin[axis] += shift;
        rep.projMax[axis] += shift;
    }
}

}  // namespace

void AnalyseDetail(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                   const NeighbourMeans& neighbourMeans, BlockRecord& block) {
    const std::size_t pixels = settings.footprintPixels();
    DetailImage detail;
    subtractMeans(footprint, settings, neighbourMeans, detail);
    std::size_t innerCount = 0, transparentCount = 0;
    forEachInnerPixel(settings, [&](std::size_t i) {
        ++innerCount;
        transparentCount += hasAlpha(footprint[i]) ? 0 : 1;
    });

    Rep &all = block.reps[detailRep], &opaque = block.reps[opaqueDetailRep];
    const ColourCloud cloud = transparentCount == innerCount ? noDetail() : gatherAll(detail, pixels, kernels.smooth);
    MakeRep(cloud, false, all);
    opaque = all;
    ColourSum opaqueMean = cloud.sum;
    if (transparentCount != 0 && transparentCount != innerCount) {
        ColourCloud opaqueCloud = gatherOpaque(footprint, detail, pixels, kernels.smooth);
        if (opaqueCloud.weight > 0) {
            opaqueCloud.divideByWeight();
            opaqueMean = opaqueCloud.sum;
            MakeRep(opaqueCloud, false, opaque);
        }
    }

    forEachInnerPixel(settings, [&](std::size_t i) {
        includeProjection(detail[i], all);
        if (hasAlpha(footprint[i])) includeProjection(detail[i], opaque);
    });
    const ColourVector centreMean = meanVector(neighbourMeans[centreOfNeighbourhood]);
    shiftToColours(centreMean, cloud.sum, all);
    shiftToColours(centreMean, opaqueMean, opaque);
}

}  // namespace moktexture::amtc
