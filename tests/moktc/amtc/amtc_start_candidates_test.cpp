#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/starts/start_candidates.h"
#include "moktc/moktc.h"
#include "support/test_images.h"

using namespace moktexture::amtc;

namespace {

constexpr ColourVector diagonal = {0.5f, 0.5f, 0.5f, 0.5f};
const AmtcLevelSettings at4Bits = makeLevelSettings(64, 64, {Rate::fourBpp, Generation::second});  ///< second generation

/// A footprint with one colour in its left columns and another in the rest.
Footprint halves(const AmtcLevelSettings& settings, std::uint32_t left, std::uint32_t right) {
    Footprint footprint{};
    for (std::size_t i = 0; i < settings.footprintPixels(); ++i)
        footprint[i] = i % settings.footprintWidth < 4 ? left : right;
    return footprint;
}

ColourPair endpoints(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                     const ColourVector& axis = diagonal) {
    return FindAxisEndpoints(settings, isPunchThrough, footprint, makeFootprintKernels(settings).sharp, axis);
}

SortedPositions sortedFrom(std::vector<double> positions) {
    std::sort(positions.begin(), positions.end());
    SortedPositions sorted{};
    for (const double t : positions) {
        const PositionSums& sums = sorted.total();
        sorted.before[sorted.count + 1] = {sums.weight + 1, sums.weightedPosition + t, sums.weightedSquare + t * t};
        sorted.positions[sorted.count++] = t;
    }
    return sorted;
}

double errorOfLevels(const SortedPositions& sorted, double low, double high) {
    double error = 0;
    for (std::size_t i = 0; i < sorted.count; ++i) {
        double nearest = 1e9;
        for (const double fraction : {0.0, 0.375, 0.625, 1.0})
            nearest = std::min(nearest, std::abs(sorted.positions[i] - low - (high - low) * fraction));
        error += nearest * nearest;
    }
    return error;
}

TEST(AmtcFourLevelFit, GivesTheErrorOfItsEndsWhateverTheCacheHolds) {
    testimages::Random random(3);
    for (int round = 0; round < 500; ++round) {
        std::vector<double> positions(2 + random.below(152), 511);
        std::generate(positions.begin() + 1, positions.end(), [&] { return random.below(2u << random.below(9)); });
        const SortedPositions sorted = sortedFrom(positions);
        RegressionCache filled;
        for (int start = 0; start < 3; ++start) {  // a cache filled by other starts changes no fit
            const double low = random.below(512), high = random.below(512);
            RegressionCache empty;
            const AxisFit fit = FitFourLevels(sorted, low, high, empty);
            ASSERT_EQ(FitFourLevels(sorted, low, high, filled).error, fit.error);
            ASSERT_NEAR(fit.error, errorOfLevels(sorted, fit.low, fit.high), 1e-6 * (1 + fit.error));
        }
    }
}

TEST(AmtcFourLevelFit, EndsThatNoLongerMoveAreTheResultEvenIfEarlierOnesWereBetter) {
    RegressionCache cache;
    const SortedPositions sorted = sortedFrom({0, 3, 6, 8, 10});
    const AxisFit fit = FitFourLevels(sorted, 0, 10, cache);
    EXPECT_NEAR(fit.low, 0.15, 1e-9);
    EXPECT_GT(fit.error, errorOfLevels(sorted, 0, 10));
}

TEST(AmtcAxisEndpoints, PunchThroughLeavesOutZeroPixelsOfTheSecondGenerationAt4Bits) {
    for (std::uint32_t i = 0; i < 8; ++i) {
        const AmtcLevelSettings settings = makeLevelSettings(64, 64, {Rate(2 + i % 4 / 2 * 2), Generation(i % 2)});
        Footprint footprint = halves(settings, 0xff101010, 0xff848484);
        std::fill_n(footprint.begin(), 20, 0u);
        EXPECT_EQ(endpoints(settings, i >= 4, footprint) == (ColourPair{0xff101010, 0xff848484}), i == 7) << i;
    }
    EXPECT_EQ(endpoints(at4Bits, true, Footprint{}), (ColourPair{0, 0x11000000}));
    // The pair is for the blends of the other modes: 200 lies at 3/8.
    EXPECT_EQ(endpoints(at4Bits, true, halves(at4Bits, 0xff00c8c8, 0xff00c8c8)), (ColourPair{0xff00c6c6, 0xff00cece}));
}

TEST(AmtcClusterStart, PairsTheLargestClustersFirst) {
    constexpr std::uint32_t black = 0xff000000, white = 0xffffffff, red = 0xff0000ff, green = 0xff00ff00, blue = 0xffff0000;
    using Pairs = std::vector<ColourPair>;
    // clang-format off
    const struct { std::vector<std::pair<std::uint32_t, std::size_t>> rows; Pairs pairs; } cases[] = {
        // Colours of rows on black ground; rows 1 to 7 of the disc hold 3, 5, 7, 7, 7, 5 and 3 pixels, rows 0 and 8 none
        {{}, {{black, black}, {black, black}}},
        {{{white, 0}, {white, 4}, {red, 8}}, {{black, white}, {white, black}}},
        {{{white, 3}, {white, 4}, {red, 2}}, {{black, white}, {black, red}, {white, red}, {white, black}}},
        {{{white, 3}, {white, 4}, {red, 2}, {green, 1}}, {{black, white}, {black, red}, {black, green}, {white, red}}},
        // Of equally far pixels the last one becomes a cluster first, so that blue comes before green.
        {{{white, 3}, {white, 4}, {red, 2}, {green, 1}, {blue, 7}}, {{white, black}, {white, red}, {white, blue}, {black, red}}},
        // A and B differ in depth, also after an exchange; B's alpha is even like A's.
        {{{0x80404040, 3}}, {{black, 0x88424242}, {0x884a4242, black}}},
        {{{0xfff7f7f7, 3}}, {{black, 0xfff7f7f7}, {0xfffff7f7, black}}},
        // Pixels are assigned by the stored A, whose blue is 0 here and not 8; their distance is that from the mean.
        {{{0xff040404, 2}}, {{black, 0xff080808}, {black, 0xff080808}, {0xff000808, 0xff080808}, {0xff000808, black}}}};
    // clang-format on
    for (const auto& [rows, expected] : cases) {
        Footprint footprint = halves(at4Bits, black, black);
        for (const auto& [colour, row] : rows)
            std::fill_n(footprint.begin() + static_cast<std::ptrdiff_t>(9 * row), 9, colour);
        RepStart start{};
        ClusterStart(diagonal, footprint, start);
        Pairs pairs;
        for (std::size_t i = 0; i < start.count; ++i)
            pairs.push_back(start.candidates[i].colours());
        EXPECT_EQ(pairs, expected);
    }
}

/// Two halves of 32 by 32 pixels: above 50 dB, and 45 if an exchanged pair kept colours of the other depth.
TEST(AmtcClusterStart, EncodesTwoFlatHalvesWithoutAnErrorFromExchangedPairs) {
    constexpr std::uint32_t side = 32, generation = 1;
    for (const auto& [left, right] : {ColourPair{0xff350650, 0xff46fc8a}, {0xff7c4e84, 0xffc74d0e}}) {
        std::array<std::uint32_t, side * side> pixels, decoded;
        std::array<std::uint64_t, side * side / 16> blocks;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = i % side < side / 2 ? left : right;
        moktexture::CompressMOKTC(pixels.data(), blocks.data(), &side, &side, true, false, generation, 2);
        moktexture::DecompressMOKTC(blocks.data(), decoded.data(), &side, &side, false, &generation);
        double error = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            error += squaredDistance(pixels[i], decoded[i]);
        EXPECT_LT(error / (4 * side * side), 0.65);
    }
}

TEST(AmtcStartCandidates, EachModeStartsFromItsRepresentative) {
    // clang-format off
    const std::tuple<std::uint32_t, std::uint32_t, float, float, std::vector<RepIndex>> cases[] = {
        // Bits, generation, range of the whole and of the detail; by mode: the representative with its axes
        {4, 0, 9, 5, {detailRep, opaqueRep}},
        {4, 1, 5, 5, {detailRep, opaqueRep, centreRep, wholeRep}},
        {4, 1, 4, 5, {wholeRep, opaqueRep, centreRep, wholeRep}},
        {2, 0, 4, 5, {wholeRep, wholeRep, wholeRep, wholeRep}},
        {2, 1, 9, 5, {detailRep, detailRep, detailRep, detailRep, centreRep, centreRep, centreRep, centreRep}}};
    // clang-format on
    for (const auto& [bitsPerPixel, generation, wholeRange, detailRange, axes] : cases) {
        const AmtcLevelSettings settings = makeLevelSettings(64, 64, {Rate(bitsPerPixel), Generation(generation)});
        BlockRecord block{};
        for (std::size_t i = 0; i < repCount; ++i) {
            block.reps[i].axes.fill(diagonal);
            block.reps[i].projMax = {i == wholeRep ? wholeRange : detailRange, 1, 1, 1};
        }
        block.reps[opaqueRep].axes.fill({0, 0, 0, 1});  // its mode uses the axes of the detail
        SetUpStandardRepStarts(block, settings, halves(settings, 0xff101010, 0xff848484), makeFootprintKernels(settings).sharp);
        for (std::uint32_t i = 0; i < axes.size(); ++i) {
            const RepStart& start = block.repStarts[i];
            EXPECT_EQ(start.mode, i + (bitsPerPixel == 4 ? region_mode::standard : region_mode::direct));
            EXPECT_EQ(start.axes, &block.reps[axes[i]]) << "mode " << start.mode;
            // The larger cluster, on the right, is A.
            const bool ofClusters = start.mode == region_mode::cornerPalette;
            EXPECT_EQ(start.count, ofClusters ? 2 : 4);
            EXPECT_EQ(start.isFlatStart, 0u);
            EXPECT_EQ(start.candidates[0].colours(),
                      ofClusters ? (ColourPair{0xff8c8484, 0xff101010}) : (ColourPair{0xff101010, 0xff848484}));
        }
        // 1/4 and 3/4 of the way from 16 to 132 are 45 and 103.
        const auto& candidates = block.repStarts[0].candidates;
        EXPECT_EQ(candidates[1].colours(), (ColourPair{0xff312929, 0xff6b6b6b}));
        EXPECT_EQ(candidates[2].colours(), (ColourPair{0xff312929, 0xff848484}));
        EXPECT_EQ(candidates[3].colours(), (ColourPair{0xff101010, 0xff6b6b6b}));
        EXPECT_EQ(candidates[3].error, unknownError);
    }
}

}  // namespace
