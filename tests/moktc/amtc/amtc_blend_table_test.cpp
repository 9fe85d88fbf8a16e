#include <gtest/gtest.h>

#include "moktc/amtc/evaluation/blend_table.h"

using namespace moktexture::amtc;

namespace {

/// The table of a block in `mode` among neighbours that are all in `around`.
BlendTable tableOf(std::uint32_t bitsPerPixel, std::uint32_t mode, std::uint32_t around, std::uint32_t variant,
                   std::uint32_t generation) {
    BlockRecord neighbour{};
    neighbour.bestMode = around;
    Neighbourhood neighbours;
    neighbours.fill(&neighbour);
    BlendTable table;
    CreateBlendingAndUpdateWeights(mode, neighbours, variant,
                                   makeLevelSettings(16, 16, {Rate(bitsPerPixel), Generation(generation - 1)}), table);
    return table;
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
        const BlendTable table = tableOf(row.bitsPerPixel, row.mode, row.around, row.variant, 2);
        const PixelBlendEntry& entry = table[row.row * (row.bitsPerPixel == 4 ? 9 : 17) + row.column];
        EXPECT_EQ(entry.importance, row.importance) << row.row << ", " << row.column << " case " << &row - cases;
        EXPECT_EQ(entry.influence, row.importance * row.tents) << row.row << ", " << row.column << " case " << &row - cases;
    }
}

TEST(AmtcBlendTable, IndicesHaveTheWeightsOfTheBlocksOwnColours) {
    // clang-format off
    const struct { std::uint32_t generation, mode, around; std::size_t row, column; std::array<std::uint8_t, 4> values;
                   std::uint8_t level2A, level2B; std::uint32_t level2Mask; } cases[] = {
     // generation, mode, around, row, column, weights by index, level 2: A, B, mask
        {1, 1, 0, 3, 3, {0, 4, 9, 8}, 4, 4, 0x00FFFFFF},  // a mean of the block's colours, and ignored all the same
        {2, 1, 0, 3, 3, {0, 4, 9, 8}, 0, 0,          0},
        {2, 1, 0, 3, 1, {0, 3, 5, 8}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 2, 2, {9, 9, 9, 8}, 3, 5, 0xFFFFFFFF},  // the block is the lower right of the four around the pixel
        {2, 3, 3, 2, 5, {9, 9, 0, 8}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 5, 3, {0, 8, 9, 9}, 3, 5, 0xFFFFFFFF},
        {2, 3, 3, 4, 4, {0, 3, 5, 8}, 3, 5, 0xFFFFFFFF}};
    // clang-format on
    for (const auto& row : cases) {
        const PixelBlendEntry entry = tableOf(4, row.mode, row.around, 0, row.generation)[row.row * 9 + row.column];
        EXPECT_EQ(entry.levelValue, row.values) << "case " << &row - cases;
        EXPECT_EQ(entry.level2A, row.level2A) << "case " << &row - cases;
        EXPECT_EQ(entry.level2B, row.level2B) << "case " << &row - cases;
        EXPECT_EQ(entry.level2Mask, row.level2Mask) << "case " << &row - cases;
    }
}

TEST(AmtcBlendTableDeathTest, EndsTheProcessAtOneBitPerPixel) {
    for (const char* message :
         {"1bpp not yet implemented \\(CreateBlendingAndUpdateWeights", "1bpp not implemented \\(CreateBlending"})
        EXPECT_DEATH_IF_SUPPORTED(tableOf(1, 0, 0, 0, 1), message);
}
