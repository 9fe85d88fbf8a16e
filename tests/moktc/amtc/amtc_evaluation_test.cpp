#include <gtest/gtest.h>

#include <algorithm>

#include "moktc/amtc/evaluation/pixel_evaluation.h"

using namespace moktexture::amtc;

namespace {

/// The table of a block in `mode` among neighbours that are all in `around`.
BlendTable tableOf(std::uint32_t bitsPerPixel, std::uint32_t generation, std::uint32_t mode, std::uint32_t around,
                   std::uint32_t variant = 0) {
    BlockRecord neighbour{};
    neighbour.bestMode = around;
    Neighbourhood neighbours;
    neighbours.fill(&neighbour);
    BlendTable table;
    CreateBlendingAndUpdateWeights(mode, neighbours, variant,
                                   makeLevelSettings(16, 16, {Rate(bitsPerPixel), Generation(generation)}), table);
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

constexpr bool isOfBlock(std::size_t pixel) {
    return pixel / 9 - 2 < 4 && pixel % 9 - 2 < 4;
}
constexpr bool isOfRing(std::size_t pixel) {
    return pixel / 9 % 8 == 0 || pixel % 9 % 8 == 0;
}

}  // namespace

TEST(AmtcBlendTable, ImportanceIsAProductOfKernelsAndInfluenceOfTents) {
    // clang-format off
    const struct { std::uint32_t bitsPerPixel, mode, around, variant; std::size_t row, column; std::int32_t importance, tents; } cases[] = {
     // bpp, mode, around, variant, row, column, importance, tents
        {4, 0, 0, 0, 4, 4, 1008, 64},
        {4, 0, 0, 0, 0, 1,  -16,  0},
        {4, 2, 2, 0, 2, 5,  256, 64},
        {4, 0, 2, 0, 5, 5,  196, 36},  // kernel 1, 0 as the upper left blocks are flat: 56 * 56 / 16; its own cell is soft
        {4, 0, 0, 1, 3, 5,  224, 36},  // the upper left inverted to flat: 1, 0 across and 0, 0 down: 56 * 64 / 16
        {4, 0, 0, 2, 3, 6,  -18,  0},  // the upper inverted to flat: -4 * 72 / 16
        {4, 1, 3, 0, 4, 4,  576, 64},
        {4, 3, 3, 0, 3, 3,   64, 64},  // palette tap
        {2, 8, 8, 0, 2, 1,  -10,  4},  // -168 / 16
        {2, 8, 8, 2, 3, 5,   88, 30},
        {2, 8, 8, 7, 3, 5,  128, 64}};
    // clang-format on
    for (const auto& row : cases) {
        const BlendTable table = tableOf(row.bitsPerPixel, 1, row.mode, row.around, row.variant);
        const PixelBlendEntry& entry = table[row.row * (row.bitsPerPixel == 4 ? 9 : 17) + row.column];
        EXPECT_EQ(entry.importance, row.importance) << row.row << ", " << row.column << " case " << &row - cases;
        EXPECT_EQ(entry.influence, row.importance * row.tents) << row.row << ", " << row.column << " case " << &row - cases;
    }
}

TEST(AmtcBlendTable, IndicesHaveTheWeightsOfTheBlocksOwnColours) {
    // clang-format off
    const struct { std::uint32_t generation, mode, around; std::size_t row, column; std::array<std::uint8_t, 4> values;
                   std::uint8_t level2A, level2B; std::uint32_t level2Mask; } cases[] = {
     // generation, mode, around, row, column, weights by index, index 2: A, B, mask
        {1, 1, 0, 3, 3, {0, 4, 9, 8}, 4, 4, 0x00FFFFFF},  // a mean of the block's colours, and ignored all the same
        {2, 1, 0, 3, 3, {0, 4, 9, 8}, 0, 0,          0},
        {2, 1, 0, 3, 1, {0, 3, 5, 8}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 2, 2, {9, 9, 9, 8}, 3, 5, 0xFFFFFFFF},  // the block is the lower right of the four around the pixel
        {2, 3, 3, 2, 5, {9, 9, 0, 8}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 5, 3, {0, 8, 9, 9}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 4, 4, {0, 3, 5, 8}, 3, 5, 0xFFFFFFFF}};
    // clang-format on
    for (const auto& row : cases) {
        const PixelBlendEntry entry = tableOf(4, row.generation - 1, row.mode, row.around)[row.row * 9 + row.column];
        EXPECT_EQ(entry.levelValue, row.values) << "case " << &row - cases;
        EXPECT_EQ(entry.level2A, row.level2A) << "case " << &row - cases;
        EXPECT_EQ(entry.level2B, row.level2B) << "case " << &row - cases;
        EXPECT_EQ(entry.level2Mask, row.level2Mask) << "case " << &row - cases;
    }
}

TEST(AmtcSegmentEvaluation, AddsTheRingAtTheIndicesOfItsSegment) {
    Footprint footprint{};
    footprint.fill(0x007F7F7F);
    NeighbourColours blackToWhite;
    blackToWhite.fill({0xFF000000, 0xFFFFFFFF});
    RegressionSums sums;
    // A ring alone may not take the transparent index: the next best is half way, opaque.
    const Segments ringAlone = segmentsBy(isOfRing);
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 1, 1), footprint, ringAlone, blackToWhite, true, sums).outer, 32u * 65025);
    // With inner pixels of its own class it takes their index; with those of the other class only, it adds no error.
    const Segments ringAndBlock = segmentsBy([](std::size_t pixel) { return isOfRing(pixel) || isOfBlock(pixel); });
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 1, 1), footprint, ringAndBlock, blackToWhite, true, sums).outer, 0u);
    EXPECT_EQ(EvalRegionSegments4bpp(tableOf(4, 0, 0, 1), footprint, ringAndBlock, blackToWhite, true, sums).outer, 0u);
}
