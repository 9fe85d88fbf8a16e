#include <gtest/gtest.h>

#include <algorithm>

#include "moktc_levels.h"

using namespace moktexture::moktc;
using moktclevels::decode;
using moktclevels::Level;

namespace {

constexpr std::uint32_t white = 0xFFFFFFFF;
constexpr std::uint32_t whiteA = 0x80007FFE | opaqueABit, blackA = 0x80000000 | opaqueABit;  // first generation
constexpr std::uint32_t allIndex2 = 0xAAAAAAAA;

/// Opaque colours of the second generation by 5-bit channels, of which A's blue keeps 4 bits.
constexpr std::uint32_t opaqueBlock(std::uint32_t rA, std::uint32_t gA, std::uint32_t bA, std::uint32_t rB, std::uint32_t gB,
                                    std::uint32_t bB) {
    return opaqueBothBit | rA << 10 | gA << 5 | bA >> 1 << 1 | rB << 26 | gB << 21 | bB << 16;
}

}  // namespace

TEST(MOKTCGenerations, DifferInTheOrderOfBlocks) {
    for (const bool is2bpp : {false, true})
        for (const bool second : {false, true}) {
            const std::uint32_t length = blockWidth(is2bpp);
            const Level level = {8 * length, 16, is2bpp, second};
            std::vector<Block> blocks(level.blockCount(), {0, 0});
            blocks[6].colours = whiteA & ~(second ? flatBit : 0);
            // In a grid of 8 by 4 the seventh place is row 0, column 6 in rows, and row 2, column 1 interleaved.
            const std::uint32_t x = second ? 6 : 1, y = second ? 0 : 2,
                                centre = (4 * y + 2) * level.width + length * x + length / 2;
            const auto pixels = decode(level, blocks);
            EXPECT_EQ(pixels[centre], white) << is2bpp << second;
            EXPECT_EQ(std::count(pixels.begin(), pixels.end(), white), 1) << is2bpp << second;
        }
}

TEST(MOKTCGenerations, DifferInTheSmallestLevel) {
    // First generation: two blocks by two even under a single pixel, here with the first white and the others black.
    for (const Level& level : {Level{4, 4, false, false}, Level{8, 4, true, false}, Level{1, 1, false, false}}) {
        EXPECT_EQ(level.blockCount(), 4u);
        const auto pixels = decode(level, {{0, whiteA}, {0, blackA}, {0, blackA}, {0, blackA}});
        EXPECT_EQ(pixels[0], 0xFF3F3F3F);  // a quarter: half a block away from the corner of four
        if (level.width > 1) {
            EXPECT_EQ(pixels[2 * level.width + level.width / 2], white);
        }
    }
    // Second generation: one block, which wraps onto itself.
    for (const Level& level : {Level{4, 4, false, true}, Level{8, 4, true, true}, Level{1, 1, false, true}}) {
        EXPECT_EQ(level.blockCount(), 1u);
        for (const std::uint32_t pixel : decode(level, {{0, whiteA & ~flatBit}}))
            EXPECT_EQ(pixel, white);
    }
}

TEST(MOKTCGenerations, DifferBeyondWholeBlocks) {
    for (const bool is2bpp : {false, true}) {
        const std::uint32_t length = blockWidth(is2bpp);
        // First generation: pixels to the right of whole blocks and below them are zero, and neighbours wrap without them.
        const Level first = {3 * length - 1, 11, is2bpp, false};
        const auto cut = decode(first, std::vector<Block>(first.blockCount(), {0, whiteA}));
        for (std::uint32_t place = 0; place < cut.size(); ++place) {
            const bool isInside = place % first.width < 2 * length && place / first.width < 8;
            EXPECT_EQ(cut[place], isInside ? white : 0) << place;
        }
        // Second generation: the last block is there in full, and the first pixel lies half a block from its centre.
        const Level second = {length + 1, 1, is2bpp, true};
        const auto padded = decode(second, {{0, blackA & ~flatBit}, {0, whiteA & ~flatBit}});
        EXPECT_EQ(padded[0], 0xFF7F7F7F);
        EXPECT_EQ(padded[length / 2], 0xFF000000);
        EXPECT_EQ(padded[length], 0xFF7F7F7F);
    }
}

TEST(MOKTCGenerations, DifferInPunchThroughPixels) {
    const std::uint32_t colours = 0xFFFF0001;  // B opaque white; A opaque black in the second generation alone
    EXPECT_EQ(moktclevels::decodeAmongEquals({allIndex2, colours | opaqueABit}, false, false)[5], 0x007F7F7Fu);
    EXPECT_EQ(moktclevels::decodeAmongEquals({allIndex2, colours}, false, true)[5], 0u);
    EXPECT_EQ(moktclevels::decodeAmongEquals({0x55555555, colours}, false, true)[5], 0xFF7F7F7Fu);
}

TEST(MOKTCGenerations, ReadBlocksBeyondTheDataAsZero) {
    // 12 by 12 blocks: (8, 8) has place 192 of 144; (0, 8) has place 64.
    const Level level = {48, 48, false, false};
    const auto pixels = decode(level, std::vector<Block>(level.blockCount(), {0, whiteA}));
    EXPECT_EQ(pixels[34 * 48 + 34], 0u);
    EXPECT_EQ(pixels[34 * 48 + 2], white);
}

TEST(MOKTCGenerations, SecondUpscalesUnlessTheUpperLeftBlockIsFlat) {
    // Two columns of blocks, black and white, one of them flat. The cell between their centres has the flat flag of its left one.
    for (const bool is2bpp : {false, true})
        for (const bool isFirstFlat : {false, true}) {
            const std::uint32_t length = blockWidth(is2bpp), half = length / 2;
            const std::uint32_t black = opaqueBothBit | (isFirstFlat ? flatBit : 0),
                                light = opaqueBlock(31, 31, 31, 31, 31, 31) | (isFirstFlat ? 0 : flatBit);
            const auto pixels = decode({2 * length, 4, is2bpp, true}, {{0, black}, {0, light}});
            EXPECT_EQ(pixels[length - 1], isFirstFlat ? 0xFF000000u : is2bpp ? 0xFF5F5F5Fu : 0xFF3F3F3Fu);
            EXPECT_EQ(pixels[length], isFirstFlat ? white : 0xFF7F7F7Fu);
            EXPECT_EQ(pixels[half], 0xFF000000u);
            EXPECT_EQ(pixels[0], isFirstFlat ? 0xFF7F7F7Fu : 0xFF000000u);
            EXPECT_EQ(pixels[length + half], white);
        }
}

TEST(MOKTCGenerations, SecondDrawsFlatCellsFromOwnBlocksOrTheCornerPalette) {
    // The cell between four blocks whose colours are told apart by red and green: A of block n has red n, B has green n.
    const Level level = {8, 8, false, true};
    const std::uint32_t columns[] = {1, 2}, rows[] = {0, 16};
    // Corner and colour of each pixel in the order dy, dx by index 0 to 3: a capital is colour B of P Q / R S.
    // clang-format off
    const char* const taps[16] = {
        "    ", "pPqQ", "pPqQ", "pPqQ", "pPrR", "pPqR", "pPqQ", "sPqQ", "pPrR", "pPrR", "pSrQ", "sSqQ", "pPrR", "pSrR", "sSrR",
        "sSrQ"};
    // clang-format on
    for (std::uint32_t index = 0; index < 4; ++index)
        for (const std::uint32_t mode : {0u, modeBit}) {
            std::vector<Block> blocks;
            for (unsigned corner = 0; corner < 4; ++corner) {
                const std::uint32_t shade = columns[corner % 2] + rows[corner / 2];
                blocks.push_back({index * 0x55555555, opaqueBlock(shade, 0, 0, 0, shade, 0) | flatBit | mode});
            }
            const auto pixels = decode(level, blocks);
            for (unsigned pixel = 0; pixel < 16; ++pixel) {
                const unsigned dx = pixel % 4, dy = pixel / 4, own = dx / 2 + dy / 2 * 2;
                const char tap = taps[pixel][index];
                const bool isPalette = mode != 0 && pixel != 0;
                const unsigned corner = isPalette ? static_cast<unsigned>((tap | 32) - 'p') : own;
                // Without the palette the weights are 0, 3, 5 and 8 in both modes, and nothing is punched through.
                const std::uint32_t weight = isPalette ? (tap < 'a' ? 8 : 0) : indexWeights[0][index];
                const std::uint32_t shade = columns[corner % 2] + rows[corner / 2], shade8 = shade << 3 | shade >> 2;
                EXPECT_EQ(pixels[(2 + dy) * 8 + 2 + dx], 0xFF000000u | shade8 * (8 - weight) / 8 | shade8 * weight / 8 << 8)
                    << pixel << ' ' << index << ' ' << mode;
            }
        }
}
