#include <gtest/gtest.h>

#include <algorithm>
#include <array>

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
        for (const std::uint32_t mask : {0u, 0x01010101u, 0x80000000u, 0xC0C0C0C0u, 0xFFFFFFFFu}) {  // all alike to few ties
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
