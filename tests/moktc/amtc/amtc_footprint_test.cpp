#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/analysis/representative.h"
#include "support/test_images.h"

namespace {

using namespace moktexture::amtc;
using Bytes = std::array<std::uint8_t, channelCount>;
/// The colour of the pixel at a row and a column of a footprint.
using Painter = std::function<std::uint32_t(std::size_t, std::size_t)>;

constexpr std::uint32_t rgba(std::uint32_t r, std::uint32_t g, std::uint32_t b, std::uint32_t a) {
    return r | g << 8 | b << 16 | a << 24;
}

Painter columns(std::size_t at, std::uint32_t left, std::uint32_t right) {
    return [=](auto, auto x) { return x < at ? left : right; };
}
Painter below(std::size_t at, std::uint32_t above, Painter painter) {
    return [=](auto y, auto x) { return y < at ? above : painter(y, x); };
}

struct Format {
    std::uint32_t bitsPerPixel, secondGeneration;
    AmtcLevelSettings settings = makeLevelSettings(64, 64, {Rate(bitsPerPixel), Generation(secondGeneration)});
    FootprintKernels kernels = makeFootprintKernels(settings);

    Footprint paint(const Painter& painter) const {
        Footprint footprint{};
        for (std::size_t i = 0; i < settings.footprintPixels(); ++i)
            footprint[i] = painter(i / settings.footprintWidth, i % settings.footprintWidth);
        return footprint;
    }
    Segments segment(const Painter& painter) const {
        Segments segments{};
        segments.count = SegmentFootprint(paint(painter), settings, segments.labels, segments.order);
        return segments;
    }
    /// All five representatives of a footprint.
    BlockRecord analyse(const Painter& painter, const NeighbourMeans& means = {}) const {
        const Footprint footprint = paint(painter);
        BlockRecord block{};
        AnalyseFootprint(footprint, settings, kernels, block);
        AnalyseDetail(footprint, settings, kernels, means, block);
        return block;
    }
};

const Format at4Bits = {4, 0};

/// Expects bounds of one colour and no axes of its own, with the given mean and extent.
void expectFlat(const Rep& rep, const ColourVector& colour, const Bytes& mean, const ColourVector& projMin,
                const ColourVector& projMax) {
    EXPECT_EQ(rep.isFlat, 1u);
    EXPECT_EQ(rep.axes, identityMatrix);
    EXPECT_EQ(rep.meanColour, mean);
    EXPECT_EQ(rep.minColour, colour);
    EXPECT_EQ(rep.maxColour, colour);
    EXPECT_EQ(rep.projMin, projMin);
    EXPECT_EQ(rep.projMax, projMax);
}

/// Expects a first axis along `direction`, in either sense, on which the pixels extend from `from` to `to`.
void expectLine(const Rep& rep, const Bytes& mean, const ColourVector& direction, float from, float to) {
    const float length = std::sqrt(dotProduct(direction, direction)), sign = dotProduct(direction, rep.axes[0]) < 0 ? -1 : 1;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        EXPECT_NEAR(rep.axes[0][channel], sign * direction[channel] / length, 1e-5f) << channel;
    EXPECT_NEAR(sign < 0 ? -rep.projMax[0] : rep.projMin[0], from, 0.01f);
    EXPECT_NEAR(sign < 0 ? -rep.projMin[0] : rep.projMax[0], to, 0.01f);
    EXPECT_EQ(rep.isFlat, 0u);
    EXPECT_EQ(rep.meanColour, mean);
}

TEST(EigenSymmetric, GivesOrthonormalVectorsByDescendingEigenvalue) {
    testimages::Random random(5);
    for (int round = 0; round < 4000; ++round) {
        const std::size_t n = 2 + random.below(3);
        SquareMatrix matrix{}, vectors;
        for (int rank = round % 5; rank > 0; --rank) {  // ranks below n give eigenvalues of 0 and equal ones
            ColourVector v{};
            std::generate_n(v.begin(), n, [&] { return static_cast<float>(random.below(511)) - 255; });
            for (std::size_t i = 0; i < n * n; ++i)
                matrix[i / n][i % n] += v[i / n] * v[i % n] * (rank == 2 ? 1e-6f : 1);
        }
        ColourVector values;
        EigenSymmetric(matrix, n, values, vectors);
        const float tolerance = 2e-6f * (matrix[0][0] + matrix[1][1] + matrix[2][2] + matrix[3][3]);
        for (std::size_t i = 0; i < n * n; ++i) {
            const std::size_t row = i / n, k = i % n;
            ASSERT_NEAR(dotProduct(matrix[row], vectors[k]), values[k] * vectors[k][row], tolerance) << round;
            ASSERT_NEAR(dotProduct(vectors[row], vectors[k]), row == k ? 1 : 0, 2e-6f) << round;
            ASSERT_GE(values[k == 0 ? 0 : k - 1], values[k]);
        }
    }
}

TEST(AmtcFootprintStatistics, DescribeFlatAndTwoColouredFootprints) {
    for (const std::uint32_t generation : {0, 1}) {
        for (const Bytes c : {Bytes{200, 7, 90, 255}, Bytes{200, 7, 90, 0}, Bytes{}}) {
            const std::uint32_t pixel = rgba(c[0], c[1], c[2], c[3]);
            const BlockRecord block = Format{4, generation}.analyse(columns(0, 0, pixel));
            for (const RepIndex rep : {wholeRep, opaqueRep, centreRep})
                expectFlat(block.reps[rep], toVector(pixel), c, toVector(pixel), toVector(pixel));
        }
    }
    // The right columns weigh 247 of 367 in the whole; the mean of the centre is not weighted.
    const BlockRecord halves = at4Bits.analyse(columns(4, rgba(0, 0, 0, 255), rgba(200, 100, 40, 255)));
    for (const RepIndex rep : {wholeRep, opaqueRep})
        expectLine(halves.reps[rep], {135, 67, 27, 255}, {200, 100, 40, 0}, 0, 227.156f);
    expectLine(halves.reps[centreRep], {100, 50, 20, 255}, {200, 100, 40, 0}, 0, 227.156f);
}

TEST(AmtcFootprintStatistics, CountTransparencyByRateAndGeneration) {
    const std::uint32_t ground = rgba(90, 90, 90, 200), hidden = rgba(50, 60, 70, 0), nothing = 0;
    // clang-format off
    const std::tuple<Format, std::uint32_t, std::uint32_t, ColourVector> cases[] = {
        // Format     pixel    transparent  minimum of the opaque colours
        {Format{4, 0}, hidden,  1, {50, 60, 70, 200}},  // with the alpha of the others
        {Format{4, 0}, nothing, 1, { 0,  0,  0, 200}},
        {Format{4, 1}, hidden,  0, {50, 60, 70,   0}},
        {Format{4, 1}, nothing, 1, {90, 90, 90, 200}},
        {Format{2, 0}, hidden,  0, {50, 60, 70,   0}},
        {Format{2, 1}, nothing, 0, { 0,  0,  0,   0}}};
    // clang-format on
    for (const auto& [format, pixel, isTransparent, opaqueLeast] : cases) {
        const std::size_t left = format.settings.blockWidth / 2u;
        for (const std::size_t row : {1, 2}) {  // outside and inside the block
            const BlockRecord block =
                format.analyse([&, pixel = pixel](auto y, auto x) { return y == row && x == left ? pixel : ground; });
            EXPECT_EQ(block.transparentInCentre, row == 2 ? isTransparent : 0);
            EXPECT_EQ(block.reps[opaqueRep].minColour, opaqueLeast);
        }
    }
}

TEST(AmtcFootprintStatistics, IncludeOrExcludeTransparentPixelsByGeneration) {
    // The first generation hides columns 0 to 4, of weight 247, behind an alpha of (96 * 100 + 24 * 201) / 120.
    const BlockRecord first =
        at4Bits.analyse([](auto, auto x) { return x < 5 ? rgba(1, 2, 3, 0) : rgba(10, 20, 30, x < 7 ? 100 : 201); });
    EXPECT_EQ(first.reps[opaqueRep].meanColour, (Bytes{4, 8, 12, 120}));
    // The second excludes rows 0 to 3.
    const BlockRecord second = Format{4, 1}.analyse(below(4, 0, columns(6, rgba(10, 20, 30, 255), rgba(10, 220, 30, 255))));
    expectLine(second.reps[opaqueRep], {10, 51, 30, 255}, {0, 1, 0, 0}, 20, 220);
    EXPECT_EQ(second.reps[wholeRep].minColour, ColourVector{});
    // Only hidden colours: a copy of the whole footprint, but with an empty extent.
    const BlockRecord hidden = at4Bits.analyse(columns(4, 10, 200));
    expectLine(hidden.reps[wholeRep], {138, 0, 0, 0}, {1, 0, 0, 0}, 10, 200);
    EXPECT_EQ(hidden.reps[opaqueRep].axes, hidden.reps[wholeRep].axes);
    EXPECT_EQ(hidden.reps[opaqueRep].projMin[0], 3.4028235e38f);
    EXPECT_EQ(hidden.reps[opaqueRep].projMax[3], -3.4028235e38f);
}

TEST(AmtcFootprintStatistics, OfOneOpaqueColourKeepAnUndividedMeanAndMakeTheWholeFlat) {
    const ColourVector colour = {200, 100, 40, 255};
    const Bytes partialMean = {196, 98, 39, 249};  // 359 of 367
    const BlockRecord outside = Format{4, 1}.analyse(columns(1, 0, roundToRGBA(colour)));
    expectFlat(outside.reps[opaqueRep], colour, partialMean, colour, colour);
    expectFlat(outside.reps[wholeRep], colour, partialMean, {}, colour);
    const BlockRecord inside = Format{4, 1}.analyse(columns(3, 0, roundToRGBA(colour)));
    expectFlat(inside.reps[opaqueRep], colour, {169, 85, 34, 216}, colour, colour);
    expectLine(inside.reps[wholeRep], {169, 85, 34, 216}, colour, 0, 341.504f);
    // The first generation excludes nothing: the whole has the bounds of the opaque pixels and the mean of all.
    const BlockRecord first = at4Bits.analyse(columns(1, rgba(200, 100, 40, 0), roundToRGBA(colour)));
    expectFlat(first.reps[opaqueRep], colour, {200, 100, 40, 255}, colour, colour);
    expectFlat(first.reps[wholeRep], colour, {200, 100, 40, 249}, {200, 100, 40, 0}, colour);
}

TEST(AmtcDetailStatistics, DescribeColoursAroundTheBlocksMean) {
    constexpr Bytes mean = {100, 110, 120, 130};
    constexpr std::uint32_t ground = rgba(100, 110, 120, 130), ring = rgba(90, 110, 120, 130);
    NeighbourMeans means;
    means.fill(mean);
    // The outer ring is part of bounds and means, and not of the extent: 100 + (20 * 359 * 247 / 367 - 10 * 8) / 367.
    const BlockRecord opaque = at4Bits.analyse(below(1, ring, columns(4, ground, ground + 20)), means);
    for (const RepIndex rep : {detailRep, opaqueDetailRep}) {
        expectLine(opaque.reps[rep], {113, 110, 120, 130}, {1, 0, 0, 0}, 100, 120);
        EXPECT_EQ(opaque.reps[rep].minColour, (ColourVector{-10, 0, 0, 0}));
        EXPECT_EQ(opaque.reps[rep].maxColour, (ColourVector{20, 0, 0, 0}));
    }
    // Of the opaque weight 247 / 367, the right columns hold 120: 100 + 40 * 120 / 247.
    const BlockRecord partial = at4Bits.analyse(below(4, 0, columns(5, ground, ground + 40)), means);
    expectLine(partial.reps[opaqueDetailRep], {113, 110, 120, 130}, {1, 0, 0, 0}, 100, 140);
    EXPECT_EQ(partial.reps[detailRep].meanColour, (Bytes{76, 74, 81, 87})) << "rows 0 to 3 differ by all of the mean";
    EXPECT_EQ(partial.reps[detailRep].minColour, (ColourVector{-100, -110, -120, -130}));
    // Inner pixels that are all transparent: no detail, but an extent.
    const BlockRecord hidden = Format{2, 0}.analyse(below(1, ring, columns(8, 20, 220)), means);
    expectFlat(hidden.reps[detailRep], {}, mean, {20, 0, 0, 0}, {220, 110, 120, 130});
    expectFlat(hidden.reps[opaqueDetailRep], {}, mean, toVector(ground), toVector(ground));
}

/// Four different colours in tiles of 2 by 2, so that no two adjacent pixels are alike.
std::uint32_t tile(std::uint32_t y, std::uint32_t x) {
    constexpr std::uint32_t colours[] = {0xff000000, 0xff0000ff, 0xff00ff00, 0xffff0000};
    return colours[2 * (y % 2) + x % 2];
}

std::uint32_t step(bool isBright) {
    return isBright ? 0xffffffff : 0xff000000;
}

TEST(AmtcSegmentation, CountsConnectedSmoothRegions) {
    const struct {
        const char* what;
        Painter painter;
        std::uint32_t count;  ///< at 4 bits per pixel: 9 by 9
    } cases[] = {
        {"no two adjacent pixels alike", tile, 81},
        {"a checkerboard, connected diagonally", [](auto y, auto x) { return step((x + y) % 2 == 0); }, 2},
        {"first column, which bends like its neighbour", [](auto y, auto x) { return step(x < 1 && y > 0); }, 2},
        {"last column", [](auto, auto x) { return step(x < 8); }, 2},
        {"first row", [](auto y, auto x) { return step(y < 1 && x > 0); }, 2},
        {"last row", [](auto y, auto) { return step(y < 8); }, 2},
        {"a line through the middle", [](auto, auto x) { return step(x != 4); }, 3},
        {"a steep ramp along columns", [](auto y, auto) { return 25 * y << 24; }, 1},
        {"squared distance of 16 from the seed", [](auto y, auto x) { return (x + y) % 2 * 4; }, 1},
        {"squared distance of 17 from the seed", [](auto y, auto x) { return (x + y) % 2 * 0x0104; }, 2},
        {"a bend of 4", [](auto, auto x) { return 100 + 10 * x + (x > 4 ? 4 * (x - 4) : 0); }, 1},
        {"a bend of 5", [](auto, auto x) { return 100 + 10 * x + (x > 4 ? 5 * (x - 4) : 0); }, 2},
        // The first pixel of the next row is no neighbour of the last one.
        {"ends of rows", [](auto y, auto x) { return (y == 2 && x == 8) || (y == 3 && x == 0) ? 0x80808080u : tile(y, x); }, 81},
    };
    for (const auto& c : cases)
        EXPECT_EQ(at4Bits.segment(c.painter).count, c.count) << c.what;
}

}  // namespace
