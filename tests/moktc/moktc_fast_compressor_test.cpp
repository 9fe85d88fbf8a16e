#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "core/base/parallel.h"
#include "moktc/block/block_order.h"
#include "moktc/block/block_packing.h"
#include "moktc/fast/MOKTC2bppCompressor.h"
#include "moktc/fast/fast_compressor.h"
#include "moktc/fast/modulation_estimate.h"
#include "moktc/moktc.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::moktc;
using testimages::Kind;
using Bytes = std::vector<std::uint8_t>;

namespace {

/// A grid of blocks and the image over it.
struct Image {
    std::uint32_t blocksX, blocksY;
    bool is2bpp;
    Bytes pixels;

    Image(std::uint32_t columns, std::uint32_t rows, bool at2bpp) : blocksX(columns), blocksY(rows), is2bpp(at2bpp) {}
    Image(Kind kind, std::uint32_t columns, std::uint32_t rows, bool at2bpp) : Image(columns, rows, at2bpp) {
        pixels = testimages::make(kind, width(), height());
    }
    std::uint32_t width() const { return blocksX * blockWidth(is2bpp); }
    std::uint32_t height() const { return blocksY * blockHeight; }
};

Bytes encode(const Image& image, std::uint32_t iterations, const FastKernels& kernels = sse2FastKernels,
             std::uint32_t threads = 1) {
    Bytes blocks(std::size_t{image.blocksX} * image.blocksY * bytesPerBlock, 0xCD);
    EXPECT_EQ(CompressMOKTCFast(image.pixels.data(), blocks.data(), image.width(), image.height(), true, true, image.is2bpp,
                                iterations, kernels, threads),
              blocks.size());
    return blocks;
}

Block blockAt(const Bytes& blocks, std::uint64_t place) {
    return readBlock(blocks.data() + place * bytesPerBlock);
}

}  // namespace

// The digests come from a second implementation, which was written apart from this one. The plain form is told of alpha, the fast
// one is not: it plays no part.
TEST(MOKTCFastCompressor, GivesTheSameBytesInEveryForm) {
    // clang-format off
    const struct Case { std::uint32_t blocksX, blocksY; Kind kind; std::uint64_t digest4bpp, digest2bpp; } cases[] = {
        {5, 3, Kind::noise, 0x329922B66E05D58B, 0x500F0114B8185A0E}, {5, 3, Kind::edges, 0x0E395B3E1A176702, 0xE091B248E78A75E4},
        {5, 3, Kind::softAlpha, 0x8ADDCC657B8C8B30, 0x87ECDC429661CBA9},
        {12, 12, Kind::noise, 0x4CA2E65978A7E730, 0xB57149E0D61544EE},
        {12, 12, Kind::text, 0xD6A2A2CC271E2BC2, 0x75805E24C3406EF7},
        {12, 12, Kind::cutOut, 0xE9999078B3F2B763, 0xF2AEE04B202266E0},
        {17, 9, Kind::gradient, 0xCC12DE7C4FA0542B, 0xCBD81BD2E37FA5F5},
        {17, 9, Kind::noise, 0xD60BFF89C0C162E8, 0x5AB848897D751294},
        {17, 9, Kind::cutOut, 0xCB7571CFFCB996D7, 0xA50764A8B08F5C2A},
        {17, 9, Kind::softAlpha, 0x752D83D7AFFF4C05, 0x946BA220FA14A310}};
    // clang-format on
    for (const Case& c : cases)
        for (const bool is2bpp : {false, true}) {
            const Image image(c.kind, c.blocksX, c.blocksY, is2bpp);
            const std::uint32_t width = image.width(), height = image.height();
            Bytes blocks(std::size_t{c.blocksX} * c.blocksY * bytesPerBlock, 0xCD);
            EXPECT_EQ(CompressMOKTC(image.pixels.data(), blocks.data(), &width, &height, false, is2bpp, 0, 0), blocks.size());
            EXPECT_EQ(testimages::digest(blocks), is2bpp ? c.digest2bpp : c.digest4bpp)
                << nameOf(c.kind) << ", " << c.blocksX << " x " << c.blocksY << (is2bpp ? ", 2 bpp" : ", 4 bpp");
            EXPECT_EQ(encode(image, 8, plainFastKernels), blocks) << nameOf(c.kind);
        }
}

// Blocks that modes 2 and 3 fit best, with weights beyond the whole on their rims. The digest has the same origin.
TEST(MOKTCFastCompressor, HoldsTheRimOfABlockToWholeWeights) {
    Image image(8, 8, true);
    image.pixels.resize(std::size_t{4} * image.width() * image.height());
    testimages::Random random(3);
    for (std::uint32_t i = 0; i < 64; ++i) {
        ModulationBlock2bpp block;
        for (std::uint8_t& index : block.sampleIndices)
            index = static_cast<std::uint8_t>(random.below(4));
        std::uint8_t eighths[blockArea2bpp];
        expandModulation(block, 2 + i % 2, eighths);
        for (std::uint32_t p = 0; p < blockArea2bpp; ++p) {
            const std::size_t x = i % 8 * 8 + p % 8, y = i / 8 * 4 + p / 8;
            const std::uint32_t noise = random.below(i * i / 32 + 1);
            std::fill_n(&image.pixels[(y * image.width() + x) * 4], 4,
                        static_cast<std::uint8_t>((255 * eighths[p] >> 3) + noise));
        }
    }
    const Bytes blocks = encode(image, 8);
    EXPECT_EQ(testimages::digest(blocks), 0xABF251A92E83FE3E);
    EXPECT_EQ(encode(image, 8, plainFastKernels), blocks);
}

TEST(MOKTCFastCompressor, DoesNotDependOnThreads) {
    for (const bool is2bpp : {false, true}) {
        const Image image(Kind::noise, 40, 35, is2bpp);  // enough blocks for several threads
        EXPECT_EQ(encode(image, 3, sse2FastKernels, 5), encode(image, 3));
    }
}

TEST(MOKTCParallelTasks, AreEachRunOnce) {
    EXPECT_GE(availableThreads(), 1u);
    for (const std::uint32_t count : {0u, 1u, 5u, 64u, 1000u})
        for (const std::uint32_t threads : {0u, 1u, 2u, 64u, 200u}) {
            std::vector<std::atomic<int>> runs(count);
            runTasks(count, threads, [&](std::uint32_t i) { ++runs.at(i); });
            EXPECT_TRUE(std::ranges::all_of(runs, [](int number) { return number == 1; })) << count << ' ' << threads;
        }
}

TEST(MOKTCCompressorDriver, LeavesTheRemainderAtItsStart) {
    const Image image(Kind::noise, 12, 12, false);
    const Bytes start = encode(image, 0), refined = encode(image, 8);
    int changed = 0;
    std::vector<bool> isTaken(144);
    for (std::uint32_t y = 0; y < 12; ++y)
        for (std::uint32_t x = 0; x < 12; ++x) {
            const std::uint64_t place = TwiddleIndex(12, 12, x, y);
            if (place >= isTaken.size()) continue;
            isTaken[place] = true;
            const Block before = blockAt(start, place), after = blockAt(refined, place);
            const bool isSame = before.colours == after.colours && before.modulation == after.modulation;
            if (x < 8 && y < 8) {
                changed += isSame ? 0 : 1;
            } else {
                EXPECT_TRUE(isSame) << x << ", " << y;
            }
        }
    EXPECT_GT(changed, 50);
    EXPECT_EQ(std::ranges::count(isTaken, false), 32);
    for (std::uint64_t place = 0; place < isTaken.size(); ++place) {
        if (isTaken[place]) continue;
        EXPECT_EQ(blockAt(refined, place).modulation | blockAt(refined, place).colours, 0u) << place;
    }
}

TEST(MOKTCCompressorDriver, DoesWhatTheSerialLoopDoes) {
    const Image image(Kind::softAlpha, 16, 8, true);
    MOKTC2bppCompressor compressor(image.pixels.data(), image.width(), image.height(), sse2FastKernels);
    compressor.setIterations(5);
    compressor.initialise(true);
    compressor.optimise();
    Bytes blocks(16 * 8 * bytesPerBlock), linear(blocks.size());
    compressor.writeBlocks(blocks.data(), true);
    EXPECT_EQ(blocks, encode(image, 5));
    compressor.writeBlocks(linear.data(), false);
    const Block block = blockAt(linear, 3 * 16 + 9), twiddled = blockAt(blocks, TwiddleIndex(16, 8, 9, 3));
    EXPECT_EQ(block.colours, twiddled.colours);
    EXPECT_EQ(block.modulation, twiddled.modulation);
}

TEST(MOKTCFastCompressor, StartsFromTheDarkerOrLowerOfTwoColours) {
    const std::uint32_t red = 0xFF00003B, green = 0xFF001E00, white = 0xFFFFFFFF;  // red and green have luminance 17
    for (const auto& [one, other] : {std::pair(white, green), {green, white}, {red, green}, {green, red}, {red, red}}) {
        Image image(4, 4, true);
        for (std::uint32_t i = 0; i < image.width() * image.height(); ++i)
            for (std::uint32_t shift = 0; shift < 32; shift += 8)
                image.pixels.push_back(static_cast<std::uint8_t>((i % 4 == 2 ? other : one) >> shift));
        Block expected = {0, 0};
        packColourA(expected, std::min(one, other));
        packColourB(expected, std::max(one, other));
        EXPECT_EQ(blockAt(encode(image, 0), 5).colours & ~modeBit, expected.colours) << std::hex << one << ' ' << other;
    }
}

TEST(MOKTCFastCompressor, TakesTheFirstOfEqualModesAndIndices) {
    for (const bool is2bpp : {false, true}) {
        Image flat(8, 8, is2bpp);
        for (std::uint32_t i = 0; i < flat.width() * flat.height(); ++i)
            flat.pixels.insert(flat.pixels.end(), {132, 66, 198, 255});
        const Block block = blockAt(encode(flat, 8), 9);
        EXPECT_EQ(block.colours, 0xC118C118u & ~modeBit);
        EXPECT_EQ(block.modulation, is2bpp ? 0xFFFFFFFFu : 0u);  // a pixel as near to A as to B counts as B if it is direct
    }
}
