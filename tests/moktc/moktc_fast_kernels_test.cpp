#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "moktc/fast/colour_fit.h"
#include "moktc/fast/fast_kernels.h"
#include "support/test_images.h"

using namespace moktexture::moktc;
using testimages::Random;

namespace {

constexpr std::size_t rowBytes = 11 * std::size_t{4};  // wider than a block, and no multiple of a vector

/// One block in each of the three images.
struct Images {
    std::vector<std::uint8_t> source, a, b;
    BlockImages views() const { return {source.data(), a.data(), b.data(), rowBytes}; }
};

/// Kind 0: independent bytes; 1: 0 and 255 only; 2: colours that differ little; 3 to 6: a source that mode 0 to 3 at 2 bpp fits
/// exactly by its own estimate; 7: one colour.
constexpr std::uint32_t imageKinds = 8;

Images makeImages(std::uint32_t kind, Random& random) {
    Images images;
    for (auto* image : {&images.source, &images.a, &images.b}) {
        image->resize(rowBytes * blockHeight);
        random.fill(*image);
    }
    ModulationBlock2bpp block;
    for (std::uint32_t i = 0; i < blockArea2bpp; ++i) {
        block.directIndices[i] = static_cast<std::uint8_t>(random.below(2) * 3);
        block.sampleIndices[i] = static_cast<std::uint8_t>((i % 8 + i / 8) % 2 == 0 ? random.below(4) : 0);
    }
    std::array<std::uint8_t, blockArea2bpp> weights;
    expandModulation(block, kind >= 3 ? kind - 3 : 0, weights.data());
    for (std::size_t i = 0; i < images.source.size(); ++i) {
        std::uint8_t &source = images.source[i], &a = images.a[i], &b = images.b[i];
        for (std::uint8_t* value : {&source, &a, &b}) {
            const int values[] = {*value, *value < 128 ? 0 : 255, 100 + *value % 3, *value, *value, *value, *value, 77};
            *value = static_cast<std::uint8_t>(values[kind]);
        }
        if (kind >= 3 && kind < 7) {
            const std::size_t x = i % rowBytes / 4, y = i / rowBytes;
            const int weight = weights[8 * y + std::min<std::size_t>(x, 7)];
            source = static_cast<std::uint8_t>(((b - a) * weight + a * 8) >> 3);
        }
    }
    return images;
}

const FastKernels &scalar = scalarFastKernels, &fast = fastKernels();

}  // namespace

TEST(MOKTCFastKernels, TheChosenFormUsesVectorsWhereTheProcessorHasThem) {
    EXPECT_STREQ(fast.name, MOKTEX_X86_KERNELS ? "SSE2" : "scalar");
}

TEST(MOKTCFastKernels, FindTheSameFurthestPixels) {
    Random random(11);
    for (std::uint32_t count = 4; count <= largestFootprint; count += 4) {
        for (const std::uint32_t mask : {0u, 0x01010101u, 0x80000000u, 0xC0C0C0C0u, 0xFFFFFFFFu}) {  // all equal to few ties
            std::vector<std::uint32_t> pixels(count);
            for (std::uint32_t& pixel : pixels)
                pixel = random.next() & mask;
            std::uint32_t first = 1000, second = 1000, expectedFirst, expectedSecond;
            scalar.findFurthest(pixels.data(), count, expectedFirst, expectedSecond);
            fast.findFurthest(pixels.data(), count, first, second);
            ASSERT_EQ(first, expectedFirst) << count << " pixels, mask " << mask;
            ASSERT_EQ(second, expectedSecond) << count << " pixels, mask " << mask;
        }
    }
}

TEST(MOKTCFastKernels, ChooseTheSameModulationInEveryMode) {
    Random random(11);
    int modes4bpp[2] = {}, modes2bpp[4] = {};
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const Images images = makeImages(i % imageKinds, random);
        ModulationBlock4bpp expected4, actual4;
        ModulationBlock2bpp expected2, actual2;
        if (i / imageKinds % 2 == 1) {  // factors so near that every unit of an error counts
            for (std::uint8_t& weight : expected4.modeWeights)
                weight = static_cast<std::uint8_t>(200 + random.below(56));
            for (std::uint8_t& weight : expected2.modeWeights)
                weight = static_cast<std::uint8_t>(200 + random.below(56));
            actual4 = expected4;
            actual2 = expected2;
        }
        scalar.chooseModulation4bpp(images.views(), expected4);
        fast.chooseModulation4bpp(images.views(), actual4);
        ASSERT_TRUE(actual4 == expected4) << i;
        scalar.chooseModulation2bpp(images.views(), expected2);
        fast.chooseModulation2bpp(images.views(), actual2);
        ASSERT_TRUE(actual2 == expected2) << i;
        ++modes4bpp[actual4.mode];
        ++modes2bpp[actual2.mode];
    }
    for (const int count : {modes4bpp[0], modes4bpp[1], modes2bpp[0], modes2bpp[1], modes2bpp[2], modes2bpp[3]})
        EXPECT_GT(count, 20);
}

TEST(MOKTCColourFit, MovesColoursByTheRuleOfTheBlock) {
    // Means over the block, and colours before and after, are equal in all four channels.
    // clang-format off
    const struct { float t, t2, e, et, threshold; std::uint32_t oldA, oldB, newA, newB; const char* what; } cases[] = {
        // t     t*t      e       e*t    threshold  old A, B    new A, B
        {  0.5f, 0.3f,    2.75f,  1.0f,  32.0f,     10,  20,    10,  20,  "residual below the threshold"},
        {  0.0f, 0.0f,    4.0f,   0.0f,  64.0f,     10,  20,    14,  17,  "residual at the threshold"},
        {  0.5f, 0.375f,  10.0f,  7.5f,  32.0f,     50,  50,    50,  70,  "line with slope 2.5 / 0.125"},
        {  0.5f, 0.3125f, 0.0f,   20.0f, 0.0f,      120, 50,    20,  150, "correction limited to 100"},
        {  0.5f, 0.375f,  40.0f,  20.0f, 0.0f,      250, 230,   255, 255, "colours limited to 255"},
        {  0.5f, 0.25f,   40.0f,  20.0f, 32.0f,     100, 100,   120, 120, "equal weights share the residual"},
        {  0.5f, 0.25f,   8.0f,   4.0f,  32.0f,     100, 140,   114, 134, "equal weights draw the colours together"},
        {  0.5f, 0.25f,   100.0f, 50.0f, 32.0f,     240, 100,   228, 176, "equal weights limit first"},
        {  0.0f, 0.0f,    19.5f,  0.0f,  32.0f,     100, 120,   119, 120, "equal weights keep a difference below 1"}};
    // clang-format on
    for (const auto& c : cases) {
        const auto grey = [](std::uint32_t value) { return value * 0x01010101u; };
        const float e = c.e * 16, et = c.et * 16;
        const ResidualSums sums = {c.t * 16, c.t2 * 16, {e, e, e, e}, {et, et, et, et}};
        const RGBAPair fitted = fitColours(sums, {16, c.threshold}, {grey(c.oldA), grey(c.oldB)});
        EXPECT_EQ(fitted.a, grey(c.newA)) << c.what;
        EXPECT_EQ(fitted.b, grey(c.newB)) << c.what;
    }
}

TEST(MOKTCModulationEstimate, UsesNeighboursInsideTheBlockOnly) {
    // Weights of the samples; a dot has no sample.
    //   8 . 3 . 5 . 0 .
    //   . 8 . 0 . 8 . 8
    //   0 . 5 . 3 . 8 .
    //   . 0 . 8 . 5 . 8
    ModulationBlock2bpp block;
    const std::array<std::uint8_t, blockArea2bpp> samples = {3, 0, 1, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 3, 0, 3,
                                                             0, 0, 2, 0, 1, 0, 3, 0, 0, 0, 0, 3, 0, 2, 0, 3};
    std::ranges::copy(samples, block.sampleIndices);
    // clang-format off
    const std::array<std::uint8_t, blockArea2bpp> expected[] = {
        {8, 6, 3, 3, 5, 4, 0, 4,    // mode 1
         5, 8, 4, 0, 4, 8, 6, 8,
         0, 3, 5, 4, 3, 6, 8, 8,
         0, 0, 4, 8, 5, 5, 7, 8},
        {8, 10, 3, 2, 5, 10, 0, 10, // mode 2
         5, 8, 5, 0, 5, 8, 5, 8,
         0, 5, 5, 5, 3, 7, 8, 9,
         2, 0, 7, 8, 5, 5, 10, 8},
        {8, 6, 3, 4, 5, 3, 0, 1,    // mode 3
         9, 8, 4, 0, 4, 8, 8, 8,
         0, 3, 5, 4, 3, 6, 8, 9,
         1, 0, 4, 8, 7, 5, 7, 8}};
    // clang-format on
    for (std::uint32_t mode = 1; mode <= 3; ++mode) {
        std::array<std::uint8_t, blockArea2bpp> weights;
        expandModulation(block, mode, weights.data());
        EXPECT_EQ(weights, expected[mode - 1]) << "mode " << mode;
    }
    std::array<std::uint8_t, blockArea2bpp> weights;
    expandModulation(block, 4, weights.data());
    EXPECT_EQ(weights[13], 255);
}
