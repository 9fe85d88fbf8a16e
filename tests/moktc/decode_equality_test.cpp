#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "moktc/decode/decode_cells.h"
#include "moktc/decode/decode_image.h"
#include "moktc/decode/decode_twiddled.h"
#include "moktc_levels.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::moktc;
using moktclevels::Level;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Random blocks; bits of every colour word are set or cleared.
Bytes randomBlocks(const Level& level, std::uint32_t set, std::uint32_t cleared, std::uint64_t seed) {
    Bytes blocks = testimages::randomBytes(level.blockCount() * bytesPerBlock, seed);
    for (std::size_t place = 0; place < blocks.size(); place += bytesPerBlock) {
        Block block = readBlock(&blocks[place]);
        block.colours = (block.colours | set) & ~cleared;
        writeBlock(&blocks[place], block);
    }
    return blocks;
}

Bytes decoded(const Level& level, const Bytes& blocks, bool plain = false) {
    const auto& [width, height, is2bpp, second] = level;
    Bytes pixels(width * height * bytesPerPixel, 0xAA);
    if (!plain) {
        decodeCells(blocks.data(), is2bpp, second, width, height, pixels.data());
    } else if (second) {
        DecodeLinear(blocks.data(), is2bpp, width, height, pixels.data());
    } else {
        DecodeTwiddled(blocks.data(), is2bpp, width, height, pixels.data());
    }
    return pixels;
}

Bytes imageOf(const Bytes& blocks, const StreamRules& rules, std::uint32_t width, std::uint32_t height) {
    PixelImage image = {width, height, std::vector<std::uint32_t>(std::size_t{width} * height)};
    DecodeImage(blocks.data(), rules, width, height, image);
    Bytes pixels(image.pixels.size() * bytesPerPixel);
    std::memcpy(pixels.data(), image.pixels.data(), pixels.size());
    return pixels;
}

}  // namespace

TEST(MOKTCDecodeEquality, FastFormGivesThePlainFormsPixels) {
    // clang-format off
    const std::uint32_t sizes[][2] = {
        {1, 1}, {2, 3}, {4, 4}, {7, 9}, {8, 8}, {9, 8}, {16, 8}, {15, 17}, {17, 5}, {20, 4}, {23, 33}, {32, 16}, {48, 48},
        {1, 100}, {100, 1}, {40, 72}, {64, 64}, {130, 12}};
    // clang-format on
    // clang-format off
    const std::uint32_t kinds[][2] = {
        {0, 0}, {~0u, 0}, {0, ~0u}, {modeBit, flatBit}, {0, modeBit | flatBit}, {modeBit | flatBit, 0}, {flatBit, modeBit},
        {1u << 31, flatBit}};
    // clang-format on
    std::uint64_t seed = 1;
    for (const auto& [width, height] : sizes)
        for (const auto& [set, cleared] : kinds)
            for (const int format : {0, 1, 2, 3}) {
                const Level level = {width, height, (format & 1) != 0, (format & 2) != 0};
                const Bytes blocks = randomBlocks(level, set, cleared, seed++);
                ASSERT_EQ(decoded(level, blocks), decoded(level, blocks, true))
                    << width << 'x' << height << " format " << format << std::hex << " bits " << set << ' ' << cleared;
            }
}

/// Digests over four sizes by a slow second writing of both decoders.
TEST(MOKTCDecodeEquality, RandomBlocksDecodeLikeASecondWriting) {
    // clang-format off
    const struct { bool is2bpp, secondGeneration; std::uint64_t digest; } cases[] = {
        {false, false, 0x7B8861B982E57CFE}, {false, true, 0x97D4300FA85AFB28}, {true, false, 0xC55C3B1B2BCD9F1E},
        {true, true, 0x872DD3CF3D9E868E}};
    // clang-format on
    for (const auto& [is2bpp, secondGeneration, digest] : cases) {
        Bytes all;
        for (const auto& [width, height] : {std::pair{64u, 32u}, {48u, 48u}, {13u, 7u}, {3u, 70u}}) {
            const Level level = {width, height, is2bpp, secondGeneration};
            const Bytes pixels = decoded(level, testimages::randomBytes(level.blockCount() * bytesPerBlock, 7));
            all.insert(all.end(), pixels.begin(), pixels.end());
        }
        EXPECT_EQ(testimages::digest(all), digest) << is2bpp << secondGeneration << std::hex << " 0x" << testimages::digest(all);
    }
}

TEST(MOKTCDecodeEquality, ThePixelWalkReadsFirstGenerationStreamsToo) {
    for (const bool is2bpp : {false, true}) {
        const Level level = {64, 16, is2bpp, false};
        const Bytes blocks = randomBlocks(level, 0, 0, 3);
        EXPECT_EQ(imageOf(blocks, {false, false, bitsPerPixel(is2bpp), true, false}, 64, 16), decoded(level, blocks));
    }
    // Two blocks by two under one, as the first generation has it.
    const Level small = {4, 4, false, false};
    const Bytes blocks = randomBlocks(small, 0, 0, 4);
    EXPECT_EQ(imageOf(blocks, {true, false, 4, true, false}, 4, 4), decoded(small, blocks));
}

TEST(MOKTCDecodeEquality, ThePixelWalkCanClampAtTheEdges) {
    // A row of blocks that clamps looks like one that wraps where its ends stand twice.
    const Bytes blocks = randomBlocks({8, 4, false, true}, 0, 0, 5);
    Bytes ends = blocks;
    ends.insert(ends.begin(), blocks.begin(), blocks.begin() + 8);
    ends.insert(ends.end(), blocks.end() - 8, blocks.end());
    const Bytes clamped = imageOf(blocks, {false, true, 4, false, true}, 8, 4), wrapped = decoded({16, 4, false, true}, ends);
    for (std::size_t y = 0; y < 4; ++y)
        EXPECT_TRUE(std::equal(&clamped[32 * y], &clamped[32 * y] + 32, &wrapped[64 * y + 16])) << y;
    PixelImage other = {8, 8, std::vector<std::uint32_t>(64, 7)};
    DecodeImage(blocks.data(), {false, true, 4, true, true}, 8, 4, other);
    EXPECT_EQ(other.pixels, std::vector<std::uint32_t>(64, 7));  // an image of another size stays as it is
}

TEST(MOKTCSizes, AreAnsweredModulo32BitsAndRefusedWhereTheyDoNotFit) {
    // clang-format off
    const struct { std::uint32_t width, height; std::uint8_t is2bpp; std::uint32_t second, answer; bool isDecoded; } cases[] = {
        {4, 6, 0, 0, 96, true}, {13, 5, 1, 1, 260, true}, {4, 6, 2, 7, 96, true},  // any other number is true
        {0, 9, 0, 0, 0, true}, {0xFFFFFFFF, 0, 1, 1, 0, true}, {65536, 65536, 0, 0, 0, false},
        {65540, 65540, 1, 1, 0x200040, false}, {32768, 32768, 1, 0, 0, false},
        {1, 1u << 29, 0, 0, 1u << 31, false}};  // 8 columns of blocks' pixels are too many bits
    // clang-format on
    const Bytes blocks(64, 0xFF);
    for (const auto& [width, height, is2bpp, generation, answer, isDecoded] : cases) {
        Bytes pixels(260, 7);
        EXPECT_EQ(DecompressMOKTC(nullptr, pixels.data(), &width, &height, is2bpp, &generation), answer);
        EXPECT_EQ(DecompressMOKTC(blocks.data(), nullptr, &width, &height, is2bpp, &generation), answer);
        EXPECT_EQ(pixels, Bytes(260, 7));
        EXPECT_EQ(DecompressMOKTC(blocks.data(), pixels.data(), &width, &height, is2bpp, &generation), isDecoded ? answer : 0);
        EXPECT_EQ(pixels == Bytes(260, 7), !isDecoded || answer == 0) << width << ' ' << height;
    }
    std::uint32_t pixel = 7, one = 1;
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, nullptr, &one, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, nullptr, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, &one, 0, nullptr), 0u);
    EXPECT_EQ(pixel, 7u);
}
