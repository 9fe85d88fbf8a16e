#include <gtest/gtest.h>

#include <iterator>
#include <set>

#include "CMOKTextureHeader.h"
#include "moktc_levels.h"
#include "reference/modulation_grid.h"

using namespace moktexture;
using namespace moktexture::moktc;

namespace {

constexpr std::uint32_t white = 0xFFFFFFFF;                                                  // a pixel
constexpr std::uint32_t whiteA = 0x80007FFE | opaqueABit, blackA = 0x80000000 | opaqueABit;  // colour words, first generation
constexpr std::uint32_t allIndex1 = 0x55555555, allIndex2 = 0xAAAAAAAA;                      // modulation words

constexpr Rate bothRates[] = {Rate::fourBpp, Rate::twoBpp};

/// The level's pixels. `blocks` may be fewer than the level's; missing ones are zero.
std::vector<std::uint32_t> decode(const Level& level, std::vector<Block> blocks) {
    blocks.resize(level.blockCount(), {0, 0});
    std::vector<std::uint32_t> pixels(std::size_t{level.width} * level.height, 0xDEADBEEF);
    const std::uint32_t generation = level.variant.isSecondGeneration();
    DecompressMOKTC(blocks.data(), pixels.data(), &level.width, &level.height, level.variant.is2bpp(), &generation);
    return pixels;
}

/// A block's pixels where all of its neighbours are equal to it.
std::vector<std::uint32_t> decodeAmongEquals(const Block& block, BlockVariant variant) {
    const Level level = {blockWidth(variant.rate), blockHeight, variant};
    return decode(level, std::vector(level.blockCount(), block));
}

}  // namespace

TEST(MOKTCBlockOrder, IndicesAreUniqueAndBeyondTheGridOnlyIfASideIsNoPowerOfTwo) {
    // The largest grids, whose indices no test of whole levels reaches.
    EXPECT_EQ(TwiddleIndex(65536, 65536, 65535, 65535), 0xFFFFFFFF);
    EXPECT_EQ(TwiddleIndex(32768, 131072, 0, 131071), 0xD5555555);
    // clang-format off
    const struct { std::uint32_t blocksX, blocksY; std::ptrdiff_t beyond; } cases[] = {
        // columns  rows  indices beyond the grid's area
        {  8,       8,    0},
        {  1,       7,    0},
        {  12,      12,   32},
        {  3,       3,    2},
        {  5,       7,    5}};
    // clang-format on
    for (const auto& [blocksX, blocksY, beyond] : cases) {
        std::set<std::uint64_t> indices;
        for (std::uint32_t y = 0; y < blocksY; ++y)
            for (std::uint32_t x = 0; x < blocksX; ++x)
                indices.insert(TwiddleIndex(blocksX, blocksY, x, y));
        const std::uint32_t area = blocksX * blocksY;
        EXPECT_EQ(indices.size(), area);
        EXPECT_EQ(std::distance(indices.lower_bound(area), indices.end()), beyond) << blocksX << ' ' << blocksY;
    }
}

TEST(MOKTCBlockOrder, LevelBlockCountAgreesWithGetDataSize) {
    const CompressedFormatId formats[] = {eFmtMOKTC4bppRGB, eFmtMOKTC2bppRGB, eFmtMOKTCII4bpp, eFmtMOKTCII2bpp};
    for (const std::uint32_t width : {1u, 4u, 7u, 8u, 9u, 16u, 17u, 20u, 300u, 4096u})
        for (const std::uint32_t height : {1u, 3u, 4u, 5u, 8u, 12u, 257u})
            for (std::size_t i = 0; i < allVariants.size(); ++i) {
                const CMOKTextureHeader header(formats[i], height, width, 1, 1, 1, 1, eColourSpaceLinear, eVarUByteNorm, false);
                EXPECT_EQ(levelBlockCount(width, height, allVariants[i]) * bytesPerBlock, header.getDataSize())
                    << width << " x " << height << ", " << allVariants[i];
            }
}

TEST(MOKTCBlock, HoldsTheColoursOfBothGenerations) {
    // clang-format off
    // Colours are RGBA8, red in the lowest byte.
    const struct { std::uint32_t word, a[2], b[2]; } cases[] = {
        // colour word  A first     A second      B first     B second
        {  0xFFFFFFFE, {0xFFFFFFFF, 0xFFFFFFFF}, {0xFFFFFFFF, 0xFFFFFFFF}},
        {  0x0000FC00, {0xFF0000FF, 0xEE0000CE}, {0x00000000, 0x11000000}},  // bit 15: A is opaque, or the block is flat
        {  0x83E07C1E, {0xEEFF10CE, 0xFFFF00FF}, {0xFF00FF00, 0xFF00FF00}},  // bit 31: B is opaque, or both are
        {  0x80008010, {0xFF8C0000, 0xFF8C0000}, {0xFF000000, 0xFF000000}},  // opaque A has 4 bits of blue
        {  0x80410000, {0x00000000, 0xFF000000}, {0xFF081000, 0xFF081000}},
        {  0x5A5A0000, {0x00000000, 0x00000000}, {0xAAAD52AD, 0xBBAD52AD}},  // low bit of B's alpha
        {  0x00005A5A, {0xAAB552AD, 0xAAB552AD}, {0x00000000, 0x11000000}}}; // translucent A has 3 bits of blue
    // clang-format on
    for (const auto& row : cases)
        for (const BlockVariant& variant : allVariants) {
            const std::uint32_t secondPixelIsB = variant.is2bpp() ? 2 : 12;
            const auto pixels = decodeAmongEquals({secondPixelIsB, row.word}, variant);
            EXPECT_EQ(pixels[0], row.a[variant.isSecondGeneration()]) << std::hex << row.word << ' ' << variant;
            EXPECT_EQ(pixels[1], row.b[variant.isSecondGeneration()]) << std::hex << row.word << ' ' << variant;
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
    EXPECT_EQ(decodeAmongEquals({allIndex2, colours | opaqueABit}, first)[5], 0x007F7F7Fu);
    EXPECT_EQ(decodeAmongEquals({allIndex2, colours}, second)[5], 0u);
    EXPECT_EQ(decodeAmongEquals({allIndex1, colours}, second)[5], 0xFF7F7F7Fu);
}

TEST(MOKTCGenerations, SecondInterpolatesUnlessTheUpperLeftBlockIsFlat) {
    // Two columns of blocks, black and white, one of them flat. A cell between them is flat if its left block is.
    for (const Rate rate : bothRates)
        for (const bool isFirstFlat : {false, true}) {
            const std::uint32_t length = blockWidth(rate), half = length / 2;
            const std::uint32_t black = opaqueBothBit | (isFirstFlat ? flatBit : 0),
                                light = 0xFFFF7FFE | (isFirstFlat ? 0 : flatBit);
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
        {  0,       2,     1,  3,  r,     5},
        {  0,       3,     3,  3,  s,     8},
        {  modeBit, 2,     0,  0,  p,     5},  // at the corner: blended, with the weights of mode 0 and no punch-through
        {  modeBit, 0,     1,  1,  p,     0},  // elsewhere: a colour of any of the four blocks
        {  modeBit, 2,     1,  1,  q,     0},
        {  modeBit, 3,     1,  1,  r,     8},
        {  modeBit, 0,     3,  1,  s,     0},
        {  modeBit, 3,     3,  3,  q,     8}};
    // clang-format on
    for (const auto& row : cases) {
        std::vector<Block> blocks;
        for (const std::uint32_t shade : {p, q, r, s})
            blocks.push_back({row.index * allIndex1, opaqueBothBit | shade << 21 | shade << 10 | flatBit | row.mode});
        const auto pixels = decode({8, 8, {Rate::fourBpp, Generation::second}}, blocks);
        const std::uint32_t shade8 = row.shade << 3 | row.shade >> 2;
        EXPECT_EQ(pixels[(2 + row.dy) * 8 + 2 + row.dx],
                  0xFF000000u | shade8 * (8 - row.weight) / 8 | shade8 * row.weight / 8 << 8)
            << row.mode << ' ' << row.index << ' ' << row.dx << ' ' << row.dy;
    }
}

TEST(MOKTCBlockDeathTest, UnpackModsAbortsAtOneBitPerPixel) {
    ModulationGrid grid;
    EXPECT_DEATH_IF_SUPPORTED(UnpackMods({0, 0}, 1, grid, 0, 0), "EXITING! 1BPP UnpackMods not yet implemented!");
}
