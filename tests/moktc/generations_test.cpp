#include <gtest/gtest.h>

#include <algorithm>

#include "moktc_levels.h"

using namespace moktexture::moktc;
using moktclevels::decode;
using moktclevels::Level;

namespace {

constexpr std::uint32_t white = 0xFFFFFFFF;                                                  // a pixel
constexpr std::uint32_t whiteA = 0x80007FFE | opaqueABit, blackA = 0x80000000 | opaqueABit;  // colour words, first generation
constexpr std::uint32_t allIndex1 = 0x55555555, allIndex2 = 0xAAAAAAAA;                      // modulation words

constexpr Rate bothRates[] = {Rate::fourBpp, Rate::twoBpp};

/// Colour word of the second generation with opaque colours of 5-bit channels; A's blue keeps 4 bits.
constexpr std::uint32_t opaqueBlock(std::uint32_t rA, std::uint32_t gA, std::uint32_t bA, std::uint32_t rB, std::uint32_t gB,
                                    std::uint32_t bB) {
    return opaqueBothBit | rA << 10 | gA << 5 | bA >> 1 << 1 | rB << 26 | gB << 21 | bB << 16;
}

}  // namespace

TEST(MOKTCGenerations, DifferInTheOrderOfBlocks) {
    for (const BlockVariant& variant : allVariants) {
        const bool second = variant.isSecondGeneration();
        const std::uint32_t length = blockWidth(variant.rate);
        const Level level = {8 * length, 16, variant};
        std::vector<Block> blocks(level.blockCount(), {0, 0});
        blocks[6].colours = whiteA & ~(second ? flatBit : 0);
        // In a grid of 8 by 4, block 6 is at row 0, column 6 in linear order, and at row 2, column 1 in twiddled order.
        const std::uint32_t x = second ? 6 : 1, y = second ? 0 : 2, centre = (4 * y + 2) * level.width + length * x + length / 2;
        const auto pixels = decode(level, blocks);
        EXPECT_EQ(pixels[centre], white) << variant;
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), white), 1) << variant;
    }
}

TEST(MOKTCGenerations, DifferInTheSmallestLevel) {
    // First generation: two by two blocks even under a single pixel, here the first one white and the others black.
    constexpr BlockVariant first4 = {Rate::fourBpp, Generation::first}, first2 = {Rate::twoBpp, Generation::first};
    for (const Level& level : {Level{4, 4, first4}, Level{8, 4, first2}, Level{1, 1, first4}}) {
        EXPECT_EQ(level.blockCount(), 4u);
        const auto pixels = decode(level, {{0, whiteA}, {0, blackA}, {0, blackA}, {0, blackA}});
        EXPECT_EQ(pixels[0], 0xFF3F3F3F);  // the mean of four blocks
        if (level.width > 1) {
            EXPECT_EQ(pixels[2 * level.width + level.width / 2], white);
        }
    }
    // Second generation: one block, which wraps onto itself.
    constexpr BlockVariant second4 = {Rate::fourBpp, Generation::second}, second2 = {Rate::twoBpp, Generation::second};
    for (const Level& level : {Level{4, 4, second4}, Level{8, 4, second2}, Level{1, 1, second4}}) {
        EXPECT_EQ(level.blockCount(), 1u);
        for (const std::uint32_t pixel : decode(level, {{0, whiteA & ~flatBit}}))
            EXPECT_EQ(pixel, white);
    }
}

TEST(MOKTCGenerations, FirstDropsPixelsBeyondWholeBlocks) {
    for (const Rate rate : bothRates) {
        const std::uint32_t length = blockWidth(rate);
        const Level level = {3 * length - 1, 11, {rate, Generation::first}};
        const auto pixels = decode(level, std::vector<Block>(level.blockCount(), {0, whiteA}));
        for (std::uint32_t i = 0; i < pixels.size(); ++i) {
            const bool isInside = i % level.width < 2 * length && i / level.width < 8;
            EXPECT_EQ(pixels[i], isInside ? white : 0) << i;
        }
    }
}

TEST(MOKTCGenerations, SecondWrapsAtWholeBlocks) {
    for (const Rate rate : bothRates) {
        const std::uint32_t length = blockWidth(rate);
        const Level level = {length + 1, 1, {rate, Generation::second}};
        const auto pixels = decode(level, {{0, blackA & ~flatBit}, {0, whiteA & ~flatBit}});
        EXPECT_EQ(pixels[0], 0xFF7F7F7F);  // half a block from the last block's centre
        EXPECT_EQ(pixels[length / 2], 0xFF000000);
        EXPECT_EQ(pixels[length], 0xFF7F7F7F);
    }
}

TEST(MOKTCGenerations, DifferInPunchThroughPixels) {
    constexpr BlockVariant first = {Rate::fourBpp, Generation::first}, second = {Rate::fourBpp, Generation::second};
    const std::uint32_t colours = 0xFFFF0001;  // B opaque white; A opaque black in the second generation
    EXPECT_EQ(moktclevels::decodeAmongEquals({allIndex2, colours | opaqueABit}, first)[5], 0x007F7F7Fu);
    EXPECT_EQ(moktclevels::decodeAmongEquals({allIndex2, colours}, second)[5], 0u);
    EXPECT_EQ(moktclevels::decodeAmongEquals({allIndex1, colours}, second)[5], 0xFF7F7F7Fu);
}

TEST(MOKTCGenerations, FirstReadsBlocksBeyondTheDataAsZero) {
    // 12 by 12 blocks: block (8, 8) has index 192 of 144, block (0, 8) has index 64.
    const Level level = {48, 48, {Rate::fourBpp, Generation::first}};
    const auto pixels = decode(level, std::vector<Block>(level.blockCount(), {0, whiteA}));
    EXPECT_EQ(pixels[34 * 48 + 34], 0u);
    EXPECT_EQ(pixels[34 * 48 + 2], white);
}

TEST(MOKTCGenerations, SecondInterpolatesUnlessTheUpperLeftBlockIsFlat) {
    // Two columns of blocks, black and white, one of them flat. A cell between them is flat if its left block is.
    for (const Rate rate : bothRates)
        for (const bool isFirstFlat : {false, true}) {
            const std::uint32_t length = blockWidth(rate), half = length / 2;
            const std::uint32_t black = opaqueBothBit | (isFirstFlat ? flatBit : 0),
                                light = opaqueBlock(31, 31, 31, 31, 31, 31) | (isFirstFlat ? 0 : flatBit);
            const auto pixels = decode({2 * length, 4, {rate, Generation::second}}, {{0, black}, {0, light}});
            const std::uint32_t interpolated = rate == Rate::twoBpp ? 0xFF5F5F5F : 0xFF3F3F3F;
            EXPECT_EQ(pixels[length - 1], isFirstFlat ? 0xFF000000 : interpolated);
            EXPECT_EQ(pixels[length], isFirstFlat ? white : 0xFF7F7F7F);
            EXPECT_EQ(pixels[half], 0xFF000000);
            EXPECT_EQ(pixels[0], isFirstFlat ? 0xFF7F7F7F : 0xFF000000);
            EXPECT_EQ(pixels[length + half], white);
        }
}

TEST(MOKTCGenerations, SecondDrawsFlatCellsFromOwnBlocksOrTheCornerPalette) {
    // The cell between four flat blocks of one index. A of each block has red and B has green of a shade that identifies the
    // block.
    constexpr std::uint32_t p = 1, q = 2, r = 17, s = 18;  // upper left, upper right, lower left, lower right
    // clang-format off
    const struct { std::uint32_t mode, index, dx, dy, shade, weight; } cases[] = {
        // mode     index  dx, dy  block, weight
        {  0,       1,     1,  1,  p,     3},  // without the mode bit: blends of the pixel's own block
        {  0,       2,     2,  0,  q,     5},
        {  0,       2,     1,  3,  r,     5},
        {  0,       3,     3,  3,  s,     8},
        {  modeBit, 2,     0,  0,  p,     5},  // at the corner: blended, with the weights of mode 0 and no punch-through
        {  modeBit, 0,     1,  1,  p,     0},  // elsewhere: a colour of any of the four blocks
        {  modeBit, 2,     1,  1,  q,     0},
        {  modeBit, 3,     1,  1,  r,     8},
        {  modeBit, 0,     3,  1,  s,     0},
        {  modeBit, 1,     2,  2,  s,     8},
        {  modeBit, 3,     3,  3,  q,     8}};
    // clang-format on
    for (const auto& row : cases) {
        std::vector<Block> blocks;
        for (const std::uint32_t shade : {p, q, r, s})
            blocks.push_back({row.index * allIndex1, opaqueBlock(shade, 0, 0, 0, shade, 0) | flatBit | row.mode});
        const auto pixels = decode({8, 8, {Rate::fourBpp, Generation::second}}, blocks);
        const std::uint32_t shade8 = row.shade << 3 | row.shade >> 2;
        EXPECT_EQ(pixels[(2 + row.dy) * 8 + 2 + row.dx],
                  0xFF000000u | shade8 * (8 - row.weight) / 8 | shade8 * row.weight / 8 << 8)
            << row.mode << ' ' << row.index << ' ' << row.dx << ' ' << row.dy;
    }
}
