#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "moktc/decode/decode_cells.h"
#include "moktc_levels.h"
#include "reference/moktc_decoders.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::moktc;
using moktclevels::Level;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Random blocks with some bits of every colour word set or cleared.
Bytes randomBlocks(const Level& level, std::uint32_t set, std::uint32_t cleared, std::uint64_t seed) {
    Bytes blocks = testimages::randomBytes(level.blockCount() * bytesPerBlock, seed);
    for (std::size_t offset = 0; offset < blocks.size(); offset += bytesPerBlock) {
        Block block = readBlock(&blocks[offset]);
        block.colours = (block.colours | set) & ~cleared;
        writeBlock(&blocks[offset], block);
    }
    return blocks;
}

Bytes decodedByCells(const Level& level, const Bytes& blocks) {
    Bytes pixels(std::size_t{4} * level.width * level.height, 0xAA);
    decodeCells(blocks.data(), level.variant, packedImage(pixels.data(), level.width, level.height));
    return pixels;
}

Bytes decodedByReference(const Level& level, const Bytes& blocks) {
    Bytes pixels(std::size_t{4} * level.width * level.height, 0xAA);
    if (level.variant.isSecondGeneration()) {
        DecodeLinear(blocks.data(), level.variant.is2bpp(), level.width, level.height, pixels.data());
    } else {
        DecodeTwiddled(blocks.data(), level.variant.is2bpp(), level.width, level.height, pixels.data());
    }
    return pixels;
}

Bytes decodedImage(const Bytes& blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height) {
    PixelImage image = {width, height, std::vector<std::uint32_t>(std::size_t{width} * height)};
    DecodeImage(blocks.data(), rules, width, height, image);
    Bytes pixels(image.pixels.size() * 4);
    std::memcpy(pixels.data(), image.pixels.data(), pixels.size());
    return pixels;
}

}  // namespace

TEST(MOKTCDecodeEquality, CellDecoderAgreesWithTheReferenceDecoders) {
    // clang-format off
    const std::uint32_t sizes[][2] = {
        {1, 1}, {2, 3}, {4, 4}, {7, 9}, {8, 8}, {9, 8}, {16, 8}, {15, 17}, {17, 5}, {20, 4}, {23, 33}, {32, 16}, {48, 48},
        {1, 100}, {100, 1}, {40, 72}, {64, 64}, {130, 12}};
    const struct { std::uint32_t set, cleared; } kinds[] = {
        // bits set         cleared            in every colour word
        {  0,               0},
        {  ~0u,             0},
        {  0,               ~0u},
        {  modeBit,         flatBit},
        {  0,               modeBit | flatBit},
        {  modeBit|flatBit, 0},
        {  flatBit,         modeBit},
        {  opaqueBothBit,   flatBit}};
    // clang-format on
    std::uint64_t seed = 1;
    for (const auto& [width, height] : sizes)
        for (const auto& [set, cleared] : kinds)
            for (const BlockVariant& variant : allVariants) {
                const Level level = {width, height, variant};
                const Bytes blocks = randomBlocks(level, set, cleared, seed++);
                ASSERT_EQ(decodedByCells(level, blocks), decodedByReference(level, blocks))
                    << width << 'x' << height << ", " << variant << std::hex << ", bits " << set << ' ' << cleared;
            }
}

// The digests come from an independent second implementation of both decoders.
TEST(MOKTCDecodeEquality, RandomBlocksDecodeAsInTheSecondImplementation) {
    const std::uint64_t digests[] = {0x7B8861B982E57CFE, 0xC55C3B1B2BCD9F1E, 0x97D4300FA85AFB28, 0x872DD3CF3D9E868E};
    for (std::size_t i = 0; i < allVariants.size(); ++i) {
        Bytes all;
        for (const auto& [width, height] : {std::pair{64u, 32u}, {48u, 48u}, {13u, 7u}, {3u, 70u}}) {
            const Level level = {width, height, allVariants[i]};
            const Bytes pixels = decodedByCells(level, testimages::randomBytes(level.blockCount() * bytesPerBlock, 7));
            all.insert(all.end(), pixels.begin(), pixels.end());
        }
        EXPECT_EQ(testimages::digest(all), digests[i]) << allVariants[i] << std::hex << " 0x" << testimages::digest(all);
    }
}

TEST(MOKTCDecodeEquality, RowsOfTheTargetMayBeFurtherApartThanItsWidth) {
    for (const BlockVariant& variant : allVariants) {
        const Level level = {19, 10, variant};
        const Bytes blocks = randomBlocks(level, 0, 0, 6), packed = decodedByCells(level, blocks);
        constexpr std::size_t rowBytes = 23 * 4;
        Bytes pixels(rowBytes * level.height, 0xAA);
        decodeCells(blocks.data(), variant, {{pixels.data(), level.width, level.height, rowBytes}});
        for (std::size_t y = 0; y < level.height; ++y) {
            EXPECT_TRUE(std::equal(&pixels[y * rowBytes], &pixels[y * rowBytes] + 19 * 4, &packed[y * 19 * 4])) << variant << y;
            EXPECT_EQ(std::count(&pixels[y * rowBytes] + 19 * 4, &pixels[y * rowBytes] + rowBytes, 0xAA), 4 * 4) << variant << y;
        }
    }
}

TEST(MOKTCDecodeEquality, ReferencePixelWalkReadsFirstGenerationStreams) {
    for (const Rate rate : {Rate::fourBpp, Rate::twoBpp}) {
        const Level level = {64, 16, {rate, Generation::first}};
        const Bytes blocks = randomBlocks(level, 0, 0, 3);
        EXPECT_EQ(decodedImage(blocks, {false, level.variant, true, false}, 64, 16), decodedByCells(level, blocks));
    }
    const Level oneBlock = {4, 4, {Rate::fourBpp, Generation::first}};  // stored as two by two blocks
    const Bytes blocks = randomBlocks(oneBlock, 0, 0, 4);
    EXPECT_EQ(decodedImage(blocks, {true, oneBlock.variant, true, false}, 4, 4), decodedByCells(oneBlock, blocks));
}

TEST(MOKTCDecodeEquality, ReferencePixelWalkClampsAtTheEdgesIfAsked) {
    // A row of blocks that clamps looks like one that wraps and has its first and last block twice.
    constexpr BlockVariant variant = {Rate::fourBpp, Generation::second};
    const Bytes blocks = randomBlocks({8, 4, variant}, 0, 0, 5);
    Bytes doubled = blocks;
    doubled.insert(doubled.begin(), blocks.begin(), blocks.begin() + 8);
    doubled.insert(doubled.end(), blocks.end() - 8, blocks.end());
    const Bytes clamped = decodedImage(blocks, {false, variant, false, true}, 8, 4);
    const Bytes wrapped = decodedByCells({16, 4, variant}, doubled);
    for (std::size_t y = 0; y < 4; ++y)
        EXPECT_TRUE(std::equal(&clamped[32 * y], &clamped[32 * y] + 32, &wrapped[64 * y + 16])) << y;
}

TEST(MOKTCDecodeEntry, ReturnsSizesModulo32BitsAndRefusesWhatDoesNotFit) {
    // clang-format off
    const struct { std::uint32_t width, height; std::uint8_t is2bpp; std::uint32_t second, size; bool isDecoded; } cases[] = {
        // width    height     2 bpp  second  size        decoded
        {  4,          6,        0,     0,      96,         true},
        {  13,         5,        1,     1,      260,        true},
        {  4,          6,        2,     7,      96,         true},   // any other number counts as 1
        {  0,          9,        0,     0,      0,          true},
        {  0xFFFFFFFF, 0,        1,     1,      0,          true},
        {  65536,      65536,    0,     0,      0,          false},
        {  65540,      65540,    1,     1,      0x200040,   false},
        {  32768,      32768,    1,     0,      0,          false},
        {  1,          1u << 29, 0,     0,      1u << 31,   false}}; // blocks of 8 columns have more than 2^32 bits
    // clang-format on
    const Bytes blocks(64, 0xFF), untouched(260, 7);
    for (const auto& [width, height, is2bpp, generation, size, isDecoded] : cases) {
        Bytes pixels = untouched;
        EXPECT_EQ(DecompressMOKTC(nullptr, pixels.data(), &width, &height, is2bpp, &generation), size);
        EXPECT_EQ(DecompressMOKTC(blocks.data(), nullptr, &width, &height, is2bpp, &generation), size);
        EXPECT_EQ(pixels, untouched);
        EXPECT_EQ(DecompressMOKTC(blocks.data(), pixels.data(), &width, &height, is2bpp, &generation), isDecoded ? size : 0);
        EXPECT_EQ(pixels == untouched, !isDecoded || size == 0) << width << " x " << height;
    }
    std::uint32_t pixel = 7, one = 1;
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, nullptr, &one, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, nullptr, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, &one, 0, nullptr), 0u);
    EXPECT_EQ(pixel, 7u);
}
