#include <gtest/gtest.h>

#include <algorithm>

#include "moktc/amtc/evaluation/pixel_evaluation.h"

using namespace moktexture::amtc;

namespace {

constexpr std::uint32_t black = 0xFF000000, white = 0xFFFFFFFF;

constexpr std::uint32_t grey(std::uint32_t value, std::uint32_t alpha = 255) {
    return value * 0x10101 | alpha << 24;
}

NeighbourColours allOf(const ColourPair& pair) {
    NeighbourColours colours;
    colours.fill(pair);
    return colours;
}
const NeighbourColours blackToWhite = allOf({black, white});

BlendTable tableOf(std::uint32_t bitsPerPixel, std::uint32_t generation, std::uint32_t mode, std::uint32_t around) {
    BlockRecord neighbour{};
    neighbour.bestMode = around;
    Neighbourhood neighbours;
    neighbours.fill(&neighbour);
    BlendTable table;
    CreateBlendingAndUpdateWeights(mode, neighbours, 0, makeLevelSettings(16, 16, {Rate(bitsPerPixel), Generation(generation)}),
                                   table);
    return table;
}

/// The pixels by the labels that `labelOf` gives them, which are below 81.
template <typename LabelOf>
Segments segmentsBy(LabelOf labelOf) {
    Segments segments{};
    for (std::uint8_t pixel = 0; pixel < 81; ++pixel) {
        segments.order[pixel] = pixel;
        segments.labels[pixel] = static_cast<std::uint8_t>(labelOf(pixel));
    }
    std::stable_sort(segments.order.begin(), segments.order.begin() + 81,
                     [&](std::uint8_t a, std::uint8_t b) { return segments.labels[a] < segments.labels[b]; });
    return segments;
}
const Segments oneSegment = segmentsBy([](std::size_t) { return 0; });

constexpr bool isOfBlock(std::size_t pixel) {
    return pixel / 9 - 2 < 4 && pixel % 9 - 2 < 4;
}
constexpr bool isOfRing(std::size_t pixel) {
    return pixel / 9 % 8 == 0 || pixel % 9 % 8 == 0;
}

using Counts = std::array<std::int32_t, levelValueCount>;

}  // namespace

TEST(AmtcEvaluation, PicksTheNearestIndexAndTheEarliestOfEqualOnes) {
    // clang-format off
    const struct { std::uint32_t pixel; PixelCandidates candidates; bool twoLevelsOnly; std::uint32_t index, error; } cases[] = {
     // pixel, candidates 0 to 3, two only, index, error
        {grey(10), {grey(10), grey(10), grey(10), grey(10)}, false, 2,     0},
        {grey(10), {grey(10), grey(10), grey(12), grey(10)}, false, 1,     0},
        {grey(10), {grey(10), grey(12), grey(12), grey(10)}, false, 0,     0},
        {grey(10), {grey(11), grey(10), grey(10), grey(9)},  true,  3,     3},
        {grey(10), {grey(11), grey(10), grey(10), grey(12)}, true,  0,     3},
        {0,        {black,    white,    grey(5),  white},    false, 0, 65025}};
    // clang-format on
    for (const auto& row : cases) {
        ColourDifference difference;
        std::uint32_t error = 0;
        EXPECT_EQ(PickLevel(row.pixel, row.candidates, difference, error, row.twoLevelsOnly), row.index);
        EXPECT_EQ(error, row.error);
    }
}

// With free choices, and with a segment for each pixel.
TEST(AmtcEvaluation, CollectsWhatTheSolverNeeds) {
    const BlendTable table = tableOf(4, 0, 0, 0);
    Footprint footprint{};
    footprint.fill(black);
    footprint[3 * 9 + 5] = grey(160);         // index 2 decodes to 159; importance 256, tent 36
    footprint[4 * 9 + 4] = 0xFF80FFFF;        // index 3, importance 1008
    footprint[0] = footprint[80] = grey(97);  // in the ring: index 1 decodes to 95
    const Segments single = segmentsBy([](std::size_t pixel) { return pixel; });
    for (const bool bySegments : {false, true}) {
        RegressionSums sums;
        const RegionError error = bySegments ? EvalRegionSegments4bpp(table, footprint, single, blackToWhite, true, sums)
                                             : EvalRegion4bpp(table, footprint, blackToWhite, true, sums);
        EXPECT_EQ(error.inner, 3u + 127 * 127);
        EXPECT_EQ(error.outer, 2u * 12);
        EXPECT_EQ(sums.levelCount, (Counts{47, 0, 0, 0, 0, 1, 0, 0, 1, 0}));
        EXPECT_EQ(sums.levelWeight[5], 256 * 36);
        EXPECT_EQ(sums.levelWeight[8], 1008 * 64);
        EXPECT_EQ(sums.levelResidual[5], (ColourDifference{256, 256, 256, 0}));
        EXPECT_EQ(sums.levelResidual[8], (ColourDifference{0, 0, -127 * 1008, 0}));
    }
}

// The block is standard and all around it punch-through, in one segment.
TEST(AmtcSegmentEvaluation, ChoosesAPairOfIndicesForStandardAndPunchThroughPixels) {
    // clang-format off
    const struct { ColourPair colours; std::uint32_t standard, punchThrough; std::uint8_t standardValue, punchThroughValue; std::uint32_t outer; } cases[] = {
     // colours, standard pixels, punch-through pixels, their weights, outer error
        {{black, white}, grey(255), grey(255),    8, 8,                 0},
        {{black, white}, grey(95),  grey(127, 0), 0, ignoredLevelValue, 0},  // not with 3/8
        {{black, white}, grey(159), grey(127, 0), 8, ignoredLevelValue, 0},
        {{black, white}, grey(95),  grey(127),    3, 4,                 0},
        {{black, white}, grey(159), grey(128),    5, 4,                 32 * 3},
        {{white, white}, white,     white,        0, 0,                 0}};
    // clang-format on
    const BlendTable table = tableOf(4, 0, 0, 1);
    for (const auto& row : cases) {
        Footprint footprint{};
        for (std::size_t pixel = 0; pixel < 81; ++pixel)
            footprint[pixel] = isOfBlock(pixel) ? row.standard : row.punchThrough;
        Counts counts{};
        counts[row.standardValue] += 16;
        counts[row.punchThroughValue] += 33;
        RegressionSums sums;
        const RegionError error = EvalRegionSegments4bpp(table, footprint, oneSegment, allOf(row.colours), true, sums);
        EXPECT_EQ(sums.levelCount, counts) << std::hex << row.standard << " and " << row.punchThrough;
        EXPECT_EQ(error.outer, row.outer);
    }
}

TEST(AmtcSegmentEvaluation, AddsTheRingAtTheIndicesOfItsSegment) {
    Footprint footprint{};
    footprint.fill(grey(127, 0));
    RegressionSums sums;
    // A ring alone may not take the transparent index: the next best is half way, opaque.
    const Segments ringAlone = segmentsBy(isOfRing);
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 1, 1), footprint, ringAlone, blackToWhite, true, sums).outer, 32u * 65025);
    // With inner pixels of its own class it takes their index; with those of the other class only, it adds no error.
    const Segments ringAndBlock = segmentsBy([](std::size_t pixel) { return isOfRing(pixel) || isOfBlock(pixel); });
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 1, 1), footprint, ringAndBlock, blackToWhite, true, sums).outer, 0u);
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 0, 1), footprint, ringAndBlock, blackToWhite, true, sums).outer, 0u);
}

TEST(AmtcEvaluation, PixelsWithoutSamplesTakeTheMeanOfThoseInTheFootprint) {
    Footprint footprint{};
    footprint.fill(black);
    footprint[17 * 4 + 8] = grey(159);  // a sample at the centre: four means of 5, 0, 0, 0 around it, which is 1, colour 31
    // A sample of the ring, and means beside it: of 0, 8 and 0, which is 3, colour 95, and of 0, 8, 0 and 0, which is 2,
    // colour 63.
    footprint[1] = footprint[2] = white;
    RegressionSums sums;
    const RegionError error = EvalRegion2bpp(tableOf(2, 0, 9, 9), footprint, blackToWhite, true, sums);
    EXPECT_EQ(sums.levelCount, (Counts{99, 4, 1, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(error.inner, 3u * (4 * 31 * 31 + 63 * 63));
    EXPECT_EQ(error.outer, 3u * (160 * 160 + 95 * 95));
}
