#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

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
    for (auto* image : {&images.source, &images.a, &images.b})
        *image = testimages::randomBytes(rowBytes * blockHeight, random.next());
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
            const int v = *value, values[] = {v, v < 128 ? 0 : 255, 100 + v % 3, v, v, v, v, 77};
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
        const auto compare = [&](auto expected, auto chooseByScalar, auto chooseFast, int* modes) {
            if (i / imageKinds % 2 == 1)  // factors so near that every unit of an error counts
                for (std::uint8_t& weight : expected.modeWeights)
                    weight = static_cast<std::uint8_t>(200 + random.below(56));
            auto actual = expected;
            chooseByScalar(images.views(), expected);
            chooseFast(images.views(), actual);
            ASSERT_TRUE(actual == expected) << i;
            ++modes[actual.mode];
        };
        compare(ModulationBlock4bpp{}, scalar.chooseModulation4bpp, fast.chooseModulation4bpp, modes4bpp);
        compare(ModulationBlock2bpp{}, scalar.chooseModulation2bpp, fast.chooseModulation2bpp, modes2bpp);
    }
    for (const int count : {modes4bpp[0], modes4bpp[1], modes2bpp[0], modes2bpp[1], modes2bpp[2], modes2bpp[3]})
        EXPECT_GT(count, 20);
}

TEST(MOKTCModulationEstimate, UsesNeighboursInsideTheBlockOnly) {
    // Weights of the samples; a dot has no sample.
    //   8 . 3 . 5 . 0 .
    //   . 8 . 0 . 8 . 8
    //   0 . 5 . 3 . 8 .
    //   . 0 . 8 . 5 . 8
    ModulationBlock2bpp block;
    std::ranges::copy(
        std::to_array({3, 0, 1, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 3, 0, 3, 0, 0, 2, 0, 1, 0, 3, 0, 0, 0, 0, 3, 0, 2, 0, 3}),
        block.sampleIndices);
    // The weights of rows 0 to 3 as hexadecimal digits.
    // clang-format off
    const struct { std::uint32_t mode; std::string weights; } cases[] = {
        // mode
        {  1, "86335404" "58404868" "03543688" "00485578"},
        {  2, "8A325A0A" "58505858" "05553789" "207855A8"},
        {  3, "86345301" "98404888" "03543689" "10487578"}};
    // clang-format on
    std::uint8_t weights[blockArea2bpp];
    for (const auto& row : cases) {
        expandModulation(block, row.mode, weights);
        std::string digits;
        for (const std::uint8_t weight : weights)
            digits += "0123456789A"[weight];
        EXPECT_EQ(digits, row.weights) << "mode " << row.mode;
    }
    expandModulation(block, 4, weights);
    EXPECT_EQ(weights[13], 255);
}
