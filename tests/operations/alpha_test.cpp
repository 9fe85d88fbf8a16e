#include <array>
#include <limits>
#include <new>

#include "image_operations.h"
#include "operation_textures.h"
#include "operations/bleed.h"
#include "reference/bleed_reference.h"

using namespace moktexture;
using namespace operationtextures;

static bool isMemoryRefused = false;

// The non-throwing allocation of arrays, which Bleed() uses.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return isMemoryRefused ? nullptr : ::operator new[](size);
}

namespace {

const float nan = std::numeric_limits<float>::quiet_NaN();

/// Rows of colour, alpha and the resulting colour.
template <typename T>
void expectProducts(std::initializer_list<std::array<T, 3>> rows) {
    for (const auto& [colour, alpha, expected] : rows) {
        CMOKTexture texture = textureOf<T>({1, 1, 1, 2}, repeatedPixel<T>({colour, colour, colour, alpha}, 2));
        EXPECT_TRUE(PreMultiplyAlpha(texture));
        EXPECT_TRUE(texture.isPreMultiplied());
        EXPECT_FALSE(PreMultiplyAlpha(texture));
        EXPECT_EQ(elementsOf<T>(texture), repeatedPixel<T>({expected, expected, expected, alpha}, 2)) << +colour;
    }
}

TEST(PreMultiplyAlpha, KeepsTheLowByteOfEveryProductAndRunsOnce) {
    expectProducts<std::uint8_t>({{200, 128, 100}, {201, 255, 201}, {255, 1, 1}, {254, 1, 0}, {77, 0, 0}});
    expectProducts<std::uint16_t>({{60000, 65535, 96}, {300, 32768, 150}, {600, 32768, 44}, {55303, 1044, 113}});
    expectProducts<std::uint32_t>({{0xFFFFFFFF, 0xFFFFFFFF, 0}, {1000, 0x80000000, 244}, {0x12345678, 0xFFFFFFFF, 0x80}});
    expectProducts<float>({{0.75f, 1, 0}, {3.5f, 0.5f, 1}, {300.5f, 1, 44}, {1.5f, -1, 255}, {1e30f, 1, 0}, {nan, 1, 0}});
}

TEST(Bleed, TakesTheMeanOfVisiblePixelsUpToFourAway) {
    forEachElementType([]<typename T>(T) {
        std::vector<T> line = uniformPixels<T>({10, 7, 7, 21, 7, 7, 7, 7, 7, 7, 7});
        std::vector<T> expected = uniformPixels<T>({10, 15.5, 15.5, 21, 15.5, 21, 21, 21, 7, 7, 7});
        for (std::size_t i = 0; i < 11; ++i)
            line[4 * i + 3] = expected[4 * i + 3] = i == 0 || i == 3;
        for (const Shape& shape : {Shape{11, 1, 1}, Shape{1, 11, 1}, Shape{1, 1, 11}}) {
            CMOKTexture texture = textureOf<T>(shape, line);
            EXPECT_TRUE(Bleed(texture));
            EXPECT_EQ(elementsOf<T>(texture), expected) << shape.width << shape.height;
        }
    });
    // One visible pixel reaches the far corner of its box and no further.
    CMOKTexture volume = textureOf<std::uint8_t>({6, 7, 8}, {9, 9, 9, 1});
    ASSERT_TRUE(Bleed(volume));
    for (std::size_t i = 0; i < 6 * 7 * 8; ++i)
        ASSERT_EQ(elementsOf<std::uint8_t>(volume)[i * 4], i % 6 < 5 && i / 6 % 7 < 5 && i / 42 < 5 ? 9 : 0) << i;
}

TEST(Bleed, MeansOfWideElementsWrapOrFollowTheOrderOfFloatSums) {
    const auto firstRed = []<typename T>(const Shape& shape, const std::vector<T>& elements) {
        CMOKTexture texture = textureOf<T>(shape, elements);
        return Bleed(texture) ? elementsOf<T>(texture)[0] : T{1};
    };
    EXPECT_EQ((firstRed.operator()<std::uint32_t>({2}, {5, 0, 0, 0, 0xFFFFFFFF, 0, 0, 1})), 0u);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, -0.0f, 8.5f, 0, 0, nan})), 8.5f);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, nan, 8.5f, 0, 0, 1})), 5.0f);
    // 1e8, -1e8 and 1 are added in this order: slices, then rows, then columns.
    const std::vector<float> slices = {0, 0, 0, 0, 1e8f, 0, 0, 1, -1e8f, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1};
    EXPECT_EQ(firstRed.operator()<float>({2, 2, 2}, slices), 1.0f / 3.0f);
}

TEST(Bleed, BothFormsMatchTheReference) {
    testimages::Random random(3);
    forEachElementType([&]<typename T>(T) {
        for (const LevelSize& size :
             {LevelSize{1, 1, 1}, LevelSize{3, 2, 2}, LevelSize{9, 9, 3}, LevelSize{9, 9, 4}, LevelSize{4, 4, 30},
              LevelSize{200, 1, 1}, LevelSize{1, 40, 6}, LevelSize{33, 21, 1}, LevelSize{14, 13, 12}})
            for (std::uint32_t visibleOneIn : {2u, 20u, 200u}) {
                std::vector<T> pixels = randomElements<T>(size.pixelCount() * 4, random, random.below(2) == 0);
                for (std::size_t i = 3; i < pixels.size(); i += 4)
                    if (random.below(visibleOneIn) != 0) pixels[i] = T{0};
                std::vector<T> expected = pixels;
                referenceBleedLevel(LevelView<T>{expected.data(), size});
                ASSERT_TRUE(bleedLevel(pixels.data(), size.width, size.height, size.depth));
                ASSERT_EQ(std::memcmp(pixels.data(), expected.data(), expected.size() * sizeof(T)), 0) << size.width;
            }
    });
    EXPECT_TRUE(bleedsByRunningSums<std::uint8_t>({99, 99, 99}));
    EXPECT_TRUE(bleedsByRunningSums<std::uint16_t>({99, 99, 3}));
    EXPECT_FALSE(bleedsByRunningSums<std::uint16_t>({9, 9, 4}));
}

TEST(Bleed, TreatsTheLastSubresourceAndFailsWithoutMemory) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({24, 18, 4, 2, 2, 2});
        for (std::size_t i = 3; i < 4 * 12 * 9 * 2; i += 8)
            static_cast<T*>(texture.getDataPtr(1, 1, 1))[i] = T{0};
        const std::vector<T> before = elementsOf<T>(texture);
        isMemoryRefused = true;
        EXPECT_FALSE(Bleed(texture));
        isMemoryRefused = false;
        EXPECT_EQ(elementsOf<T>(texture), before);
        std::vector<T> expected = elementsAt<T>(texture, 1, 1, 1);
        referenceBleedLevel(LevelView<T>{expected.data(), {12, 9, 2}});
        EXPECT_TRUE(Bleed(texture));
        EXPECT_EQ((elementsAt<T>(texture, 1, 1, 1)), expected);
    });
}

}  // namespace
