#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <tuple>
#include <vector>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/starts/axis_endpoints.h"
#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/amtc/starts/start_candidates.h"
#include "moktc/moktc.h"
#include "support/test_images.h"

using namespace moktexture::amtc;

namespace {

constexpr ColourVector diagonal = {0.5f, 0.5f, 0.5f, 0.5f};
const AmtcLevelSettings at4Bits = makeLevelSettings(64, 64, {Rate::fourBpp, Generation::second});  ///< second generation

/// A footprint with one colour in its left columns and another in the rest.
Footprint halves(const AmtcLevelSettings& settings, std::uint32_t left, std::uint32_t right, std::size_t leftColumns = 4) {
    Footprint footprint{};
    for (std::size_t i = 0; i < settings.footprintPixels(); ++i)
        footprint[i] = i % settings.footprintWidth < leftColumns ? left : right;
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

TEST(AmtcFourLevelFit, FindsTheEndsOfFourLevels) {
    for (const auto& [low, high] : {std::pair{14.0, 80.0}, {85.0, 12.0}, {10.0, 75.0}}) {
        RegressionCache cache;
        const LevelFit fit = FitFourLevels(sortedFrom({10, 10, 10, 40, 40, 60, 90, 90}), low, high, cache);
        EXPECT_NEAR(fit.low, 10, 1e-9);
        EXPECT_NEAR(fit.high, 90, 1e-9);
        EXPECT_NEAR(fit.error, 0, 1e-9);
    }
    testimages::Random random(3);
    for (int round = 0; round < 500; ++round) {
        std::vector<double> positions(2 + random.below(152), 511);
        std::generate(positions.begin() + 1, positions.end(), [&] { return random.below(2u << random.below(9)); });
        const SortedPositions sorted = sortedFrom(positions);
        RegressionCache filled;
        for (int start = 0; start < 3; ++start) {  // a cache filled by other starts changes no fit
            const double low = random.below(512), high = random.below(512);
            RegressionCache empty;
            const LevelFit fit = FitFourLevels(sorted, low, high, empty);
            ASSERT_EQ(FitFourLevels(sorted, low, high, filled).error, fit.error);
            ASSERT_NEAR(fit.error, errorOfLevels(sorted, fit.low, fit.high), 1e-6 * (1 + fit.error));
        }
    }
}

TEST(AmtcFourLevelFit, EndsThatNoLongerMoveAreTheResultEvenIfEarlierOnesWereBetter) {
    RegressionCache cache;
    const SortedPositions sorted = sortedFrom({0, 3, 6, 8, 10});
    const LevelFit fit = FitFourLevels(sorted, 0, 10, cache);
    EXPECT_NEAR(fit.low, 0.15, 1e-9);
    EXPECT_GT(fit.error, errorOfLevels(sorted, 0, 10));
}

TEST(AmtcAxisEndpoints, TwoFlatHalvesGiveTheirColoursWithTheLargerMagnitudeAsB) {
    for (const auto& [weaker, stronger] :
         {ColourPair{0xff000000, 0xffffffff}, {0xff101884, 0xffff0000}, {0x00ffffff, 0xdd000000}}) {
        for (const std::size_t leftColumns : {2, 4, 7}) {
            for (const Footprint& footprint :
                 {halves(at4Bits, weaker, stronger, leftColumns), halves(at4Bits, stronger, weaker, leftColumns)})
                EXPECT_EQ(endpoints(at4Bits, false, footprint, {0.6f, 0.3f, 0.2f, 0.4f}), (ColourPair{weaker, stronger}));
        }
    }
}

TEST(AmtcAxisEndpoints, PunchThroughLeavesOutZeroPixelsOfTheSecondGenerationAt4Bits) {
    for (std::uint32_t i = 0; i < 8; ++i) {
        const AmtcLevelSettings settings = makeLevelSettings(64, 64, {Rate(2 + i % 4 / 2 * 2), Generation(i % 2)});
        Footprint footprint = halves(settings, 0xff101010, 0xff848484);
        std::fill_n(footprint.begin(), 20, 0u);
        EXPECT_EQ(endpoints(settings, i >= 4, footprint) == (ColourPair{0xff101010, 0xff848484}), i == 7) << i;
    }
    EXPECT_EQ(endpoints(at4Bits, true, Footprint{}), (ColourPair{0, 0x11000000}));
    // The pair is for the levels of the other modes: 200 lies at 3/8.
    EXPECT_EQ(endpoints(at4Bits, true, halves(at4Bits, 0xff00c8c8, 0xff00c8c8)), (ColourPair{0xff00c6c6, 0xff00cece}));
}

TEST(AmtcClusterStart, PairsTheLargestClustersFirst) {
    constexpr std::uint32_t black = 0xff000000, white = 0xffffffff, red = 0xff0000ff, green = 0xff00ff00, blue = 0xffff0000;
    using Pairs = std::vector<ColourPair>;
    const auto startOf = [&](std::initializer_list<std::pair<std::uint32_t, std::size_t>> rows) {
        Footprint footprint = halves(at4Bits, black, black);
        for (const auto& [colour, row] : rows)
            std::fill_n(footprint.begin() + static_cast<std::ptrdiff_t>(9 * row), 9, colour);
        RepStart start{};
        ClusterStart(diagonal, footprint, start);
        Pairs pairs;
        for (std::size_t i = 0; i < start.count; ++i)
            pairs.push_back(start.candidates[i].colours());
        return pairs;
    };
    // Rows 1 to 7 of the disc hold 3, 5, 7, 7, 7, 5 and 3 pixels; rows 0 and 8 none.
    EXPECT_EQ(startOf({}), (Pairs{{black, black}, {black, black}}));
    EXPECT_EQ(startOf({{white, 0}, {white, 4}, {red, 8}}), (Pairs{{black, white}, {white, black}}));
    EXPECT_EQ(startOf({{white, 3}, {white, 4}, {red, 2}}), (Pairs{{black, white}, {black, red}, {white, red}, {white, black}}));
    EXPECT_EQ(startOf({{white, 3}, {white, 4}, {red, 2}, {green, 1}}),
              (Pairs{{black, white}, {black, red}, {black, green}, {white, red}}));
    // Of equally far pixels the last one becomes a cluster first, so that blue comes before green.
    EXPECT_EQ(startOf({{white, 3}, {white, 4}, {red, 2}, {green, 1}, {blue, 7}}),
              (Pairs{{white, black}, {white, red}, {white, blue}, {black, red}}));
    // A and B differ in depth, also after an exchange; B's alpha is even like A's.
    EXPECT_EQ(startOf({{0x80404040, 3}}), (Pairs{{black, 0x88424242}, {0x884a4242, black}}));
    EXPECT_EQ(startOf({{0xfff7f7f7, 3}}), (Pairs{{black, 0xfff7f7f7}, {0xfffff7f7, black}}));
    EXPECT_EQ(startOf({{0xff0c0c0c, 3}}).front(), (ColourPair{black, 0xff101010}));
    // Pixels are assigned by the stored A, whose blue is 0 here and not 8; their distance is that from the mean.
    EXPECT_EQ(startOf({{0xff040404, 2}}),
              (Pairs{{black, 0xff080808}, {black, 0xff080808}, {0xff000808, 0xff080808}, {0xff000808, black}}));
}

TEST(AmtcClusterStart, GivesEveryCandidateAnAThatTheBlockCanHold) {
    testimages::Random random(4);
    for (int round = 0; round < 500; ++round) {
        RepStart start{};
        const std::uint32_t left = random.below(1u << 24), right = random.below(1u << 24),
                            alpha = round % 2 != 0 ? 0xff000000 : 0;
        ClusterStart(diagonal, halves(at4Bits, left | alpha, right | alpha), start);
        ASSERT_GE(start.count, 2);
        for (std::size_t i = 0; i < start.count; ++i) {
            const std::uint32_t a = start.candidates[i].colourA;
            for (std::size_t channel = 0; channel < alphaChannel; ++channel) {
                const std::uint32_t value = channelOf(a, channel), bits = bitsOfA[a >> 24 == 255 ? 1 : 0][channel];
                ASSERT_EQ(QuantiseChannelByte(value, bits, true), value) << std::hex << left << ' ' << right << " pair " << i;
            }
        }
    }
}

/// The peak signal-to-noise ratio, over four channels, of two flat halves of 32 by 32 pixels at 4 bits per pixel of the second
/// generation and quality 2.
double psnrOfHalves(std::uint32_t left, std::uint32_t right) {
    constexpr std::uint32_t side = 32, generation = 1;
    std::array<std::uint32_t, side * side> pixels, decoded;
    std::array<std::uint64_t, side * side / 16> blocks;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = i % side < side / 2 ? left : right;
    moktexture::CompressMOKTC(pixels.data(), blocks.data(), &side, &side, true, false, generation, 2);
    moktexture::DecompressMOKTC(blocks.data(), decoded.data(), &side, &side, false, &generation);
    double error = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        error += squaredDistance(pixels[i], decoded[i]);
    return 10 * std::log10(255.0 * 255.0 * 4 * side * side / error);
}

TEST(AmtcClusterStart, EncodesTwoFlatHalvesWithoutAnErrorFromExchangedPairs) {
    for (const auto& [left, right] : {ColourPair{0xff350650, 0xff46fc8a}, {0xff7c4e84, 0xffc74d0e}})
        EXPECT_GT(psnrOfHalves(left, right), 50);  // 45 if an exchanged pair keeps colours of the other depth
}

/// A record whose representatives differ in axes and ranges, with its starts from two halves.
std::unique_ptr<BlockRecord> startedRecord(const AmtcLevelSettings& settings, float wholeRange, float detailRange,
                                           std::uint32_t isFlat = 0) {
    auto block = std::make_unique<BlockRecord>();
    for (std::size_t i = 0; i < repCount; ++i) {
        block->reps[i].axes.fill(diagonal);
        block->reps[i].projMax = {i == wholeRep ? wholeRange : detailRange, 1, 1, 1};
        block->reps[i].meanColour = {128, 128, 0, 255};
        block->reps[i].isFlat = isFlat;
    }
    block->reps[opaqueRep].axes.fill({0, 0, 0, 1});  // its mode uses the axes of the detail
    SetUpStandardRepStarts(*block, settings, halves(settings, 0xff101010, 0xff848484), makeFootprintKernels(settings).sharp);
    return block;
}

TEST(AmtcStartCandidates, EachModeStartsFromItsRepresentative) {
    // clang-format off
    const std::tuple<std::uint32_t, std::uint32_t, float, float, std::vector<RepIndex>> cases[] = {
        // Bits, generation, range of the whole and of the detail; by mode: the representative with its axes
        {4, 0, 9, 5, {detailRep, opaqueRep}},
        {4, 1, 5, 5, {detailRep, opaqueRep, centreRep, wholeRep}},
        {4, 1, 4, 5, {wholeRep, opaqueRep, centreRep, wholeRep}},
        {2, 0, 4, 5, {wholeRep, wholeRep, wholeRep, wholeRep}},
        {2, 1, 9, 5, {detailRep, detailRep, detailRep, detailRep, centreRep, centreRep, centreRep, centreRep}},
    };
    // clang-format on
    for (const auto& [bitsPerPixel, generation, wholeRange, detailRange, axes] : cases) {
        const auto block =
            startedRecord(makeLevelSettings(64, 64, {Rate(bitsPerPixel), Generation(generation)}), wholeRange, detailRange);
        for (std::uint32_t i = 0; i < axes.size(); ++i) {
            const RepStart& start = block->repStarts[i];
            EXPECT_EQ(start.mode, i + (bitsPerPixel == 4 ? region_mode::standard : region_mode::direct));
            EXPECT_EQ(start.axes, &block->reps[axes[i]]) << "mode " << start.mode;
            // The larger cluster, on the right, is A.
            const bool ofClusters = start.mode == region_mode::cornerPalette;
            EXPECT_EQ(start.count, ofClusters ? 2 : 4);
            EXPECT_EQ(start.isFlatStart, 0u);
            EXPECT_EQ(start.candidates[0].colours(),
                      ofClusters ? (ColourPair{0xff8c8484, 0xff101010}) : (ColourPair{0xff101010, 0xff848484}));
        }
        // 1/4 and 3/4 of the way from 16 to 132 are 45 and 103.
        const auto& candidates = block->repStarts[0].candidates;
        EXPECT_EQ(candidates[1].colours(), (ColourPair{0xff312929, 0xff6b6b6b}));
        EXPECT_EQ(candidates[2].colours(), (ColourPair{0xff312929, 0xff848484}));
        EXPECT_EQ(candidates[3].colours(), (ColourPair{0xff101010, 0xff6b6b6b}));
        EXPECT_EQ(candidates[3].error, unknownError);
    }
}

TEST(AmtcStartCandidates, AFlatRepresentativeGivesTwoCandidatesAroundItsMean) {
    const auto block = startedRecord(at4Bits, 1, 1, 1);
    for (std::size_t i = 0; i < 3; ++i) {
        const RepStart& start = block->repStarts[i];
        EXPECT_EQ(start.count, 2);
        EXPECT_EQ(start.isFlatStart, 1u);
        // The blend at 1/2 of 123 and 132 is best for punch-through, that at 5/8 for the others.
        for (std::size_t k = 0; k < 2; ++k)
            EXPECT_EQ(start.candidates[k].colours(), (ColourPair{0xff007b7b, 0xff008484})) << i;
    }
    EXPECT_EQ(block->repStarts[3].isFlatStart, 0u);
}

TEST(AmtcStartCandidates, TheFirstModeDependsOnTheFormatAndOnTransparency) {
    EXPECT_EQ(startingRegionMode(makeLevelSettings(64, 64, {Rate::fourBpp, Generation::first}), true), region_mode::standard);
    EXPECT_EQ(startingRegionMode(at4Bits, false), region_mode::standard);
    EXPECT_EQ(startingRegionMode(at4Bits, true), region_mode::punchThrough);
    EXPECT_EQ(startingRegionMode(makeLevelSettings(64, 64, {Rate::twoBpp, Generation::second}), true), region_mode::average);
    EXPECT_DEATH(startingRegionMode(makeLevelSettings(64, 64, {oneBpp, Generation::second}), false),
                 "Exiting - 1bpp not yet implemented \\(SetUpStandardRepStarts\\)!");
}

}  // namespace
