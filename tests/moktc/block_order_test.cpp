#include "moktc/block/block_order.h"

#include <gtest/gtest.h>

#include <iterator>
#include <set>

#include "CMOKTextureHeader.h"
#include "moktc_levels.h"

using namespace moktexture;
using namespace moktexture::moktc;

TEST(MOKTCBlockOrder, InterleavesRowsAndColumns) {
    // clang-format off
    const struct { std::uint32_t blocksX, blocksY, x, y; std::uint64_t index; } cases[] = {
        // columns  rows    x       y       index
        {  2,       2,      0,      1,      1},
        {  2,       2,      1,      0,      2},
        {  8,       8,      5,      3,      39},
        {  8,       2,      7,      1,      15},
        {  2,       8,      1,      7,      15},
        {  1,       9,      0,      5,      5},
        {  9,       1,      5,      0,      5},
        {  5,       3,      4,      2,      20},
        {  65536,   65536,  65535,  65535,  0xFFFFFFFF},
        {  32768,   131072, 0,      131071, 0xD5555555}};
    // clang-format on
    for (const auto& row : cases)
        EXPECT_EQ(TwiddleIndex(row.blocksX, row.blocksY, row.x, row.y), row.index) << row.blocksX << ' ' << row.blocksY;
    EXPECT_EQ(BlockIndex(8, 2, 3, 1, true), 11u);
    EXPECT_EQ(BlockIndex(8, 2, 3, 1, false), 7u);
}

TEST(MOKTCBlockOrder, IndicesAreUniqueAndBeyondTheGridOnlyIfASideIsNoPowerOfTwo) {
    // clang-format off
    const struct { std::uint32_t blocksX, blocksY; std::ptrdiff_t beyond; } cases[] = {
        // columns  rows  indices beyond the grid's area
        {  8,       8,    0},
        {  16,      4,    0},
        {  1,       7,    0},
        {  12,      12,   32},
        {  3,       3,    2},
        {  5,       7,    5},
        {  3,       8,    4}};
    // clang-format on
    for (const auto& [blocksX, blocksY, beyond] : cases) {
        std::set<std::uint64_t> indices;
        for (std::uint32_t y = 0; y < blocksY; ++y)
            for (std::uint32_t x = 0; x < blocksX; ++x)
                indices.insert(TwiddleIndex(blocksX, blocksY, x, y));
        const std::size_t area = std::size_t{blocksX} * blocksY;
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
