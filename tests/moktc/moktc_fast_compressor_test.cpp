#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "core/base/parallel.h"
#include "moktc/block/block_order.h"
#include "moktc/fast/MOKTCCompressor.h"
#include "moktc/fast/fast_compressor.h"
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
    Rate rate;
    Bytes pixels;

    Image(std::uint32_t columns, std::uint32_t rows, Rate r) : blocksX(columns), blocksY(rows), rate(r) {}
    Image(Kind kind, std::uint32_t columns, std::uint32_t rows, Rate r) : Image(columns, rows, r) {
        pixels = testimages::make(kind, width(), height());
    }
    std::uint32_t width() const { return blocksX * blockWidth(rate); }
    std::uint32_t height() const { return blocksY * blockHeight; }
    ConstImageView view() const { return packedImage(pixels.data(), width(), height()); }
    std::size_t blockBytes() const { return std::size_t{blocksX} * blocksY * bytesPerBlock; }
};

Bytes encode(const Image& image, std::uint32_t passes, std::uint32_t threads = 1) {
    Bytes blocks(image.blockBytes(), 0xCD);
    EXPECT_TRUE(encodeFast({.image = image.view(), .rate = image.rate, .passes = passes, .threads = threads}, blocks.data()));
    return blocks;
}

/// What the scalar kernels give with 8 passes.
Bytes encodeScalar(const Image& image) {
    Bytes blocks(image.blockBytes(), 0xCD);
    const auto encodeWith = [&blocks](auto&& compressor) {
        compressor.setIterations(8);
        compressor.initialise(true);
        MOKTCCompressorDriver(compressor, 1).run();
        compressor.writeBlocks(blocks.data(), true);
    };
    if (image.rate == Rate::twoBpp) encodeWith(MOKTC2bppCompressor(image.view(), scalarFastKernels));
    if (image.rate == Rate::fourBpp) encodeWith(MOKTC4bppCompressor(image.view(), scalarFastKernels));
    return blocks;
}

Block blockAt(const Bytes& blocks, std::uint64_t index) {
    return readBlock(blocks.data() + index * bytesPerBlock);
}

constexpr Rate bothRates[] = {Rate::fourBpp, Rate::twoBpp};

}  // namespace

// The digests come from an independent second implementation.
TEST(MOKTCFastCompressor, GivesTheSameBytesInEveryForm) {
    // clang-format off
    const struct { std::uint32_t blocksX, blocksY; Kind kind; std::uint64_t digest4bpp, digest2bpp; } cases[] = {
        // grid     image            4 bpp               2 bpp
        {  5,  3,   Kind::noise,     0x329922B66E05D58B, 0x500F0114B8185A0E},
        {  5,  3,   Kind::softAlpha, 0x8ADDCC657B8C8B30, 0x87ECDC429661CBA9},
        {  12, 12,  Kind::text,      0xD6A2A2CC271E2BC2, 0x75805E24C3406EF7},
        {  12, 12,  Kind::cutOut,    0xE9999078B3F2B763, 0xF2AEE04B202266E0},
        {  17, 9,   Kind::gradient,  0xCC12DE7C4FA0542B, 0xCBD81BD2E37FA5F5},
        {  17, 9,   Kind::noise,     0xD60BFF89C0C162E8, 0x5AB848897D751294},
        {  17, 9,   Kind::cutOut,    0xCB7571CFFCB996D7, 0xA50764A8B08F5C2A},
        {  17, 9,   Kind::softAlpha, 0x752D83D7AFFF4C05, 0x946BA220FA14A310}};
    // clang-format on
    for (const auto& c : cases)
        for (const Rate rate : bothRates) {
            const Image image(c.kind, c.blocksX, c.blocksY, rate);
            const std::uint32_t width = image.width(), height = image.height();
            Bytes blocks(image.blockBytes(), 0xCD), withAlpha = blocks;
            const bool is2bpp = rate == Rate::twoBpp;
            EXPECT_EQ(CompressMOKTC(image.pixels.data(), blocks.data(), &width, &height, false, is2bpp, 0, 0), blocks.size());
            EXPECT_EQ(testimages::digest(blocks), is2bpp ? c.digest2bpp : c.digest4bpp)
                << nameOf(c.kind) << ", " << c.blocksX << " x " << c.blocksY << (is2bpp ? ", 2 bpp" : ", 4 bpp");
            EXPECT_EQ(encodeScalar(image), blocks) << nameOf(c.kind);
            EXPECT_EQ(CompressMOKTCFast(image.pixels.data(), withAlpha.data(), width, height, true, true, is2bpp, 8),
                      blocks.size());
            EXPECT_EQ(withAlpha, blocks) << nameOf(c.kind);
        }
}

// Blocks that modes 2 and 3 fit best, with estimated weights above 8 on their rims. The digest has the same origin.
TEST(MOKTCFastCompressor, LimitsEstimatedWeightsTo8InTheFit) {
    Image image(8, 8, Rate::twoBpp);
    image.pixels.resize(std::size_t{4} * image.width() * image.height());
    testimages::Random random(3);
    for (std::uint32_t i = 0; i < 64; ++i) {
        ModulationBlock2bpp block;
        for (std::uint8_t& index : block.sampleIndices)
            index = static_cast<std::uint8_t>(random.below(4));
        std::uint8_t weights[blockArea2bpp];
        expandModulation(block, 2 + i % 2, weights);
        for (std::uint32_t p = 0; p < blockArea2bpp; ++p) {
            const std::size_t pixel = (i / 8 * 4 + p / 8) * image.width() + i % 8 * 8 + p % 8;
            const std::uint32_t value = (255 * weights[p] >> 3) + random.below(i * i / 32 + 1);
            std::fill_n(&image.pixels[pixel * 4], 4, static_cast<std::uint8_t>(value));
        }
    }
    const Bytes blocks = encode(image, 8);
    EXPECT_EQ(testimages::digest(blocks), 0xABF251A92E83FE3E);
    EXPECT_EQ(encodeScalar(image), blocks);
}

TEST(MOKTCFastCompressor, ResultDoesNotDependOnTheNumberOfThreads) {
    for (const Rate rate : bothRates) {
        const Image image(Kind::noise, 40, 35, rate);  // enough blocks for several threads
        EXPECT_EQ(encode(image, 3, 5), encode(image, 3));
    }
}

TEST(ParallelTasks, EachTaskRunsOnce) {
    for (const std::uint32_t count : {0u, 1u, 5u, 64u, 1000u})
        for (const std::uint32_t threads : {0u, 1u, 2u, 64u, 200u}) {
            std::vector<std::atomic<int>> runs(count);
            runTasks(count, threads, [&](std::uint32_t i) { ++runs.at(i); });
            EXPECT_TRUE(std::ranges::all_of(runs, [](int number) { return number == 1; })) << count << ' ' << threads;
        }
}

TEST(MOKTCCompressorDriver, LeavesTheRemainderAtItsStart) {
    const Image image(Kind::noise, 12, 12, Rate::fourBpp);
    const Bytes start = encode(image, 0), refined = encode(image, 8);
    int changed = 0;
    for (std::uint32_t y = 0; y < 12; ++y)
        for (std::uint32_t x = 0; x < 12; ++x) {
            const std::uint64_t index = TwiddleIndex(12, 12, x, y);
            if (index >= 144) continue;  // not stored
            const bool isSame = std::memcmp(&start[index * bytesPerBlock], &refined[index * bytesPerBlock], bytesPerBlock) == 0;
            changed += isSame ? 0 : 1;
            EXPECT_TRUE(isSame || (x < 8 && y < 8)) << x << ", " << y;
        }
    EXPECT_GT(changed, 50);
}

TEST(MOKTCCompressorDriver, GivesTheBytesOfTheSerialLoop) {
    const Image image(Kind::softAlpha, 16, 8, Rate::twoBpp);
    MOKTC2bppCompressor compressor(image.view(), fastKernels());
    compressor.setIterations(5);
    compressor.initialise(true);
    compressor.optimise();
    Bytes twiddled(image.blockBytes()), linear(image.blockBytes());
    compressor.writeBlocks(twiddled.data(), true);
    EXPECT_EQ(twiddled, encode(image, 5));
    compressor.writeBlocks(linear.data(), false);
    EXPECT_EQ(blockAt(linear, 3 * 16 + 9).modulation, blockAt(twiddled, TwiddleIndex(16, 8, 9, 3)).modulation);
}

TEST(MOKTCFastCompressor, TakesTheFirstOfEqualModesAndIndices) {
    for (const Rate rate : bothRates) {
        Image flat(8, 8, rate);
        for (std::uint32_t i = 0; i < flat.width() * flat.height(); ++i)
            flat.pixels.insert(flat.pixels.end(), {132, 66, 198, 255});
        const Block block = blockAt(encode(flat, 8), 9);
        EXPECT_EQ(block.colours, 0xC118C118u & ~modeBit);
        // A direct pixel that is as near to A as to B takes B.
        EXPECT_EQ(block.modulation, rate == Rate::twoBpp ? 0xFFFFFFFFu : 0u);
    }
}
